#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <nqControlCore/foundation/matrix/NqRowOperations.h>
#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/text/NqTextConversion.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <istream>
#include <limits>
#include <numeric>
#include <ostream>
#include <string_view>

namespace {

using NqRowOperations::Panel;
using NqRowOperations::PanelWidth;

constexpr std::string_view kBinaryMark = "NqReArr1";

/// The columns `begin` to `end` - 1, in which a matrix is zero, down to the row in work. None: both are the
/// number of columns.
struct Gap {
    unsigned begin;
    unsigned end;

    /// Takes in row r, which is zero in columns `start` to `stop` - 1 of `columns`. Column r is left out, as
    /// its pivot comes there, and a gap too short to be worth two loops is given up.
    void narrow(unsigned r, unsigned start, unsigned stop, unsigned columns) {
        begin = std::max({begin, start, r + 1});
        end = std::min(end, stop);
        if (begin + PanelWidth > end) {
            begin = end = columns;
        }
    }
};

bool refuse(const char* operation) {
    Nq::Print::instance().write(Nq::PrintFailure, "NqReArray::%s(): bad dimensions on input...\n", operation);
    return false;
}

/// Of each row, the longest run of zeros within that of the row above.
template <typename Rows>
void findZeroRuns(const Rows& rows, unsigned m, unsigned columns, std::vector<unsigned int>& zeroStart,
                  std::vector<unsigned int>& zeroEnd) {
    zeroStart.resize(m);
    zeroEnd.resize(m);
    unsigned begin = 0;
    unsigned end = columns;
    for (unsigned r = 0; r < m; ++r) {
        unsigned runStart = begin, bestStart = begin, bestEnd = begin;
        for (unsigned j = begin; j < end; ++j) {
            if (rows[r][j] != 0) {
                runStart = j + 1;
            } else if (j + 1 - runStart > bestEnd - bestStart) {
                bestStart = runStart;
                bestEnd = j + 1;
            }
        }
        zeroStart[r] = begin = bestStart;
        zeroEnd[r] = end = bestEnd;
    }
}

/// Has `fill` write the result, by way of a fresh array where the result is one of the operands.
template <typename Fill>
void writeResult(NqReArray& result, bool isOperand, const Fill& fill) {
    if (isOperand) {
        NqReArray fresh;
        fill(fresh);
        result = std::move(fresh);
    } else {
        fill(result);
    }
}

template <typename Function>
void applyToEach(const NqReArray& operand, NqReArray& result, const Function& function) {
    if (&operand != &result) {
        result = operand;
    }
    for (std::size_t i = 0; i < result.size(); ++i) {
        std::transform(result[i].begin(), result[i].end(), result[i].begin(), function);
    }
}

/// The entry that `beats` all others; a NaN if there is one, 0.0 with a line if there is no entry.
template <typename Beats>
double extreme(const char* operation, const std::vector<NqReArray::Row>& rows, const Beats& beats) {
    const double* best = nullptr;
    for (const NqReArray::Row& row : rows) {
        for (const double& entry : row) {
            if (std::isnan(entry)) {
                return entry;
            }
            if (!best || beats(entry, *best)) {
                best = &entry;
            }
        }
    }
    if (!best) {
        refuse(operation);
    }
    return best ? *best : 0.0;
}

/// Solves L y = b in place, for L with any diagonal.
void substituteForward(const NqReArray& lower, double* x) {
    for (std::size_t i = 0; i < lower.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            x[i] -= lower[i][j] * x[j];
        }
        x[i] /= lower[i][i];
    }
}

/// Solves L^T x = y in place.
void substituteBackOnTranspose(const NqReArray& lower, double* x) {
    for (std::size_t i = lower.size(); i-- > 0;) {
        x[i] /= lower[i][i];
        for (std::size_t j = 0; j < i; ++j) {
            x[j] -= lower[i][j] * x[i];
        }
    }
}

void putNatural(std::ostream& stream, std::uint64_t value, unsigned bytes) {
    for (unsigned i = 0; i < bytes; ++i) {
        stream.put(static_cast<char>(value >> (8 * i) & 0xffu));
    }
}

bool getNatural(std::istream& stream, std::uint64_t& value, unsigned bytes) {
    std::array<char, 8> raw{};
    if (!stream.read(raw.data(), static_cast<std::streamsize>(bytes))) {
        return false;
    }
    value = 0;
    for (unsigned i = bytes; i-- > 0;) {
        value = value << 8 | static_cast<unsigned char>(raw[i]);
    }
    return true;
}

