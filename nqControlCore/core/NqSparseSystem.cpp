#include <nqControlCore/core/NqSparseSystem.h>

#include <nqControlCore/foundation/matrix/NqReArray.h>
#include <nqControlCore/foundation/matrix/NqRowOperations.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <memory>
#include <numeric>
#include <utility>

namespace {

using NqRowMask::bit;
using NqRowMask::Mask;
using NqRowOperations::Group;
using NqRowOperations::load;
using NqRowOperations::Pair;
using NqRowOperations::PanelWidth;
using NqRowOperations::setToZeros;
using NqRowOperations::store;

typedef std::int64_t MaskGroup __attribute__((vector_size(PanelWidth * sizeof(std::int64_t))));

/// What has fewer columns is solved before its zeros are found.
constexpr unsigned kLeastColumns = 12;
/// What an element costs here, in that of the dense way.
constexpr unsigned kCost = 4;
/// A full metric with more weights than so many for each joint leaves too few zeros.
constexpr unsigned kWeights = 4;
/// What takes the place of a weight where there is no metric.
constexpr double kWeightless = 1.0;
/// The weight of a joint that the metric lacks.
constexpr double kNoWeight = 0.0;

} // namespace

/// Where the groups begin that columns lie in.
NQ_INLINE_ROWS NqSparseSystem::Mask NqSparseSystem::groupsOf(Mask columns) {
    constexpr Mask kStarts = 0x1111111111111111;
    columns |= columns >> 1;
    return (columns | columns >> 2) & kStarts;
}

/// to[j] += factor from[j], in whole groups.
NQ_INLINE_ROWS void NqSparseSystem::addMultiple(double* to, double factor, const double* from, Mask groups) {
    NqRowMask::forEach(groups, [&](unsigned j) {
        Group x, y;
        std::memcpy(&x, from + j, sizeof x);
        std::memcpy(&y, to + j, sizeof y);
        y += factor * x;
        std::memcpy(to + j, &y, sizeof y);
    });
}

/// to[j] = 0, in whole groups.
NQ_INLINE_ROWS void NqSparseSystem::clear(double* to, Mask groups) {
    NqRowMask::forEach(groups, [&](unsigned j) {
        const Group zeros = {};
        std::memcpy(to + j, &zeros, sizeof zeros);
    });
}

bool NqSparseSystem::factor(const NqReArray& jacobian, unsigned m, unsigned n,
                            const std::vector<Mask>& sparsity, const NqReArray* metric,
                            std::vector<unsigned int>& indices) {
    if (n < kLeastColumns || n > NqRowMask::Places) {
        return false;
    }
    if (m_N != n || m_M != m) {
        m_N = n;
        m_M = m;
        m_Multipliers.resize(m_N * m_N / 2);
        makeRoom();
        m_Known.fill(0);
        m_Reached.fill(0);
        m_AreKnownFew = m_IsWorthIt = m_IsPlanned = false;
    }
    if (!findZeros(jacobian, sparsity) || !findWeights(metric)) {
        return false;
    }
    m_NextMultiplier = m_Multipliers.data();
    m_Settled = 0;
    std::iota(m_Order.begin(), m_Order.begin() + m_N, 0u);
    std::iota(m_Place.begin(), m_Place.begin() + m_N, 0u);
    if (!factorRows(0, m_M, jacobian) || !findBasis()) {
        return false;
    }
    weightBasis();
    if (!factorRows(m_M, m_N, jacobian)) {
        return false;
    }
    if (!m_IsPlanned) {
        planFactors();
        m_IsPlanned = true;
    }
    std::copy_n(m_Indices.begin(), m_N, indices.begin());
    return true;
}

/// Room for all rows, in groups that lie within cache lines. Before it there is so much that a row's first
/// columns, which it needn't have room for, would still lie in it.
void NqSparseSystem::makeRoom() {
    constexpr std::size_t kLine = 64 / sizeof(double);
    m_Elements.assign(NqRowMask::Places + kLine + m_N * (m_N + PanelWidth), 0.0);
    void* begin = m_Elements.data() + NqRowMask::Places;
    std::size_t space = (m_Elements.size() - NqRowMask::Places) * sizeof(double);
    m_Begin = static_cast<double*>(std::align(kLine * sizeof(double), sizeof(double), begin, space));
    m_Stride = (m_N - m_M + PanelWidth - 1) / PanelWidth * PanelWidth;
    m_Basis.resize(m_N * m_Stride);
    m_Weighted.assign(m_N * m_Stride, 0.0);
    m_Sum.resize(m_Stride);
}

