#include <nqControlCore/core/NqCoreVelocityControlTool.h>

#include <nqControlCore/core/NqSmallSystem.h>
#include <nqControlCore/core/NqSparseSystem.h>
#include <nqControlCore/foundation/manipulator/NqJacobianState.h>
#include <nqControlCore/foundation/matrix/NqRowOperations.h>
#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <typeinfo>

using NqRowOperations::load;
using NqRowOperations::Pair;
using NqRowOperations::Panel;
using NqRowOperations::PanelWidth;
using NqRowOperations::store;

namespace {

/// What an exactly zero pivot of the lower rows becomes.
constexpr double kRepairedPivot = 1.0e-300;

bool reportDimensions(unsigned n, unsigned m) {
    Nq::Print::instance().write(
        Nq::PrintFailure,
        "NqCoreVelocityControlTool::calcJointRates(): n=%d is not greater than or equal to m=%d\n", n, m);
    return false;
}

bool reportVector() {
    Nq::Print::instance().write(
        Nq::PrintFailure, "NqCoreVelocityControlTool::calcJointRates(): incorrectly dimensioned vector.\n");
    return false;
}

bool hasRows(const NqReArray& array, std::size_t rows, std::size_t entries) {
    for (std::size_t i = 0; i < rows; ++i) {
        if (i >= array.size() || array[i].size() < entries) {
            return false;
        }
    }
    return true;
}

bool hasShape(const NqReArray& array, unsigned rows, unsigned columns) {
    return array.rows() == rows && array.columns() == columns;
}

bool isSmall(unsigned m, unsigned n) {
    return m != 0 && n <= NqSmallSystem::Places;
}

void swapColumns(NqReArray& matrix, unsigned first, unsigned second, unsigned rows) {
    for (unsigned r = 0; r < rows; ++r) {
        std::swap(matrix[r][first], matrix[r][second]);
    }
}

NQ_WIDE_ROWS void copyRows(const NqReArray& source, unsigned rows, unsigned columns, NqReArray& target) {
    for (unsigned i = 0; i < rows; ++i) {
        NqRowOperations::copy(target[i].data(), source[i].data(), columns);
    }
}

/// target[i] += sum over k of factors[k] rows[k][i], in rising k.
NQ_WIDE_ROWS void addRows(const NqReArray& rows, const double* factors, unsigned count, double* target,
                          std::size_t length) {
    if (length < PanelWidth) {
        for (std::size_t i = 0; i < length; ++i) {
            for (unsigned k = 0; k < count; ++k) {
                target[i] += factors[k] * rows[k][i];
            }
        }
        return;
    }
    for (unsigned k = 0; k < count; k += PanelWidth) {
        const double* panel[PanelWidth];
        const unsigned width = std::min(PanelWidth, count - k);
        for (unsigned i = 0; i < width; ++i) {
            panel[i] = rows[k + i].data();
        }
        NqRowOperations::addMultiples(target, factors + k, panel, width, 0, length);
    }
}

/// weighted[j][i] = sum over k of W[j][k] N[k][i], each from 0 in rising k. Entries that W lacks count as
/// zero.
void applyMetric(const NqReArray& metric, const NqReArray& nullSpace, unsigned n, NqReArray& weighted) {
    const unsigned metricColumns = metric.columns();
    const unsigned weightedRows = std::min(n, metric.rows());
    for (unsigned j = 0; j < n; ++j) {
        std::vector<double>& target = weighted[j];
        if (j < weightedRows && metricColumns == 1) {
            const double weight = metric[j].empty() ? 0.0 : metric[j][0];
            std::transform(nullSpace[j].begin(), nullSpace[j].end(), target.begin(),
                           [weight](double entry) { return entry * weight; });
            continue;
        }
        std::fill(target.begin(), target.end(), 0.0);
        if (j >= weightedRows) {
            continue;
        }
        const std::vector<double>& weights = metric[j];
        const auto count =
            static_cast<unsigned>(std::min<std::size_t>(std::min(n, metricColumns), weights.size()));
        addRows(nullSpace, weights.data(), count, target.data(), target.size());
    }
}

/// How many columns are zero. `sums` is working memory: of magnitudes, which are zero for zeros alone.
NQ_WIDE_ROWS std::size_t countZeroColumns(const NqReArray& matrix, unsigned rows, std::vector<double>& sums) {
    sums.assign(matrix.columns(), 0.0);
    double* __restrict const sum = sums.data();
    for (unsigned j = 0; j < rows; ++j) {
        const double* __restrict const row = matrix[j].data();
        for (std::size_t i = 0; i < sums.size(); ++i) {
            sum[i] += std::abs(row[i]);
        }
    }
    return static_cast<std::size_t>(std::count(sums.begin(), sums.end(), 0.0));
}

void reportZeroColumns(const NqReArray& weightedNullSpace, unsigned n, std::vector<double>& sums) {
    for (std::size_t left = countZeroColumns(weightedNullSpace, n, sums); left > 0; --left) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqCoreVelocityControlTool::prep(): M.nj has zero column\n");
    }
}

