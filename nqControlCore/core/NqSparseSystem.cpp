#include <nqControlCore/core/NqSparseSystem.h>

#include <nqControlCore/foundation/matrix/NqReArray.h>
#include <nqControlCore/foundation/matrix/NqRowOperations.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
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

/// What has fewer columns is solved before its zeros are found.
constexpr unsigned kLeastColumns = 12;
/// What an element costs here, in that of the dense way.
constexpr unsigned kCost = 4;
/// A full metric with more weights than so many for each joint leaves too few zeros.
constexpr unsigned kWeights = 4;
/// What takes the place of a weight where there is no metric.
constexpr double kWeightless = 1.0;

/// Where the groups of columns begin of which any is filled; what is left at the end of a row is none.
inline Mask groupsOf(Mask filled, unsigned n) {
    constexpr Mask kStarts = 0x1111111111111111;
    const unsigned whole = n / PanelWidth * PanelWidth;
    Mask groups = whole == 0 ? 0 : filled & ~Mask{0} >> (NqRowMask::Places - whole);
    groups |= groups >> 1;
    return (groups | groups >> 2) & kStarts;
}

/// to[j] += factor from[j], by groups.
inline void addMultiple(double* to, double factor, const double* from, Mask groups, unsigned n) {
    NqRowMask::forEach(groups, [&](unsigned j) {
        Group x, y;
        std::memcpy(&x, from + j, sizeof x);
        std::memcpy(&y, to + j, sizeof y);
        y += factor * x;
        std::memcpy(to + j, &y, sizeof y);
    });
    for (unsigned j = n / PanelWidth * PanelWidth; j < n; ++j) {
        to[j] += factor * from[j];
    }
}

} // namespace

bool NqSparseSystem::factor(NqReArray& matrix, std::vector<unsigned int>& indices, unsigned m,
                            const NqReArray* metric, NqReArray& nullSpace, NqReArray& weightedNullSpace) {
    if (m_N != matrix.columns() || m_M != m) {
        m_N = matrix.columns();
        m_M = m;
        m_Jacobian.resize(m_M * m_N);
        m_Multipliers.resize(m_N * m_N / 2);
        m_Reached.fill(0);
        m_IsWorthIt = false;
    }
    if (m_N < kLeastColumns || m_N > NqRowMask::Places || !findZeros(matrix) || !findWeights(metric)) {
        return false;
    }
    for (unsigned r = 0; r < m_N; ++r) {
        m_Rows[r] = matrix[r].data();
    }
    m_NextMultiplier = m_Multipliers.data();
    m_Settled = 0;
    std::iota(m_Order.begin(), m_Order.begin() + m_N, 0u);
    m_Place = m_Order;
    bool isRegular = factorRows(0, m_M) && findBasis(nullSpace);
    if (isRegular) {
        weightBasis(nullSpace, weightedNullSpace);
        isRegular = factorRows(m_M, m_N);
    }
    if (!isRegular) {
        restoreJacobian();
        return false;
    }
    permuteRows();
    std::copy_n(m_Indices.begin(), m_N, indices.begin());
    return true;
}

/// Finds the zeros of J, and keeps J. False where there are too few of them; that is judged
/// anew when it may have changed.
NQ_WIDE_ROWS bool NqSparseSystem::findZeros(const NqReArray& matrix) {
    Mask news = 0, changes = 0;
    for (unsigned r = 0; r < m_M; ++r) {
        const double* const row = matrix[r].data();
        std::memcpy(&m_Jacobian[r * m_N], row, m_N * sizeof(double));
        m_Filled[r] = NqRowMask::filled(row, m_N);
        news |= m_Filled[r] & ~m_Reached[r];
        changes |= m_Filled[r] ^ m_Reached[r];
    }
    if (m_IsWorthIt ? news != 0 : changes != 0) {
        m_Reached = m_Filled;
        m_IsWorthIt = fillsFew();
    }
    return m_IsWorthIt;
}

/// Whether the rows of J stay short when each takes in all columns of those before that it has one in common
/// with, as those of one limb do.
bool NqSparseSystem::fillsFew() const {
    ForEachRow<Mask> reach;
    unsigned work = 0;
    for (unsigned r = 0; r < m_M; ++r) {
        reach[r] = m_Reached[r];
        for (unsigned k = r; k-- > 0;) {
            reach[r] |= (reach[k] & reach[r]) != 0 ? reach[k] : 0;
        }
        const auto length = static_cast<unsigned>(std::popcount(reach[r]));
        work += length * length;
    }
    return work * kCost <= m_M * m_N * m_N;
}

void NqSparseSystem::restoreJacobian() {
    for (unsigned r = 0; r < m_M; ++r) {
        std::memcpy(m_Rows[r], &m_Jacobian[r * m_N], m_N * sizeof(double));
    }
}