/// Where the content of `place` came from, by all interchanges of `list`.
std::size_t cameFrom(const std::vector<unsigned int>& list, std::size_t place) {
    for (std::size_t k = list.size(); k-- > 0;) {
        place = place == k ? list[k] : (place == list[k] ? k : place);
    }
    return place;
}

/// Where the content of `place` goes, by the first `steps` interchanges of `list`.
std::size_t goesTo(const std::vector<unsigned int>& list, std::size_t steps, std::size_t place) {
    for (std::size_t k = 0; k < steps; ++k) {
        place = place == k ? list[k] : (place == list[k] ? k : place);
    }
    return place;
}

} // namespace

NqReArray::NqReArray(unsigned rows, unsigned columns) : m_Rows(rows, Row(columns, 0.0)) {}

NqReArray& NqReArray::operator=(const std::vector<double>& column) {
    m_Rows.resize(column.size());
    for (std::size_t i = 0; i < column.size(); ++i) {
        m_Rows[i].assign(1, column[i]);
    }
    return *this;
}

bool NqReArray::assign(unsigned row, const Row& values) {
    if (row >= m_Rows.size()) {
        return refuse("assign");
    }
    m_Rows[row] = values;
    return true;
}

bool NqReArray::isRectangular() const {
    return std::all_of(m_Rows.begin(), m_Rows.end(),
                       [this](const Row& row) { return row.size() == m_Rows.front().size(); });
}

bool NqReArray::isSquare() const {
    return std::all_of(m_Rows.begin(), m_Rows.end(),
                       [this](const Row& row) { return row.size() == m_Rows.size(); });
}

bool NqReArray::hasShapeOf(const NqReArray& other) const {
    return std::equal(m_Rows.begin(), m_Rows.end(), other.m_Rows.begin(), other.m_Rows.end(),
                      [](const Row& mine, const Row& its) { return mine.size() == its.size(); });
}

NqReArray& NqReArray::operator+=(const NqReArray& other) {
    if (!hasShapeOf(other)) {
        refuse("operator+=");
        return *this;
    }
    for (std::size_t i = 0; i < m_Rows.size(); ++i) {
        std::transform(m_Rows[i].begin(), m_Rows[i].end(), other[i].begin(), m_Rows[i].begin(),
                       std::plus<>());
    }
    return *this;
}

NqReArray& NqReArray::operator-=(const NqReArray& other) {
    if (!hasShapeOf(other)) {
        refuse("operator-=");
        return *this;
    }
    for (std::size_t i = 0; i < m_Rows.size(); ++i) {
        std::transform(m_Rows[i].begin(), m_Rows[i].end(), other[i].begin(), m_Rows[i].begin(),
                       std::minus<>());
    }
    return *this;
}

NqReArray NqReArray::operator-(const NqReArray& other) const {
    if (!hasShapeOf(other)) {
        refuse("operator-");
        return {};
    }
    NqReArray difference(*this);
    difference -= other;
    return difference;
}

NqReArray NqReArray::operator-() const {
    NqReArray negative;
    applyToEach(*this, negative, std::negate<>());
    return negative;
}

NqReArray NqReArray::operator*(const NqReArray& right) const {
    NqReArray product;
    transform(right, product);
    return product;
}

double NqReArray::trace() const {
    if (!isSquare()) {
        refuse("trace");
        return 0.0;
    }
    double trace = 0.0;
    for (std::size_t i = 0; i < m_Rows.size(); ++i) {
        trace += m_Rows[i][i];
    }
    return trace;
}

bool NqReArray::transform(const std::vector<double>& vector, NqReArray& result) const {
    std::vector<double> column;
    if (!transform(vector, column)) {
        return false;
    }
    result = column;
    return true;
}

bool NqReArray::transform(const std::vector<double>& vector, std::vector<double>& result) const {
    if (!isRectangular() || (!m_Rows.empty() && vector.size() != columns())) {
        return refuse("transform");
    }
    if (&vector == &result) {
        return transform(std::vector<double>(vector), result);
    }
    result.resize(m_Rows.size());
    for (std::size_t i = 0; i < m_Rows.size(); ++i) {
        result[i] = std::inner_product(vector.begin(), vector.end(), m_Rows[i].begin(), 0.0);
    }
    return true;
}