/// matrix[m + i][c] = source[columnOrder[c]][i] for the rows and columns from the given ones on, a few
/// columns abreast.
void fillTransposed(const NqReArray& source, const std::vector<unsigned int>& columnOrder, unsigned m,
                    unsigned firstRow, unsigned firstColumn, NqReArray& matrix) {
    const auto n = static_cast<unsigned>(columnOrder.size());
    for (unsigned first = firstColumn; first < n; first += PanelWidth) {
        const double* columns[PanelWidth];
        const unsigned width = std::min(PanelWidth, n - first);
        for (unsigned k = 0; k < width; ++k) {
            columns[k] = source[columnOrder[first + k]].data();
        }
        for (unsigned i = firstRow - m; m + i < n; ++i) {
            double* const target = matrix[m + i].data() + first;
            if (width == PanelWidth) {
                target[0] = columns[0][i];
                target[1] = columns[1][i];
                target[2] = columns[2][i];
                target[3] = columns[3][i];
            } else {
                for (unsigned k = 0; k < width; ++k) {
                    target[k] = columns[k][i];
                }
            }
        }
    }
}

/// The pivot column of a row, of columns `begin` on. `kept` stands where none qualifies.
unsigned choosePivot(const std::vector<double>& row, unsigned begin, unsigned end, bool lastWins,
                     unsigned kept) {
    return lastWins ? NqRowOperations::lastLargest(row.data(), begin, end, kept)
                    : NqRowOperations::firstLargest(row.data(), begin, end, kept);
}

/// Solves with L, unit lower triangular, for a right-hand side of numbers in x, or for two of them side by
/// side. The sums of a few rows are independent up to these rows themselves, and go abreast.
template <typename Number>
void substituteForward(const NqReArray& factors, unsigned n, Number* x) {
    unsigned first = 0;
    for (; first + PanelWidth <= n; first += PanelWidth) {
        const double* const r0 = factors[first].data();
        const double* const r1 = factors[first + 1].data();
        const double* const r2 = factors[first + 2].data();
        const double* const r3 = factors[first + 3].data();
        auto s0 = load(x[first]), s1 = load(x[first + 1]), s2 = load(x[first + 2]), s3 = load(x[first + 3]);
        for (unsigned j = 0; j < first; ++j) {
            const auto known = load(x[j]);
            s0 -= known * r0[j];
            s1 -= known * r1[j];
            s2 -= known * r2[j];
            s3 -= known * r3[j];
        }
        s1 -= s0 * r1[first];
        s2 = (s2 - s0 * r2[first]) - s1 * r2[first + 1];
        s3 = ((s3 - s0 * r3[first]) - s1 * r3[first + 1]) - s2 * r3[first + 2];
        store(x[first], s0);
        store(x[first + 1], s1);
        store(x[first + 2], s2);
        store(x[first + 3], s3);
    }
    for (unsigned i = first; i < n; ++i) {
        const double* const row = factors[i].data();
        auto sum = load(x[i]);
        for (unsigned j = 0; j < i; ++j) {
            sum -= load(x[j]) * row[j];
        }
        store(x[i], sum);
    }
}