/// The steps that columns were settled in.
inline NqSparseSystem::Mask NqSparseSystem::stepsOf(Mask columns) const {
    Mask steps = 0;
    NqRowMask::forEach(columns & m_Settled, [&](unsigned column) { steps |= bit(m_Place[column]); });
    return steps;
}

NQ_WIDE_ROWS bool NqSparseSystem::factorRows(unsigned begin, unsigned end) {
    for (unsigned row = begin; row < end; ++row) {
        if (!eliminate(row) || !settle(row)) {
            return false;
        }
    }
    return true;
}

/// Eliminates what a row has in settled columns. False when a multiplier isn't finite.
inline bool NqSparseSystem::eliminate(unsigned row) {
    double* const values = m_Rows[row];
    Mask filled = m_Filled[row];
    Mask steps = stepsOf(filled);
    Mask done = 0;
    while (steps != 0) {
        const auto k = static_cast<unsigned>(std::countr_zero(steps));
        const double multiplier = values[m_Order[k]] * m_Reciprocal[k];
        if (!std::isfinite(multiplier)) {
            return false;
        }
        *m_NextMultiplier++ = multiplier;
        done |= bit(k);
        steps = (steps & (steps - 1)) | stepsOf(m_Filled[k] & ~filled);
        filled |= m_Filled[k];
        addMultiple(values, -multiplier, m_Rows[k], m_Groups[k], m_N);
    }
    NqRowMask::forEach(filled & m_Settled, [&](unsigned column) { values[column] = 0.0; });
    m_Eliminated[row] = done;
    m_Filled[row] = filled & ~m_Settled;
    return true;
}

/// Settles the column of a row's largest element, of equal ones of that at the first place. False when all
/// are zero, one isn't finite, or the reciprocal of the pivot isn't.
inline bool NqSparseSystem::settle(unsigned row) {
    double* const values = m_Rows[row];
    double largest = 0.0;
    unsigned place = m_N;
    double check = 0.0; // NaN, if one isn't finite
    NqRowMask::forEach(m_Filled[row], [&](unsigned column) {
        const double magnitude = std::abs(values[column]);
        check += magnitude * 0.0;
        if (magnitude > largest || (magnitude == largest && m_Place[column] < place)) {
            largest = magnitude;
            place = m_Place[column];
        }
    });
    if (check != 0.0 || largest == 0.0) {
        return false;
    }
    const unsigned column = m_Order[place];
    m_Indices[row] = place;
    std::swap(m_Order[row], m_Order[place]);
    m_Place[m_Order[place]] = place;
    m_Place[column] = row;
    m_Settled |= bit(column);
    m_Pivot[row] = std::exchange(values[column], 0.0);
    m_Filled[row] &= ~bit(column);
    m_Groups[row] = groupsOf(m_Filled[row], m_N);
    m_Reciprocal[row] = 1.0 / m_Pivot[row];
    return std::isfinite(m_Reciprocal[row]);
}

/// With U = [U11 U12] the rows -U11^-1 U12 for the columns of U11, and a one for each other. False when an
/// element isn't finite.
NQ_WIDE_ROWS bool NqSparseSystem::findBasis(NqReArray& nullSpace) {
    const unsigned dimension = m_N - m_M;
    for (unsigned place = m_M; place < m_N; ++place) {
        double* const basis = nullSpace[m_Order[place]].data();
        setToZeros(basis, dimension);
        basis[place - m_M] = 1.0;
        m_BasisFilled[m_Order[place]] = bit(place - m_M);
        m_BasisGroups[m_Order[place]] = groupsOf(bit(place - m_M), dimension);
    }
    for (unsigned k = m_M; k-- > 0;) {
        const double* const u = m_Rows[k];
        double* const basis = nullSpace[m_Order[k]].data();
        setToZeros(basis, dimension);
        Mask filled = 0;
        NqRowMask::forEach(m_Filled[k] & ~m_Settled, [&](unsigned column) {
            basis[m_Place[column] - m_M] = -u[column];
            filled |= bit(m_Place[column] - m_M);
        });
        NqRowMask::forEach(stepsOf(m_Filled[k]), [&](unsigned step) {
            const unsigned known = m_Order[step];
            addMultiple(basis, -u[known], nullSpace[known].data(), m_BasisGroups[known], dimension);
            filled |= m_BasisFilled[known];
        });
        double check = 0.0; // NaN, if one isn't finite
        NqRowMask::forEach(filled, [&](unsigned i) {
            basis[i] *= m_Reciprocal[k];
            check += basis[i] * 0.0;
        });
        m_BasisFilled[m_Order[k]] = filled;
        m_BasisGroups[m_Order[k]] = groupsOf(filled, dimension);
        if (check != 0.0) {
            return false;
        }
    }
    return true;
}