bool NqReArray::transform(const NqReArray& array, NqReArray& result) const {
    if (!isRectangular() || !array.isRectangular() || columns() != array.rows()) {
        return refuse("transform");
    }
    writeResult(result, &result == this || &result == &array, [&](NqReArray& product) {
        product.setToZeros(rows(), array.columns());
        for (std::size_t i = 0; i < m_Rows.size(); ++i) {
            for (std::size_t k = 0; k < array.size(); ++k) {
                NqRowOperations::addMultiple(product[i].data(), m_Rows[i][k], array[k].data(),
                                             array[k].size());
            }
        }
    });
    return true;
}

bool NqReArray::transposeTransform(const NqReArray& array, NqReArray& result) const {
    if (!isRectangular() || !array.isRectangular() || columns() != array.columns()) {
        return refuse("transposeTransform");
    }
    writeResult(result, &result == this || &result == &array, [&](NqReArray& product) {
        product.setToZeros(rows(), array.rows());
        for (std::size_t i = 0; i < m_Rows.size(); ++i) {
            for (std::size_t j = 0; j < array.size(); ++j) {
                product[i][j] = std::inner_product(m_Rows[i].begin(), m_Rows[i].end(), array[j].begin(), 0.0);
            }
        }
    });
    return true;
}

bool NqReArray::leftTransposeTransform(const std::vector<double>& vector, std::vector<double>& result) const {
    if (!isRectangular() || vector.size() != m_Rows.size()) {
        return refuse("leftTransposeTransform");
    }
    if (&vector == &result) {
        return leftTransposeTransform(std::vector<double>(vector), result);
    }
    result.assign(columns(), 0.0);
    for (std::size_t i = 0; i < m_Rows.size(); ++i) {
        NqRowOperations::addMultiple(result.data(), vector[i], m_Rows[i].data(), result.size());
    }
    return true;
}

bool NqReArray::leftTransposeTransform(const NqReArray& array, NqReArray& result) const {
    if (!isRectangular() || !array.isRectangular() || rows() != array.rows()) {
        return refuse("leftTransposeTransform");
    }
    writeResult(result, &result == this || &result == &array, [&](NqReArray& product) {
        product.setToZeros(columns(), array.columns());
        for (std::size_t i = 0; i < m_Rows.size(); ++i) {
            for (std::size_t k = 0; k < m_Rows[i].size(); ++k) {
                NqRowOperations::addMultiple(product[k].data(), m_Rows[i][k], array[i].data(),
                                             array[i].size());
            }
        }
    });
    return true;
}

void NqReArray::elementInverse(NqReArray& result) const {
    applyToEach(*this, result, [](double entry) { return 1.0 / entry; });
}

void NqReArray::elementCosine(NqReArray& result) const {
    applyToEach(*this, result, [](double entry) { return std::cos(entry); });
}

void NqReArray::elementSine(NqReArray& result) const {
    applyToEach(*this, result, [](double entry) { return std::sin(entry); });
}

void NqReArray::elementLog(NqReArray& result) const {
    applyToEach(*this, result, [](double entry) { return std::log(entry); });
}

void NqReArray::elementLogN(double base, NqReArray& result) const {
    applyToEach(*this, result, [scale = std::log(base)](double entry) { return std::log(entry) / scale; });
}

void NqReArray::elementPow(double exponent, NqReArray& result) const {
    applyToEach(*this, result, [exponent](double entry) { return std::pow(entry, exponent); });
}

bool NqReArray::transpose(NqReArray& result) const {
    if (!isRectangular()) {
        return refuse("transpose");
    }
    writeResult(result, &result == this, [this](NqReArray& transposed) {
        transposed.setToZeros(columns(), rows());
        for (std::size_t i = 0; i < m_Rows.size(); ++i) {
            for (std::size_t j = 0; j < m_Rows[i].size(); ++j) {
                transposed[j][i] = m_Rows[i][j];
            }
        }
    });
    return true;
}

NqReArray NqReArray::transpose() const {
    NqReArray transposed;
    transpose(transposed);
    return transposed;
}

bool NqReArray::addSelfOuterProduct(const std::vector<double>& v) {
    return addWeightedSelfOuterProduct(v, 1.0);
}

bool NqReArray::addWeightedSelfOuterProduct(const std::vector<double>& v, double weight) {
    if (!isSquare() || v.size() != m_Rows.size()) {
        return refuse("addWeightedSelfOuterProduct");
    }
    for (std::size_t i = 0; i < v.size(); ++i) {
        NqRowOperations::addMultiple(m_Rows[i].data(), weight * v[i], v.data(), v.size());
    }
    return true;
}