/// Finds the zeros of J: those that are known where they hold and are enough, or those that it has. False
/// where there are too few.
NQ_WIDE_ROWS bool NqSparseSystem::findZeros(const NqReArray& jacobian, const std::vector<Mask>& sparsity) {
    ForEachRow<Mask> filled;
    Mask others = sparsity.size() == m_M ? 0 : ~Mask{0}; // what differs from zero beside the known
    for (unsigned r = 0; r < m_M; ++r) {
        filled[r] = NqRowMask::filled(jacobian[r].data(), m_N);
        others |= others == 0 ? filled[r] & ~sparsity[r] : 0;
    }
    const ForEachRow<Mask>& reached = others == 0 && areKnownFew(sparsity) ? m_Known : filled;
    if (!std::equal(reached.begin(), reached.begin() + m_M, m_Reached.begin())) {
        std::copy_n(reached.begin(), m_M, m_Reached.begin());
        m_IsWorthIt = fillFew(m_Reached);
        m_IsPlanned = false;
    }
    return m_IsWorthIt;
}

/// Takes over what can differ from zero in J. Whether that is few enough.
inline bool NqSparseSystem::areKnownFew(const std::vector<Mask>& sparsity) {
    const Mask columns = ~Mask{0} >> (NqRowMask::Places - m_N);
    Mask changes = 0;
    for (unsigned r = 0; r < m_M; ++r) {
        const Mask known = sparsity[r] & columns;
        changes |= known ^ m_Known[r];
        m_Known[r] = known;
    }
    if (changes != 0) {
        m_AreKnownFew = fillFew(m_Known);
    }
    return m_AreKnownFew;
}

/// Whether rows of J with these elements stay short when each takes in all columns of those before that it
/// has one in common with, as those of one limb do.
bool NqSparseSystem::fillFew(const ForEachRow<Mask>& elements) const {
    ForEachRow<Mask> reach;
    unsigned work = 0;
    for (unsigned r = 0; r < m_M; ++r) {
        reach[r] = elements[r];
        for (unsigned k = r; k-- > 0;) {
            reach[r] |= (reach[k] & reach[r]) != 0 ? reach[k] : 0;
        }
        const auto length = static_cast<unsigned>(std::popcount(reach[r]));
        work += length * length;
    }
    return work * kCost <= m_M * m_N * m_N;
}

/// The steps that columns were settled in.
inline NqSparseSystem::Mask NqSparseSystem::stepsOf(Mask columns) const {
    Mask steps = 0;
    NqRowMask::forEach(columns & m_Settled, [&](unsigned column) { steps |= bit(m_Place[column]); });
    return steps;
}

/// Factors rows of J, or those below it.
NQ_WIDE_ROWS bool NqSparseSystem::factorRows(unsigned begin, unsigned end, const NqReArray& jacobian) {
    Mask done = 0; // steps of this row, together with the one before
    for (unsigned row = begin; row < end; ++row) {
        if (!m_IsPlanned && !planElimination(row)) {
            return false;
        }
        if (done == 0) {
            take(row, jacobian);
        }
        const Mask together = m_IsPlanned ? m_Together[row] : 0;
        if (together != 0) {
            take(row + 1, jacobian);
        }
        const bool isFinite =
            together != 0 ? eliminatePair(row, together) : eliminate(row, m_Eliminated[row] & ~done);
        if (!isFinite || !settle(row)) {
            return false;
        }
        done = together;
        if (done != 0 && !m_IsPlanned) { // another pivot: the next row begins once more
            m_NextMultiplier -= std::popcount(done);
            done = 0;
        }
    }
    return true;
}