/// Finds the weights of each joint, one or those of a row. False when they are many, or one isn't finite.
NQ_WIDE_ROWS bool NqSparseSystem::findWeights(const NqReArray* metric) {
    const unsigned columns = metric ? metric->columns() : 1;
    const unsigned rows = metric ? std::min(m_N, metric->rows()) : m_N;
    unsigned count = 0;
    bool isFinite = true;
    for (unsigned j = 0; j < m_N; ++j) {
        const std::size_t length = j < rows && metric ? (*metric)[j].size() : 0;
        m_Weights[j] = !metric ? &kWeightless : length > 0 ? (*metric)[j].data() : nullptr;
        m_WeightsFilled[j] = 0;
        if (length > 0 && columns == 1) {
            isFinite = isFinite && std::isfinite(m_Weights[j][0]);
        } else if (length > 0) {
            const auto end = static_cast<unsigned>(std::min<std::size_t>(std::min(m_N, columns), length));
            m_WeightsFilled[j] = NqRowMask::filled(m_Weights[j], end);
            NqRowMask::forEach(m_WeightsFilled[j],
                               [&](unsigned k) { isFinite = isFinite && std::isfinite(m_Weights[j][k]); });
        }
        count += static_cast<unsigned>(std::popcount(m_WeightsFilled[j]));
    }
    m_IsDiagonal = columns == 1;
    return isFinite && count <= kWeights * m_N;
}

/// W N, whose columns are the rows below J.
NQ_WIDE_ROWS void NqSparseSystem::weightBasis(const NqReArray& nullSpace, NqReArray& weightedNullSpace) {
    for (unsigned r = m_M; r < m_N; ++r) {
        setToZeros(m_Rows[r], m_N);
        m_Filled[r] = 0;
    }
    const unsigned dimension = m_N - m_M;
    for (unsigned j = 0; j < m_N; ++j) {
        double* const weighted = weightedNullSpace[j].data();
        Mask filled = 0;
        if (m_IsDiagonal) {
            const double weight = m_Weights[j] ? *m_Weights[j] : 0.0;
            const double* const basis = nullSpace[j].data();
            for (unsigned i = 0; i < dimension; ++i) {
                weighted[i] = basis[i] * weight;
            }
            filled = m_BasisFilled[j];
        } else {
            setToZeros(weighted, dimension);
            NqRowMask::forEach(m_WeightsFilled[j], [&](unsigned k) {
                addMultiple(weighted, m_Weights[j][k], nullSpace[k].data(), m_BasisGroups[k], dimension);
                filled |= m_BasisFilled[k];
            });
        }
        NqRowMask::forEach(filled, [&](unsigned i) {
            m_Rows[m_M + i][j] = weighted[i];
            m_Filled[m_M + i] |= bit(j);
        });
    }
}

/// Puts the rows into the order of the factors.
NQ_WIDE_ROWS void NqSparseSystem::permuteRows() {
    const double* multiplier = m_Multipliers.data();
    for (unsigned r = 0; r < m_N; ++r) {
        double* const row = m_Rows[r];
        double values[NqRowMask::Places];
        NqRowMask::forEach(m_Filled[r],
                           [&](unsigned column) { values[column] = std::exchange(row[column], 0.0); });
        Mask places = m_Eliminated[r];
        NqRowMask::forEach(m_Filled[r], [&](unsigned column) {
            row[m_Place[column]] = values[column];
            places |= bit(m_Place[column]);
        });
        NqRowMask::forEach(m_Eliminated[r], [&](unsigned k) { row[k] = *multiplier++; });
        row[r] = m_Pivot[r];
        m_Filled[r] = places;
    }
}

NQ_WIDE_ROWS bool NqSparseSystem::substitute(const NqReArray& factors, std::array<double, 2>* x) const {
    for (unsigned i = 0; i < m_N; ++i) {
        const double* const row = factors[i].data();
        Pair sum = load(x[i]);
        NqRowMask::forEach(m_Filled[i] & (bit(i) - 1), [&](unsigned j) { sum -= load(x[j]) * row[j]; });
        store(x[i], sum);
    }
    Pair check = {};
    for (unsigned i = m_N; i-- > 0;) {
        const double* const row = factors[i].data();
        Pair sum = load(x[i]);
        NqRowMask::forEach(m_Filled[i] & ~(bit(i) - 1) & ~bit(i),
                           [&](unsigned j) { sum -= load(x[j]) * row[j]; });
        sum /= row[i];
        store(x[i], sum);
        check += sum * 0.0; // NaN, if it isn't finite
    }
    return check[0] == 0.0 && check[1] == 0.0;
}