bool NqReArray::choleskyDecomposition() {
    if (!isSquare()) {
        return refuse("choleskyDecomposition");
    }
    for (std::size_t i = 0; i < m_Rows.size(); ++i) {
        Row& row = m_Rows[i];
        for (std::size_t j = 0; j < i; ++j) {
            for (std::size_t k = 0; k < j; ++k) {
                row[j] -= row[k] * m_Rows[j][k];
            }
            row[j] /= m_Rows[j][j];
            row[i] -= row[j] * row[j];
        }
        if (!(row[i] > 0.0)) {
            return false;
        }
        row[i] = std::sqrt(row[i]);
        std::fill(row.begin() + static_cast<std::ptrdiff_t>(i) + 1, row.end(), 0.0);
    }
    return true;
}

bool NqReArray::choleskyBackSubstitution(const NqReArray& rightHandSides, NqReArray& solution) const {
    NqReArray byRows;
    return rightHandSides.transpose(byRows) && choleskyBackSubstitutionOnTranspose(byRows, byRows) &&
           byRows.transpose(solution);
}

bool NqReArray::choleskyBackSubstitutionOnTranspose(const NqReArray& rightHandSides,
                                                    NqReArray& solution) const {
    if (!lowerTriangularForwardSubstitutionOnTranspose(rightHandSides, solution)) {
        return false;
    }
    for (Row& row : solution.m_Rows) {
        substituteBackOnTranspose(*this, row.data());
    }
    return true;
}

bool NqReArray::lowerTriangularForwardSubstitution(const NqReArray& rightHandSides,
                                                   NqReArray& solution) const {
    NqReArray byRows;
    return rightHandSides.transpose(byRows) &&
           lowerTriangularForwardSubstitutionOnTranspose(byRows, byRows) && byRows.transpose(solution);
}

bool NqReArray::lowerTriangularForwardSubstitutionOnTranspose(const NqReArray& rightHandSides,
                                                              NqReArray& solution) const {
    if (!isSquare() || !rightHandSides.isRectangular() || rightHandSides.columns() != rows() ||
        &solution == this) {
        return refuse("lowerTriangularForwardSubstitutionOnTranspose");
    }
    if (&solution != &rightHandSides) {
        solution.m_Rows = rightHandSides.m_Rows;
    }
    for (Row& row : solution.m_Rows) {
        substituteForward(*this, row.data());
    }
    return true;
}

bool NqReArray::underconstrainedNormal(NqReArray& normal) const {
    return transposeTransform(*this, normal);
}

bool NqReArray::overconstrainedNormal(NqReArray& normal) const {
    return leftTransposeTransform(*this, normal);
}

bool NqReArray::approxEq(const NqReArray& other, double tolerance) const {
    const auto close = [tolerance](double a, double b) { return a == b || std::abs(a - b) <= tolerance; };
    return std::equal(m_Rows.begin(), m_Rows.end(), other.m_Rows.begin(), other.m_Rows.end(),
                      [&close](const Row& mine, const Row& its) {
                          return std::equal(mine.begin(), mine.end(), its.begin(), its.end(), close);
                      });
}

double NqReArray::infinityNorm() const {
    double norm = 0.0;
    for (const Row& row : m_Rows) {
        double magnitudes = 0.0;
        for (const double entry : row) {
            magnitudes += std::abs(entry);
        }
        if (!(magnitudes <= norm)) {
            norm = magnitudes;
        }
        if (std::isnan(norm)) {
            break;
        }
    }
    return norm;
}

void NqReArray::setToZeros(unsigned rows, unsigned columns) {
    NqReArray::setToValue(rows, columns, 0.0);
}

void NqReArray::setToValue(unsigned rows, unsigned columns, double value) {
    m_Rows.resize(rows);
    for (Row& row : m_Rows) {
        row.assign(columns, value);
    }
}

void NqReArray::setToIdentity(unsigned rows, unsigned columns) {
    NqReArray::setToZeros(rows, columns);
    for (std::size_t i = 0; i < std::min(rows, columns); ++i) {
        m_Rows[i][i] = 1.0;
    }
}

void NqReArray::resizeArray(unsigned rows, unsigned columns) {
    m_Rows.resize(rows);
    for (Row& row : m_Rows) {
        row.resize(columns, 0.0);
    }
}

void NqReArray::copyEntriesOf(const NqReArray& source) {
    for (std::size_t i = 0; i < std::min(m_Rows.size(), source.m_Rows.size()); ++i) {
        std::copy_n(source[i].begin(), std::min(m_Rows[i].size(), source[i].size()), m_Rows[i].begin());
    }
}