/// Takes a row of J, or one below it, which is a column of W N.
NQ_INLINE_ROWS void NqSparseSystem::take(unsigned row, const NqReArray& jacobian) {
    double* const values = m_Rows[row];
    if (row < m_M) {
        const double* const elements = jacobian[row].data();
        NqRowMask::forEach(m_Groups[row], [&](unsigned j) {
            Group group = {};
            if (j + PanelWidth <= m_N) {
                std::memcpy(&group, elements + j, sizeof group);
            } else {
                std::memcpy(&group, elements + j, (m_N - j) * sizeof(double));
            }
            std::memcpy(values + j, &group, sizeof group);
        });
        return;
    }
    clear(values, m_Groups[row]);
    const unsigned column = row - m_M;
    NqRowMask::forEach(m_Reached[row], [&](unsigned j) { values[j] = weightedAt(j, column); });
}

/// An element of W N that can differ from zero.
NQ_INLINE_ROWS double NqSparseSystem::weightedAt(unsigned joint, unsigned column) const {
    const std::size_t place = joint * m_Stride + column;
    return m_IsDiagonal ? m_Basis[place] * m_Diagonal[joint] : m_Weighted[place];
}

/// Finds the steps that eliminate what a row has in settled columns, and what that leaves of it; gives it
/// room from its first group to its last. False for a row of zeros.
inline bool NqSparseSystem::planElimination(unsigned row) {
    Mask filled = m_Reached[row];
    if (filled == 0) {
        return false;
    }
    Mask steps = stepsOf(filled);
    m_Eliminated[row] = 0;
    while (steps != 0) {
        const auto k = static_cast<unsigned>(std::countr_zero(steps));
        m_Eliminated[row] |= bit(k);
        steps = (steps & (steps - 1)) | stepsOf(m_Filled[k] & ~filled);
        filled |= m_Filled[k];
    }
    m_Candidates[row] = filled & ~m_Settled;
    m_Groups[row] = groupsOf(filled);
    double* const room = row == 0 ? m_Begin : m_Ends[row - 1];
    m_Rows[row] = room - std::countr_zero(m_Groups[row]);
    m_Ends[row] = m_Rows[row] + std::bit_width(m_Groups[row]) - 1 + PanelWidth;
    return true;
}

/// Eliminates what a row has in columns that were settled in these steps; what stands there afterwards is of
/// no use. False when a multiplier isn't finite.
NQ_INLINE_ROWS bool NqSparseSystem::eliminate(unsigned row, Mask steps) {
    double* const values = m_Rows[row];
    double check = 0.0; // NaN, if one isn't finite
    NqRowMask::forEach(steps, [&](unsigned k) {
        const double multiplier = values[m_Columns[k]] * m_Reciprocal[k];
        check += multiplier * 0.0;
        *m_NextMultiplier++ = multiplier;
        addMultiple(values, -multiplier, m_Rows[k], m_FilledGroups[k]);
    });
    return check == 0.0;
}

/// The same for a row and the next one, as each step of one row has to wait for the step before.
NQ_INLINE_ROWS bool NqSparseSystem::eliminatePair(unsigned row, Mask steps) {
    double* const first = m_Rows[row];
    double* const second = m_Rows[row + 1];
    const int count = std::popcount(steps);
    double check = 0.0; // NaN, if one isn't finite
    NqRowMask::forEach(steps, [&](unsigned k) {
        const unsigned column = m_Columns[k];
        const double multiplier = first[column] * m_Reciprocal[k];
        const double next = second[column] * m_Reciprocal[k];
        check += multiplier * 0.0 + next * 0.0;
        m_NextMultiplier[count] = next;
        *m_NextMultiplier++ = multiplier;
        const double* const pivots = m_Rows[k];
        NqRowMask::forEach(m_FilledGroups[k], [&](unsigned j) {
            Group x, y, z;
            std::memcpy(&x, pivots + j, sizeof x);
            std::memcpy(&y, first + j, sizeof y);
            std::memcpy(&z, second + j, sizeof z);
            y += -multiplier * x;
            z += -next * x;
            std::memcpy(first + j, &y, sizeof y);
            std::memcpy(second + j, &z, sizeof z);
        });
    });
    m_NextMultiplier += count;
    return check == 0.0;
}