/// The same with U. Each sum begins with the unknown that was found last, so that the rows wait for each
/// other, and only two right-hand sides go abreast. An exactly zero pivot leaves its unknown as it came.
template <typename Number>
void substituteBackward(const NqReArray& factors, unsigned n, Number* x) {
    for (unsigned i = n; i-- > 0;) {
        const double* const row = factors[i].data();
        auto sum = load(x[i]);
        for (unsigned j = i + 1; j < n; ++j) {
            sum -= load(x[j]) * row[j];
        }
        if (row[i] != 0.0) {
            store(x[i], sum / row[i]);
        }
    }
}

/// Undoes the column interchanges of a solution, and gives the determinant.
template <typename Number>
double finish(const NqReArray& factors, const std::vector<unsigned>& indices, Number* x) {
    const auto n = static_cast<unsigned>(factors.size());
    bool isOdd = false;
    for (unsigned i = n; i-- > 0;) {
        if (indices[i] != i) {
            std::swap(x[i], x[indices[i]]);
            isOdd = !isOdd;
        }
    }
    double determinant = 1.0;
    for (unsigned i = 0; i < n; ++i) {
        determinant *= factors[i][i];
    }
    return isOdd ? determinant * -1.0 : determinant;
}

void growTo(std::size_t size, std::vector<double>& solution) {
    if (solution.size() < size) {
        solution.assign(size, 0.0);
    }
}

} // namespace

const NqReArray& NqCoreVelocityControlTool::primaryMatrix() const {
    return m_Arrays.matrix();
}

void NqCoreVelocityControlTool::setPrimaryMatrix(const NqReArray& primaryMatrix) {
    m_Arrays.matrix() = primaryMatrix;
}

const NqReArray& NqCoreVelocityControlTool::nullSpace() const {
    return m_Arrays.nullSpace();
}

const NqReArray& NqCoreVelocityControlTool::weightedNullSpace() const {
    return m_Arrays.weightedNullSpace();
}

const bool& NqCoreVelocityControlTool::weightFlag() const {
    return m_WeightFlag;
}

void NqCoreVelocityControlTool::setWeightFlag(bool weightFlag) {
    m_WeightFlag = weightFlag;
}

const std::vector<unsigned int>& NqCoreVelocityControlTool::indices() const {
    return m_Indices;
}

void NqCoreVelocityControlTool::setIndices(const std::vector<unsigned int>& indices) {
    m_Indices = indices;
}

bool NqCoreVelocityControlTool::calcJointRates(NqJacobianState* jacobianState, const NqReArray& jacobian,
                                               const NqReArray& metric, const std::vector<double>& gradient,
                                               const double& alpha, const std::vector<double>& velocity,
                                               unsigned int n, std::vector<double>& jointRates,
                                               std::vector<double>& nullSpaceJointRates,
                                               double& determinant) {
    m_M = jacobian.rows();
    m_N = n;
    *m_PassOverZeros = false;
    if (m_N < m_M) {
        m_NullDimension = 0;
        jointRates.resize(m_N);
        return reportDimensions(m_N, m_M);
    }
    m_NullDimension = m_N - m_M;
    bool rowsFit = true;
    for (unsigned i = 0; i < m_M; ++i) {
        rowsFit = rowsFit && jacobian[i].size() == m_N;
    }
    if (gradient.size() < m_N || velocity.size() < m_M || !rowsFit) {
        return reportVector();
    }
    resize();
    if (!factor(jacobianState, jacobian, metric)) {
        return false;
    }
    std::vector<double>& stacked = *m_StackedRightHandSide;
    stacked.assign(m_N, 0.0);
    double* const descent = stacked.data() + m_M;
    if (!*m_PassOverZeros || !m_Arrays.sparseSystem().project(gradient, descent)) {
        addRows(m_Arrays.nullSpace(), gradient.data(), m_N, descent, m_NullDimension);
    }
    for (unsigned i = m_M; i < m_N; ++i) {
        stacked[i] = -(stacked[i] * alpha);
    }
    return solveTwice(velocity, jointRates, nullSpaceJointRates, determinant);
}