bool NqReArray::assignColumnTo(unsigned column, const std::vector<double>& values) {
    if (!isRectangular() || column >= columns() || values.size() != m_Rows.size()) {
        return refuse("assignColumnTo");
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        m_Rows[i][column] = values[i];
    }
    return true;
}

bool NqReArray::assignRowTo(unsigned row, const std::vector<double>& values) {
    if (row >= m_Rows.size() || values.size() != m_Rows[row].size()) {
        return refuse("assignRowTo");
    }
    m_Rows[row] = values;
    return true;
}

bool NqReArray::factor(std::vector<unsigned int>& pivots, double& sign, bool skipZeros) {
    const std::size_t n = m_Rows.size();
    pivots.resize(n);
    std::iota(pivots.begin(), pivots.end(), 0u);
    sign = 1.0;
    for (std::size_t c = 0; c < n; ++c) {
        std::size_t largest = c;
        for (std::size_t r = c + 1; r < n; ++r) {
            if (std::abs(m_Rows[r][c]) > std::abs(m_Rows[largest][c])) {
                largest = r;
            }
        }
        if (largest != c) {
            m_Rows[c].swap(m_Rows[largest]);
            pivots[c] = static_cast<unsigned>(largest);
            sign = -sign;
        }
        const Row& pivotRow = m_Rows[c];
        if (pivotRow[c] == 0.0) {
            return false;
        }
        for (std::size_t r = c + 1; r < n; ++r) {
            Row& row = m_Rows[r];
            row[c] /= pivotRow[c];
            if (!skipZeros || row[c] != 0.0) {
                NqRowOperations::addMultiple(row.data() + c + 1, -row[c], pivotRow.data() + c + 1, n - c - 1);
            }
        }
    }
    return true;
}

bool NqReArray::LUDecomposition(std::vector<unsigned int>& pivots, double& sign) {
    return isSquare() ? factor(pivots, sign, false) : refuse("LUDecomposition");
}

bool NqReArray::LUDecompositionSparse(std::vector<unsigned int>& pivots, double& sign) {
    return isSquare() ? factor(pivots, sign, true) : refuse("LUDecompositionSparse");
}

bool NqReArray::forwardAndBackSub(const std::vector<unsigned int>& pivots,
                                  const std::vector<double>& rightHandSide,
                                  std::vector<double>& solution) const {
    const std::size_t n = m_Rows.size();
    if (!isSquare() || pivots.size() != n || rightHandSide.size() != n ||
        std::any_of(pivots.begin(), pivots.end(), [n](unsigned pivot) { return pivot >= n; })) {
        return refuse("forwardAndBackSub");
    }
    solution = rightHandSide;
    for (std::size_t i = 0; i < n; ++i) {
        std::swap(solution[i], solution[pivots[i]]);
    }
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            solution[i] -= m_Rows[i][j] * solution[j];
        }
    }
    for (std::size_t i = n; i-- > 0;) {
        for (std::size_t j = i + 1; j < n; ++j) {
            solution[i] -= m_Rows[i][j] * solution[j];
        }
        solution[i] /= m_Rows[i][i];
    }
    return true;
}

bool NqReArray::solve(const std::vector<double>& rightHandSide, std::vector<double>& solution) const {
    if (!isSquare() || rightHandSide.size() != m_Rows.size()) {
        return refuse("solve");
    }
    NqReArray factors(*this);
    std::vector<unsigned int> pivots;
    double sign = 1.0;
    return factors.factor(pivots, sign, false) && factors.forwardAndBackSub(pivots, rightHandSide, solution);
}

bool NqReArray::invertSquareMatrix(NqReArray& inverse) const {
    if (!isSquare()) {
        return refuse("invertSquareMatrix");
    }
    NqReArray factors(*this);
    std::vector<unsigned int> pivots;
    double sign = 1.0;
    if (!factors.factor(pivots, sign, false)) {
        return false;
    }
    NqReArray columns;
    columns.setToIdentity(rows(), rows());
    for (Row& column : columns.m_Rows) {
        factors.forwardAndBackSub(pivots, column, column);
    }
    return columns.transpose(inverse);
}

double NqReArray::determinant() const {
    if (!isSquare()) {
        refuse("determinant");
        return 0.0;
    }
    NqReArray factors(*this);
    std::vector<unsigned int> pivots;
    double determinant = 1.0;
    if (!factors.factor(pivots, determinant, false)) {
        return 0.0;
    }
    for (std::size_t i = 0; i < m_Rows.size(); ++i) {
        determinant *= factors[i][i];
    }
    return determinant;
}

