#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <nqControlCore/foundation/matrix/NqRowOperations.h>
#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

namespace {

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

bool NqReArray::refuse(const char* operation) {
    Nq::Print::instance().write(Nq::PrintFailure, "NqReArray::%s(): bad dimensions on input...\n", operation);
    return false;
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
    multiply("operator*", right, product);
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
    return multiply("transform", array, result);
}

bool NqReArray::multiply(const char* operation, const NqReArray& array, NqReArray& result) const {
    if (!isRectangular() || !array.isRectangular() || columns() != array.rows()) {
        return refuse(operation);
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
    return multiplyByTranspose("transposeTransform", array, result);
}

bool NqReArray::multiplyByTranspose(const char* operation, const NqReArray& array, NqReArray& result) const {
    if (!isRectangular() || !array.isRectangular() || columns() != array.columns()) {
        return refuse(operation);
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
    return multiplyTransposed("leftTransposeTransform", array, result);
}

bool NqReArray::multiplyTransposed(const char* operation, const NqReArray& array, NqReArray& result) const {
    if (!isRectangular() || !array.isRectangular() || rows() != array.rows()) {
        return refuse(operation);
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
    return addOuterProduct("addSelfOuterProduct", v, 1.0);
}

bool NqReArray::addWeightedSelfOuterProduct(const std::vector<double>& v, double weight) {
    return addOuterProduct("addWeightedSelfOuterProduct", v, weight);
}

bool NqReArray::addOuterProduct(const char* operation, const std::vector<double>& v, double weight) {
    if (!isSquare() || v.size() != m_Rows.size()) {
        return refuse(operation);
    }
    for (std::size_t i = 0; i < v.size(); ++i) {
        NqRowOperations::addMultiple(m_Rows[i].data(), weight * v[i], v.data(), v.size());
    }
    return true;
}

bool NqReArray::underconstrainedNormal(NqReArray& normal) const {
    return multiplyByTranspose("underconstrainedNormal", *this, normal);
}

bool NqReArray::overconstrainedNormal(NqReArray& normal) const {
    return multiplyTransposed("overconstrainedNormal", *this, normal);
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

/// The entry that `beats` all others; a NaN if there is one, 0.0 with a line if there is no entry.
template <typename Beats>
double NqReArray::extreme(const char* operation, const Beats& beats) const {
    const double* best = nullptr;
    for (const Row& row : m_Rows) {
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

double NqReArray::maximum() const {
    return extreme("maximum", std::greater<>());
}

double NqReArray::minimum() const {
    return extreme("minimum", std::less<>());
}

double NqReArray::sum() const {
    double sum = 0.0;
    for (const Row& row : m_Rows) {
        sum = std::accumulate(row.begin(), row.end(), sum);
    }
    return sum;
}