bool NqCoreVelocityControlTool::calcJointRatesAB(NqJacobianState* jacobianState, const NqReArray& bRows,
                                                 const std::vector<double>& nullGradient, const double& alpha,
                                                 const std::vector<double>& velocity, unsigned int n,
                                                 std::vector<double>& jointRates,
                                                 std::vector<double>& nullSpaceJointRates,
                                                 double& determinant) {
    if (!jacobianState) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqCoreVelocityControlTool::calcJointRatesAB(): no Jacobian state\n");
        return false;
    }
    *m_PassOverZeros = false;
    NqReArray& matrix = m_Arrays.matrix();
    NqReArray& nullSpace = m_Arrays.nullSpace();
    const NqReArray& jacobian = jacobianState->jacobianArray();
    if (jacobian.size() != 0) {
        matrix = jacobianState->factoredJacobianArray();
        nullSpace = jacobianState->nullSpaceArray();
        m_Indices = jacobianState->pivotIndices();
    } else {
        matrix.setToIdentity(n, n);
        nullSpace.setToIdentity(n, n);
        m_Indices.resize(n);
        std::iota(m_Indices.begin(), m_Indices.end(), 0u);
    }
    m_N = n;
    m_M = jacobian.rows();
    if (m_N < m_M) {
        m_NullDimension = 0;
        if (jointRates.size() < m_N) {
            jointRates.resize(m_N);
        }
        return reportDimensions(m_N, m_M);
    }
    m_NullDimension = m_N - m_M;
    bool pivotsFit = true;
    for (std::size_t i = 0; i < m_Indices.size(); ++i) {
        pivotsFit = pivotsFit && (i < m_N ? m_Indices[i] < m_N : m_Indices[i] == i);
    }
    if (nullGradient.size() < m_NullDimension || velocity.size() < m_M || !pivotsFit ||
        !hasShape(matrix, m_N, m_N) || !hasRows(matrix, m_N, m_N) || !hasRows(bRows, m_NullDimension, m_N)) {
        return reportVector();
    }
    if (!prep(matrix, m_Indices, m_M, m_N, bRows)) {
        return false;
    }
    std::vector<double>& stacked = *m_StackedRightHandSide;
    stacked.resize(m_N);
    for (unsigned i = m_M; i < m_N; ++i) {
        stacked[i] = -(nullGradient[i - m_M] * alpha);
    }
    return solveTwice(velocity, jointRates, nullSpaceJointRates, determinant);
}

bool NqCoreVelocityControlTool::isPlain() const {
    return m_LeavesPrepAndCalc || typeid(*this) == typeid(NqCoreVelocityControlTool);
}

/// Puts the velocity on top of the right-hand side, whose lower part stands, and solves with it and with
/// zeros in its place.
bool NqCoreVelocityControlTool::solveTwice(const std::vector<double>& velocity,
                                           std::vector<double>& jointRates,
                                           std::vector<double>& nullSpaceJointRates, double& determinant) {
    std::vector<double>& stacked = *m_StackedRightHandSide;
    std::copy_n(velocity.begin(), m_M, stacked.begin());
    if (isPlain()) {
        growTo(m_N, jointRates); // may be the vector that the velocity came in
        growTo(m_N, nullSpaceJointRates);
        determinant = solveBoth(jointRates.data(), nullSpaceJointRates.data());
        return true;
    }
    std::vector<double>& nullPart = *m_NullRightHandSide;
    nullPart = stacked;
    std::fill_n(nullPart.begin(), m_M, 0.0);
    calc(m_Arrays.matrix(), m_Indices, stacked, jointRates, determinant);
    calc(m_Arrays.matrix(), m_Indices, nullPart, nullSpaceJointRates, determinant);
    return true;
}

/// Solves for both right-hand sides side by side, and gives the determinant.
double NqCoreVelocityControlTool::solveBoth(double* jointRates, double* nullSpaceJointRates) {
    pairUp();
    std::array<double, 2>* const x = m_Pairs->data();
    if (*m_PassOverZeros) {
        const NqSparseSystem& system = m_Arrays.sparseSystem();
        if (system.solve(x, jointRates, nullSpaceJointRates)) {
            return system.determinant();
        }
        pairUp(); // to begin once more
    }
    const NqReArray& factors = m_Arrays.matrix();
    if (m_N != 0 && m_N <= NqSmallSystem::Places) {
        NqSmallSystem::substitute(factors, x);
    } else {
        substituteForward(factors, m_N, x);
        substituteBackward(factors, m_N, x);
    }
    const double determinant = finish(factors, m_Indices, x);
    for (unsigned i = 0; i < m_N; ++i) {
        jointRates[i] = x[i][0];
    }
    for (unsigned i = 0; i < m_N; ++i) {
        nullSpaceJointRates[i] = x[i][1];
    }
    return determinant;
}