bool NqReArray::fitsNullSpace(const char* operation, const NqReArray& basis, unsigned m) const {
    const std::size_t n = columns();
    const bool fits = &basis != this && m <= m_Rows.size() && m <= n &&
                      std::all_of(m_Rows.begin(), m_Rows.begin() + static_cast<std::ptrdiff_t>(m),
                                  [n](const Row& row) { return row.size() == n; });
    return fits || refuse(operation);
}

/// Factors the first m rows. False when a pivot has no finite reciprocal.
template <bool SkipZeros>
NQ_WIDE_ROWS bool NqReArray::factorRows(unsigned m, std::vector<unsigned int>& indices,
                                        const std::vector<unsigned int>* zeroStart,
                                        const std::vector<unsigned int>* zeroEnd) {
    const unsigned n = columns();
    bool regular = true;
    Gap gap{SkipZeros ? 0 : n, n};
    for (unsigned first = 0; first < m; first += PanelWidth) {
        Panel panel(first);
        const auto eliminate = [&](double* row) {
            if constexpr (SkipZeros) {
                double factors[PanelWidth];
                panel.multipliers(row, factors);
                if (!regular ||
                    std::any_of(factors, factors + panel.width, [](double f) { return f != 0.0; })) {
                    const std::size_t begin = panel.first + panel.width;
                    NqRowOperations::addMultiples(row, factors, panel.rows, panel.width, begin, gap.begin);
                    NqRowOperations::addMultiples(row, factors, panel.rows, panel.width, gap.end, n);
                }
            } else {
                panel.eliminate(row, n);
            }
        };
        const unsigned behind = std::min(first + PanelWidth, m);
        for (unsigned c = first; c < behind; ++c) {
            double* const row = m_Rows[c].data();
            if constexpr (SkipZeros) {
                gap.narrow(c, (*zeroStart)[c], (*zeroEnd)[c], n);
            }
            eliminate(row);
            unsigned p = NqRowOperations::firstLargest(row, c, gap.begin, c);
            if constexpr (SkipZeros) {
                const unsigned q = NqRowOperations::firstLargest(row, gap.end, n, p);
                p = std::abs(row[p]) >= std::abs(row[q]) ? p : q;
            }
            if (p != c) {
                for (unsigned r = 0; r < m; ++r) {
                    std::swap(m_Rows[r][c], m_Rows[r][p]);
                }
            }
            indices[c] = p;
            panel.add(row);
            if (!std::isfinite(1.0 / row[c])) {
                // From here on infinities spread, into known zeros too.
                regular = false;
                gap = {n, n};
            }
        }
        for (unsigned r = behind; r < m; ++r) {
            eliminate(m_Rows[r].data());
        }
    }
    std::iota(indices.begin() + m, indices.end(), m);
    return regular;
}

/// The basis of the null space, from the factors that the first m rows hold.
NQ_WIDE_ROWS void NqReArray::findBasis(NqReArray& basis, unsigned m, const std::vector<unsigned int>& indices,
                                       bool skipZeros) const {
    const unsigned n = columns();
    const unsigned dimension = n - m;
    basis.m_Rows.resize(n);
    for (unsigned i = 0; i < m; ++i) {
        basis[i].resize(dimension);
    }
    for (unsigned i = 0; i < dimension; ++i) {
        basis[m + i].assign(dimension, 0.0);
        basis[m + i][i] = 1.0;
    }
    for (unsigned i = m; i-- > 0;) {
        const Row& u = m_Rows[i];
        double* const solution = basis[i].data();
        std::transform(u.begin() + m, u.end(), solution, std::negate<>());
        for (unsigned first = i + 1; first < m; first += PanelWidth) {
            const unsigned width = std::min(PanelWidth, m - first);
            double factors[PanelWidth];
            const double* known[PanelWidth];
            bool anyNonZero = false;
            for (unsigned k = 0; k < width; ++k) {
                factors[k] = -u[first + k];
                known[k] = basis[first + k].data();
                anyNonZero = anyNonZero || factors[k] != 0.0;
            }
            if (anyNonZero || !skipZeros) {
                NqRowOperations::addMultiples(solution, factors, known, width, 0, dimension);
            }
        }
        const double reciprocal = 1.0 / u[i];
        std::transform(solution, solution + dimension, solution,
                       [reciprocal](double entry) { return entry * reciprocal; });
    }
    for (unsigned i = m; i-- > 0;) {
        if (indices[i] != i) {
            basis[i].swap(basis[indices[i]]);
        }
    }
}