/// Settles the column of a row's largest element; where it isn't that of the plan, the plan ends here. False
/// when all are zero, one isn't finite, or the reciprocal of the pivot isn't.
NQ_INLINE_ROWS bool NqSparseSystem::settle(unsigned row) {
    if (!m_IsPlanned || !isLargestStill(row)) {
        const unsigned column = findLargest(row);
        if (column == m_N) {
            return false;
        }
        if (!m_IsPlanned || column != m_Columns[row]) {
            m_IsPlanned = false;
            m_Columns[row] = column;
            m_Filled[row] = m_Candidates[row] & ~bit(column);
            m_FilledGroups[row] = groupsOf(m_Filled[row]);
        }
    }
    const unsigned column = m_Columns[row];
    const unsigned place = m_Place[column];
    m_Indices[row] = place;
    std::swap(m_Order[row], m_Order[place]);
    m_Place[m_Order[place]] = place;
    m_Place[column] = row;
    m_Settled |= bit(column);
    m_Pivot[row] = m_Rows[row][column];
    m_Reciprocal[row] = 1.0 / m_Pivot[row];
    return std::isfinite(m_Reciprocal[row]);
}

/// Whether all elements of a row are less than that which was the pivot in the step before. The processor
/// guesses that they are, and goes on without waiting for the comparisons.
NQ_INLINE_ROWS bool NqSparseSystem::isLargestStill(unsigned row) const {
    const double* const values = m_Rows[row];
    const double largest = std::abs(values[m_Columns[row]]);
    MaskGroup others = {};
    NqRowMask::forEach(m_FilledGroups[row], [&](unsigned j) {
        Group group;
        MaskGroup columns;
        std::memcpy(&group, values + j, sizeof group);
        std::memcpy(&columns, NqRowMask::Bits.data() + j, sizeof columns);
        others |= columns & ~((group < largest) & (group > -largest));
    });
    return (static_cast<Mask>(others[0] | others[1] | others[2] | others[3]) & m_Filled[row]) == 0 &&
           std::isfinite(largest);
}

/// The column of a row's largest element, of equal ones of that at the first place; that behind the last one
/// when all are zero or one isn't finite.
inline unsigned NqSparseSystem::findLargest(unsigned row) const {
    const double* const values = m_Rows[row];
    double largest = 0.0;
    unsigned place = m_N;
    double check = 0.0; // NaN, if one isn't finite
    NqRowMask::forEach(m_Candidates[row], [&](unsigned column) {
        const double magnitude = std::abs(values[column]);
        check += magnitude * 0.0;
        if (magnitude > largest || (magnitude == largest && m_Place[column] < place)) {
            largest = magnitude;
            place = m_Place[column];
        }
    });
    return check != 0.0 || largest == 0.0 ? m_N : m_Order[place];
}

/// With U = [U11 U12] the rows -U11^-1 U12 for the columns of U11, and a one for each other. What can't
/// differ from zero is as the step before has left it, if that went by the same plan. False when an element
/// isn't finite.
NQ_WIDE_ROWS bool NqSparseSystem::findBasis() {
    if (!m_IsPlanned) {
        planBasis();
        std::fill(m_Basis.begin(), m_Basis.end(), 0.0);
        for (unsigned place = m_M; place < m_N; ++place) {
            basisOf(m_Order[place])[place - m_M] = 1.0;
        }
    }
    for (unsigned place = 0; place < m_M; ++place) {
        const unsigned joint = m_Order[place];
        double* const basis = basisOf(joint);
        clear(basis, m_BasisGroups[joint]);
        const double* const u = m_Rows[place];
        NqRowMask::forEach(m_Filled[place] & ~m_Settled,
                           [&](unsigned column) { basis[m_Place[column] - m_M] = -u[column]; });
    }
    Group check = {}; // NaN, where one isn't finite
    for (unsigned k = m_M; k-- > 0;) {
        const double* const u = m_Rows[k];
        double* const basis = basisOf(m_Order[k]);
        NqRowMask::forEach(m_BasisSteps[k], [&](unsigned step) {
            const unsigned known = m_Order[step];
            addMultiple(basis, -u[known], basisOf(known), m_BasisGroups[known]);
        });
        NqRowMask::forEach(m_BasisGroups[m_Order[k]], [&](unsigned i) {
            Group values;
            std::memcpy(&values, basis + i, sizeof values);
            values *= m_Reciprocal[k];
            check += values * 0.0;
            std::memcpy(basis + i, &values, sizeof values);
        });
    }
    return check[0] + check[1] + check[2] + check[3] == 0.0;
}