/// Puts both right-hand sides side by side.
void NqCoreVelocityControlTool::pairUp() {
    m_Pairs->resize(m_N);
    std::array<double, 2>* const pairs = m_Pairs->data();
    const double* const stacked = m_StackedRightHandSide->data();
    for (unsigned i = 0; i < m_M; ++i) {
        store(pairs[i], Pair{stacked[i], 0.0});
    }
    for (unsigned i = m_M; i < m_N; ++i) {
        store(pairs[i], Pair{stacked[i], stacked[i]});
    }
}

void NqCoreVelocityControlTool::resize() {
    m_Arrays.resize(m_N, m_N - m_NullDimension);
    if (m_Indices.size() < m_N) {
        m_Indices.assign(m_N, 0u);
    }
    // A step that takes another way than those before is not to allocate either.
    for (std::vector<unsigned int>* scratch : {&*m_FirstPivots, &*m_SecondPivots, &*m_ColumnOrder}) {
        scratch->reserve(m_N);
    }
    m_ColumnSums->reserve(m_N);
}

bool NqCoreVelocityControlTool::prep(NqReArray& primaryMatrix, std::vector<unsigned int>& indices,
                                     unsigned int m, unsigned int n, const NqReArray& bRows) {
    while (indices.size() < n) {
        indices.push_back(static_cast<unsigned>(indices.size()));
    }
    completeFactoring(primaryMatrix, indices, m, n, Ties::LastWins,
                      [&](unsigned firstRow, unsigned firstColumn) {
                          const unsigned* const columnOrder = m_ColumnOrder->data();
                          for (unsigned r = firstRow; r < n; ++r) {
                              const double* const source = bRows[r - m].data();
                              double* const target = primaryMatrix[r].data();
                              for (unsigned c = firstColumn; c < n; ++c) {
                                  target[c] = source[columnOrder[c]];
                              }
                          }
                      });
    return true;
}

/// Factors the system of a step: for a plain tool without a copy of J, where there is a quick way.
bool NqCoreVelocityControlTool::factor(NqJacobianState* jacobianState, const NqReArray& jacobian,
                                       const NqReArray& metric) {
    const bool hasMetric = m_M == 0 || metric.rows() != 0;
    const NqReArray* const weights = m_WeightFlag ? &metric : nullptr;
    const bool isPlainStep = isPlain() && hasMetric;
    if (isPlainStep) {
        m_Indices.resize(m_N);
        *m_PassOverZeros = passOverZeros(jacobianState, jacobian, m_M, m_N, weights, m_Indices);
        if (*m_PassOverZeros) {
            m_Arrays.leaveToSparseSystem();
            return true;
        }
        m_Arrays.forgetSparseSystem(); // all arrays will be written
    }
    NqReArray& matrix = m_Arrays.matrix();
    for (unsigned i = 0; i < m_N; ++i) {
        matrix[i].resize(m_N); // one from outside may be ragged
    }
    if (isPlainStep && isSmall(m_M, m_N) &&
        NqSmallSystem::factor(jacobian, m_M, weights, matrix, m_Indices, m_Arrays.nullSpace(),
                              m_Arrays.weightedNullSpace())) {
        return true;
    }
    copyRows(jacobian, m_M, m_N, matrix);
    if (isPlainStep) {
        factorInGeneral(jacobianState, m_M, weights, matrix, m_Indices, m_Arrays.nullSpace(),
                        m_Arrays.weightedNullSpace());
        return true;
    }
    return prep(jacobianState, matrix, m_Indices, m_M, m_WeightFlag ? 1u : 0u, metric, m_Arrays.nullSpace(),
                m_Arrays.weightedNullSpace());
}