bool NqReArray::nullSpace(NqReArray& basis, unsigned int m, std::vector<unsigned int>& indices) {
    if (!fitsNullSpace("nullSpace", basis, m)) {
        return false;
    }
    indices.resize(columns());
    const bool regular = factorRows<false>(m, indices, nullptr, nullptr);
    findBasis(basis, m, indices, false);
    return regular;
}

bool NqReArray::nullSpaceSparse(NqReArray& basis, unsigned int m, std::vector<unsigned int>& indices,
                                const std::vector<unsigned int>& zeroStart,
                                const std::vector<unsigned int>& zeroEnd) {
    if (!fitsNullSpace("nullSpaceSparse", basis, m)) {
        return false;
    }
    if (&indices == &zeroStart || &indices == &zeroEnd || !zerosHold(m, zeroStart, zeroEnd)) {
        return nullSpace(basis, m, indices);
    }
    indices.resize(columns());
    const bool regular = factorRows<true>(m, indices, &zeroStart, &zeroEnd);
    findBasis(basis, m, indices, regular);
    return regular;
}

/// Whether the lists fit, and J is zero wherever nullSpaceSparse() makes use of it.
bool NqReArray::zerosHold(unsigned m, const std::vector<unsigned int>& zeroStart,
                          const std::vector<unsigned int>& zeroEnd) const {
    const unsigned n = columns();
    if (zeroStart.size() != m || zeroEnd.size() != m) {
        return false;
    }
    Gap gap{0, n};
    for (unsigned r = 0; r < m; ++r) {
        if (zeroStart[r] > n || zeroEnd[r] > n) {
            return false;
        }
        gap.narrow(r, zeroStart[r], zeroEnd[r], n);
        const double* const row = m_Rows[r].data();
        if (!std::all_of(row + gap.begin, row + gap.end, [](double entry) { return entry == 0.0; })) {
            return false;
        }
    }
    return true;
}

bool NqReArray::calculateZeroStartIndices(unsigned int m, std::vector<unsigned int>& zeroStart,
                                          std::vector<unsigned int>& zeroEnd) const {
    if (m > m_Rows.size() || !isRectangular()) {
        return refuse("calculateZeroStartIndices");
    }
    findZeroRuns(m_Rows, m, columns(), zeroStart, zeroEnd);
    return true;
}

bool NqReArray::calculateZeroStartIndices(const std::vector<std::vector<bool>>& sparsity,
                                          std::vector<unsigned int>& zeroStart,
                                          std::vector<unsigned int>& zeroEnd) {
    const std::size_t columns = sparsity.empty() ? 0 : sparsity.front().size();
    if (!std::ranges::all_of(sparsity, [&](const auto& bits) { return bits.size() == columns; })) {
        return refuse("calculateZeroStartIndices");
    }
    findZeroRuns(sparsity, static_cast<unsigned>(sparsity.size()), static_cast<unsigned>(columns), zeroStart,
                 zeroEnd);
    return true;
}

void NqReArray::dump(std::ostream& stream) const {
    for (const Row& row : m_Rows) {
        const char* separator = "";
        for (const double entry : row) {
            stream << separator << NqDOUBLE2STRING(entry);
            separator = " ";
        }
        stream << '\n';
    }
}

void NqReArray::dumpMath(std::ostream& stream) const {
    const char* rowSeparator = "";
    stream << '{';
    for (const Row& row : m_Rows) {
        stream << rowSeparator << '{';
        rowSeparator = ", ";
        const char* separator = "";
        for (const double entry : row) {
            std::string number = NqDOUBLE2STRING(entry);
            if (const auto exponent = number.find('e'); exponent != std::string::npos) {
                number.replace(exponent, 1, "*^");
            }
            stream << separator << number;
            separator = ", ";
        }
        stream << '}';
    }
    stream << "}\n";
}

bool NqReArray::combineIndices(const std::vector<unsigned int>& first,
                               const std::vector<unsigned int>& second,
                               std::vector<unsigned int>& result) const {
    const std::size_t n = first.size();
    const auto inside = [n](unsigned place) { return place < n; };
    if (second.size() != n || !std::all_of(first.begin(), first.end(), inside) ||
        !std::all_of(second.begin(), second.end(), inside)) {
        return refuse("combineIndices");
    }
    // Mostly the second list begins where the first one ends, and one just continues the other.
    std::size_t idleFrom = n;
    while (idleFrom > 0 && first[idleFrom - 1] == idleFrom - 1) {
        --idleFrom;
    }
    std::size_t idleUntil = 0;
    while (idleUntil < n && second[idleUntil] == idleUntil) {
        ++idleUntil;
    }
    result.resize(n);
    if (idleFrom <= idleUntil) {
        for (std::size_t i = 0; i < n; ++i) {
            result[i] = i < idleFrom ? first[i] : second[i];
        }
        return true;
    }
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t origin = cameFrom(first, cameFrom(second, i));
        result[i] = static_cast<unsigned>(goesTo(result, i, origin));
    }
    return true;
}