/// Finds what of the basis can differ from zero.
inline void NqSparseSystem::planBasis() {
    for (unsigned place = m_N; place-- > 0;) {
        const unsigned joint = m_Order[place];
        Mask filled = 0;
        if (place < m_M) {
            NqRowMask::forEach(m_Filled[place] & ~m_Settled,
                               [&](unsigned column) { filled |= bit(m_Place[column] - m_M); });
            m_BasisSteps[place] = stepsOf(m_Filled[place]);
            NqRowMask::forEach(m_BasisSteps[place],
                               [&](unsigned step) { filled |= m_BasisFilled[m_Order[step]]; });
        } else {
            filled = bit(place - m_M);
        }
        m_BasisFilled[joint] = filled;
        m_BasisGroups[joint] = groupsOf(filled);
    }
}

/// Finds the weights of each joint, one or those of a row. False when they are many, or one isn't finite.
NQ_WIDE_ROWS bool NqSparseSystem::findWeights(const NqReArray* metric) {
    const unsigned columns = metric ? metric->columns() : 1;
    const unsigned rows = metric ? std::min(m_N, metric->rows()) : 0;
    m_IsPlanned = m_IsPlanned && m_IsDiagonal == (columns == 1);
    m_IsDiagonal = columns == 1;
    unsigned count = 0;
    double check = 0.0; // NaN, if one isn't finite
    if (m_IsDiagonal) {
        std::fill_n(m_Diagonal.begin(), m_N, metric ? kNoWeight : kWeightless);
        for (unsigned j = 0; j < rows; ++j) {
            const std::vector<double>& row = (*metric)[j];
            m_Diagonal[j] = row.empty() ? kNoWeight : row.front();
            check += m_Diagonal[j] * 0.0;
        }
        return check == 0.0;
    }
    for (unsigned j = 0; j < m_N; ++j) {
        const std::vector<double>* const row = j < rows ? &(*metric)[j] : nullptr;
        m_Weights[j] = row ? row->data() : nullptr;
        const std::size_t length = row ? std::min<std::size_t>(std::min(columns, m_N), row->size()) : 0;
        const Mask filled = NqRowMask::filled(m_Weights[j], static_cast<unsigned>(length));
        NqRowMask::forEach(filled, [&](unsigned k) { check += m_Weights[j][k] * 0.0; });
        m_IsPlanned = m_IsPlanned && filled == m_WeightsFilled[j];
        m_WeightsFilled[j] = filled;
        count += static_cast<unsigned>(std::popcount(filled));
    }
    return check == 0.0 && count <= kWeights * m_N;
}

/// W N, whose columns are the rows below J. With a diagonal metric each of its elements is found when it is
/// needed.
NQ_WIDE_ROWS void NqSparseSystem::weightBasis() {
    if (!m_IsPlanned) {
        planWeightedBasis();
    }
    for (unsigned j = 0; j < m_N && !m_IsDiagonal; ++j) {
        double* const weighted = weightedOf(j);
        std::fill_n(weighted, m_Stride, 0.0);
        NqRowMask::forEach(m_WeightsFilled[j], [&](unsigned k) {
            addMultiple(weighted, m_Weights[j][k], basisOf(k), m_BasisGroups[k]);
        });
    }
}

/// Finds what of W N can differ from zero, and so in the rows below J.
void NqSparseSystem::planWeightedBasis() {
    std::fill(m_Reached.begin() + m_M, m_Reached.begin() + m_N, Mask{0});
    for (unsigned j = 0; j < m_N; ++j) {
        Mask filled = m_IsDiagonal ? m_BasisFilled[j] : 0;
        if (!m_IsDiagonal) {
            NqRowMask::forEach(m_WeightsFilled[j], [&](unsigned k) { filled |= m_BasisFilled[k]; });
        }
        m_WeightedFilled[j] = filled;
        NqRowMask::forEach(filled, [&](unsigned i) { m_Reached[m_M + i] |= bit(j); });
    }
}