bool NqCoreVelocityControlTool::prep(NqJacobianState* jacobianState, NqReArray& primaryMatrix,
                                     std::vector<unsigned int>& indices, unsigned int m,
                                     unsigned int weightFlag, const NqReArray& metric, NqReArray& nullSpace,
                                     NqReArray& weightedNullSpace) {
    const unsigned n = primaryMatrix.columns();
    indices.resize(n);
    if (m != 0 && metric.rows() == 0) {
        return false;
    }
    const NqReArray* const weights = weightFlag == 1 ? &metric : nullptr;
    const bool hasShapes = hasShape(primaryMatrix, n, n) && hasShape(nullSpace, n, n - m) &&
                           hasShape(weightedNullSpace, n, n - m);
    if (hasShapes && passOverZeros(jacobianState, primaryMatrix, m, n, weights, indices)) {
        const NqSparseSystem& system = m_Arrays.sparseSystem();
        system.giveFactors(primaryMatrix);
        system.giveNullSpace(nullSpace);
        system.giveWeightedNullSpace(weightedNullSpace);
        return true;
    }
    if (!hasShapes || !isSmall(m, n) ||
        !NqSmallSystem::factor(primaryMatrix, m, weights, primaryMatrix, indices, nullSpace,
                               weightedNullSpace)) {
        factorInGeneral(jacobianState, m, weights, primaryMatrix, indices, nullSpace, weightedNullSpace);
    }
    return true;
}

/// Leaves the factors to the sparse system, and gives the interchanges. False where the zeros are too few, or
/// nobody asks for it.
bool NqCoreVelocityControlTool::passOverZeros(NqJacobianState* jacobianState, const NqReArray& jacobian,
                                              unsigned m, unsigned n, const NqReArray* metric,
                                              std::vector<unsigned int>& indices) {
    return m != 0 && jacobianState && jacobianState->useSparseNullSpace() &&
           m_Arrays.sparseSystem().factor(jacobian, m, n, jacobianState->sparsityMasks(), metric, indices);
}

/// The way of any system; J is in the first m rows of the matrix.
void NqCoreVelocityControlTool::factorInGeneral(NqJacobianState* jacobianState, unsigned m,
                                                const NqReArray* metric, NqReArray& matrix,
                                                std::vector<unsigned int>& indices, NqReArray& nullSpace,
                                                NqReArray& weightedNullSpace) {
    const unsigned n = matrix.columns();
    if (m == 0) {
        nullSpace.setToIdentity(n, n);
        std::iota(indices.begin(), indices.end(), 0u);
    } else if (jacobianState && jacobianState->useSparseNullSpace()) {
        matrix.nullSpaceSparse(nullSpace, m, indices, jacobianState->sparsityIndicesFirst(),
                               jacobianState->sparsityIndicesSecond());
    } else {
        matrix.nullSpace(nullSpace, m, indices);
    }
    if (metric) {
        applyMetric(*metric, nullSpace, n, weightedNullSpace);
    } else {
        weightedNullSpace = nullSpace;
    }
    reportZeroColumns(weightedNullSpace, n, *m_ColumnSums);
    completeFactoring(matrix, indices, m, n, Ties::FirstWins, [&](unsigned firstRow, unsigned firstColumn) {
        fillTransposed(weightedNullSpace, *m_ColumnOrder, m, firstRow, firstColumn, matrix);
    });
}

/// Has `fill(firstRow, firstColumn)` write the lower rows from there on, with column m_ColumnOrder[c] of the
/// caller at c; eliminates them, and merges the interchanges of both stages in `indices`.
template <typename Fill>
void NqCoreVelocityControlTool::completeFactoring(NqReArray& matrix, std::vector<unsigned int>& indices,
                                                  unsigned m, unsigned n, Ties ties, const Fill& fill) {
    *m_FirstPivots = indices;
    m_SecondPivots->resize(indices.size());
    std::iota(m_SecondPivots->begin(), m_SecondPivots->end(), 0u);
    m_ColumnOrder->resize(n);
    orderColumns(0);
    fill(m, 0);
    eliminate(matrix, m, n, ties, fill);
    matrix.combineIndices(*m_FirstPivots, *m_SecondPivots, indices);
}