bool NqReArray::inv2(NqReArray& inverse) const {
    if (m_Rows.size() != 2 || !isSquare()) {
        return refuse("inv2");
    }
    const double a = m_Rows[0][0], b = m_Rows[0][1], c = m_Rows[1][0], d = m_Rows[1][1];
    const double determinant = a * d - b * c;
    if (determinant == 0.0) {
        return false;
    }
    inverse.setToZeros(2, 2);
    inverse[0][0] = d / determinant;
    inverse[0][1] = -b / determinant;
    inverse[1][0] = -c / determinant;
    inverse[1][1] = a / determinant;
    return true;
}

bool NqReArray::inv3(NqReArray& inverse) const {
    if (m_Rows.size() != 3 || !isSquare()) {
        return refuse("inv3");
    }
    std::array<std::array<double, 3>, 3> cofactors;
    for (std::size_t i = 0; i < 3; ++i) {
        const Row& next = m_Rows[(i + 1) % 3];
        const Row& last = m_Rows[(i + 2) % 3];
        for (std::size_t j = 0; j < 3; ++j) {
            const std::size_t right = (j + 1) % 3, left = (j + 2) % 3;
            cofactors[i][j] = next[right] * last[left] - next[left] * last[right];
        }
    }
    const double determinant =
        m_Rows[0][0] * cofactors[0][0] + m_Rows[0][1] * cofactors[0][1] + m_Rows[0][2] * cofactors[0][2];
    if (determinant == 0.0) {
        return false;
    }
    inverse.setToZeros(3, 3);
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            inverse[i][j] = cofactors[j][i] / determinant;
        }
    }
    return true;
}

bool NqReArray::writeBin(std::ostream& stream) const {
    constexpr std::size_t most = std::numeric_limits<std::uint32_t>::max();
    if (!isRectangular() || m_Rows.size() > most || columns() > most) {
        return refuse("writeBin");
    }
    stream << kBinaryMark;
    putNatural(stream, m_Rows.size(), 4);
    for (const Row& row : m_Rows) {
        putNatural(stream, row.size(), 4);
        for (const double entry : row) {
            putNatural(stream, std::bit_cast<std::uint64_t>(entry), 8);
        }
    }
    return stream.good();
}

bool NqReArray::readBin(std::istream& stream) {
    std::array<char, kBinaryMark.size()> mark{};
    std::uint64_t rowCount = 0;
    bool sound = stream.read(mark.data(), mark.size()) &&
                 std::string_view(mark.data(), mark.size()) == kBinaryMark && getNatural(stream, rowCount, 4);
    std::vector<Row> read;
    for (std::uint64_t i = 0; sound && i < rowCount; ++i) {
        std::uint64_t length = 0;
        sound = getNatural(stream, length, 4) && (i == 0 || length == read.front().size());
        Row row;
        for (std::uint64_t j = 0; sound && j < length; ++j) {
            std::uint64_t bits = 0;
            sound = getNatural(stream, bits, 8);
            row.push_back(std::bit_cast<double>(bits));
        }
        read.push_back(std::move(row));
    }
    if (!sound) {
        Nq::Print::instance().write(Nq::PrintFailure, "NqReArray::readBin(): not a whole array\n");
        return false;
    }
    m_Rows = std::move(read);
    return true;
}

bool NqReArray::getColumn(unsigned column, std::vector<double>& values) const {
    if (!isRectangular() || column >= columns()) {
        return refuse("getColumn");
    }
    values.resize(m_Rows.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = m_Rows[i][column];
    }
    return true;
}

bool NqReArray::getRow(unsigned row, std::vector<double>& values) const {
    if (row >= m_Rows.size()) {
        return refuse("getRow");
    }
    values = m_Rows[row];
    return true;
}

double NqReArray::maximum() const {
    return extreme("maximum", m_Rows, std::greater<>());
}

double NqReArray::minimum() const {
    return extreme("minimum", m_Rows, std::less<>());
}

double NqReArray::sum() const {
    double sum = 0.0;
    for (const Row& row : m_Rows) {
        sum = std::accumulate(row.begin(), row.end(), sum);
    }
    return sum;
}