/// Finds U by its places, now that all columns have theirs, and the rows that go together with the next one,
/// as the same steps eliminate it, but for the row itself.
void NqSparseSystem::planFactors() {
    Mask done = 0;
    for (unsigned row = 0; row < m_N; ++row) {
        m_Upper[row] = 0;
        NqRowMask::forEach(m_Filled[row], [&](unsigned column) { m_Upper[row] |= bit(m_Place[column]); });
        const Mask steps = m_Eliminated[row] & ~done;
        const bool hasNext = row + 1 != m_M && row + 1 != m_N;
        m_Together[row] = hasNext && steps == (m_Eliminated[row + 1] & ~bit(row)) ? steps : 0;
        done = m_Together[row];
    }
}

NQ_WIDE_ROWS bool NqSparseSystem::project(const std::vector<double>& vector, double* result) {
    if (!NqRowOperations::areFinite(vector.data(), m_N)) {
        return false;
    }
    std::fill(m_Sum.begin(), m_Sum.end(), 0.0);
    for (unsigned joint = 0; joint < m_N; ++joint) {
        addMultiple(m_Sum.data(), vector[joint], basisOf(joint), m_BasisGroups[joint]);
    }
    std::copy_n(m_Sum.begin(), m_N - m_M, result);
    return true;
}

NQ_WIDE_ROWS bool NqSparseSystem::solve(std::array<double, 2>* rightHandSides, double* first,
                                        double* second) const {
    std::array<double, 2>* const x = rightHandSides;
    const double* multiplier = m_Multipliers.data();
    for (unsigned i = 0; i < m_N; ++i) {
        Pair sum = load(x[i]);
        NqRowMask::forEach(m_Eliminated[i], [&](unsigned j) { sum -= load(x[j]) * *multiplier++; });
        store(x[i], sum);
    }
    Pair check = {};
    for (unsigned i = m_N; i-- > 0;) {
        const double* const row = m_Rows[i];
        Pair sum = load(x[i]);
        NqRowMask::forEach(m_Upper[i], [&](unsigned j) { sum -= load(x[j]) * row[m_Order[j]]; });
        sum /= m_Pivot[i];
        store(x[i], sum);
        check += sum * 0.0; // NaN, if it isn't finite
    }
    if (check[0] != 0.0 || check[1] != 0.0) {
        return false;
    }
    for (unsigned i = 0; i < m_N; ++i) {
        first[m_Order[i]] = x[i][0];
    }
    for (unsigned i = 0; i < m_N; ++i) {
        second[m_Order[i]] = x[i][1];
    }
    return true;
}

double NqSparseSystem::determinant() const {
    bool isOdd = false;
    double product = 1.0;
    for (unsigned i = 0; i < m_N; ++i) {
        isOdd ^= m_Indices[i] != i;
        product *= m_Pivot[i];
    }
    return isOdd ? product * -1.0 : product;
}

void NqSparseSystem::giveFactors(NqReArray& matrix) const {
    const double* multiplier = m_Multipliers.data();
    for (unsigned r = 0; r < m_N; ++r) {
        const double* const row = m_Rows[r];
        std::vector<double>& factors = matrix[r];
        factors.assign(m_N, 0.0); // one from outside may be ragged
        NqRowMask::forEach(m_Eliminated[r], [&](unsigned place) { factors[place] = *multiplier++; });
        factors[r] = m_Pivot[r];
        NqRowMask::forEach(m_Filled[r], [&](unsigned column) { factors[m_Place[column]] = row[column]; });
    }
}

void NqSparseSystem::giveNullSpace(NqReArray& nullSpace) const {
    for (unsigned j = 0; j < m_N; ++j) {
        std::copy_n(basisOf(j), m_N - m_M, nullSpace[j].begin());
    }
}

void NqSparseSystem::giveWeightedNullSpace(NqReArray& weightedNullSpace) const {
    for (unsigned j = 0; j < m_N; ++j) {
        std::vector<double>& weighted = weightedNullSpace[j];
        std::fill(weighted.begin(), weighted.end(), 0.0);
        NqRowMask::forEach(m_WeightedFilled[j], [&](unsigned i) { weighted[i] = weightedAt(j, i); });
    }
}