/// Puts the columns in order: the interchanges of the first stage, and those of the second before step `end`.
void NqCoreVelocityControlTool::orderColumns(unsigned end) {
    std::vector<unsigned int>& columnOrder = *m_ColumnOrder;
    std::iota(columnOrder.begin(), columnOrder.end(), 0u);
    for (unsigned i = 0; i < columnOrder.size(); ++i) {
        std::swap(columnOrder[i], columnOrder[(*m_FirstPivots)[i]]);
    }
    for (unsigned i = 0; i < end; ++i) {
        std::swap(columnOrder[i], columnOrder[(*m_SecondPivots)[i]]);
    }
}

/// Eliminates the lower rows a few pivots at a time, each along whole rows. To the last bit the same as
/// column by column, as every element gets the same terms in the same order.
///
/// A row of zeros (or of NaN) keeps the pivot of the row before, which may be a column that is done with; it
/// changes places all the same.
template <typename Fill>
NQ_WIDE_ROWS void NqCoreVelocityControlTool::eliminate(NqReArray& matrix, unsigned m, unsigned n, Ties ties,
                                                       const Fill& fill) {
    for (unsigned first = 0; first < m; first += PanelWidth) {
        Panel panel(first);
        for (unsigned c = first; c < std::min(first + PanelWidth, m); ++c) {
            panel.add(matrix[c].data());
        }
        for (unsigned r = m; r < n; ++r) {
            panel.eliminate(matrix[r].data(), n);
        }
    }
    unsigned p = 0;
    unsigned settled = n; // the row whose pivot was one that is done with
    for (unsigned first = m, c = m; first < n; first = c) {
        Panel panel(first);
        const unsigned behind = std::min(first + PanelWidth, n);
        for (; c < behind; ++c) {
            std::vector<double>& row = matrix[c];
            if (c != settled) {
                panel.eliminate(row.data(), n);
                p = choosePivot(row, c, n, ties == Ties::LastWins, p);
                (*m_SecondPivots)[c] = p;
                if (p < c) [[unlikely]] {
                    takeBack(matrix, panel, c, fill);
                    settled = c;
                    break;
                }
                if (p != c) {
                    swapColumns(matrix, c, p, n);
                }
            }
            if (row[c] == 0.0) {
                row[c] = kRepairedPivot;
            }
            panel.add(row.data());
        }
        if (c < behind) {
            continue;
        }
        for (unsigned r = behind; r < n; ++r) {
            panel.eliminate(matrix[r].data(), n);
        }
    }
}

/// Exchanges column c for a pivot column that is done with. In the rows below row c the two don't mean the
/// same: one holds their multiplier, which now becomes an element to be eliminated, and the other is that
/// multiplier from now on, as it came. So they begin once more in all columns from c on, with the multipliers
/// that they then have.
template <typename Fill>
void NqCoreVelocityControlTool::takeBack(NqReArray& matrix, const NqRowOperations::Panel& panel, unsigned c,
                                         const Fill& fill) {
    const auto n = static_cast<unsigned>(m_ColumnOrder->size());
    for (unsigned r = c + 1; r < n; ++r) {
        double unused[PanelWidth];
        panel.multipliers(matrix[r].data(), unused);
    }
    orderColumns(c);
    fill(c + 1, c);
    swapColumns(matrix, c, (*m_SecondPivots)[c], n);
    for (unsigned r = c + 1; r < n; ++r) {
        double* const row = matrix[r].data();
        for (unsigned k = 0; k < c; ++k) {
            NqRowOperations::addMultiple(row + c, -row[k], matrix[k].data() + c, n - c);
        }
    }
}

bool NqCoreVelocityControlTool::calc(const NqReArray& factoredMatrix,
                                     const std::vector<unsigned int>& indices,
                                     const std::vector<double>& rightHandSide, std::vector<double>& solution,
                                     double& determinant) {
    const auto n = static_cast<unsigned>(factoredMatrix.size());
    if (rightHandSide.size() < n) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqCoreVelocityControlTool::calc(): bad dimensions on input...\n");
        Nq::Print::instance().write(Nq::PrintFailure,
                                    " problem dimension %d, right-hand-side dimension %d.\n", n,
                                    rightHandSide.size());
        return false;
    }
    growTo(n, solution);
    std::copy_n(rightHandSide.begin(), n, solution.begin());
    substituteForward(factoredMatrix, n, solution.data());
    substituteBackward(factoredMatrix, n, solution.data());
    determinant = finish(factoredMatrix, indices, solution.data());
    return true;
}
