#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <nqControlCore/foundation/matrix/NqRowOperations.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace {

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

} // namespace

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
    return substituteInColumns("choleskyBackSubstitution", rightHandSides, solution, true);
}

bool NqReArray::choleskyBackSubstitutionOnTranspose(const NqReArray& rightHandSides,
                                                    NqReArray& solution) const {
    return substituteInRows("choleskyBackSubstitutionOnTranspose", rightHandSides, solution, true);
}

bool NqReArray::lowerTriangularForwardSubstitution(const NqReArray& rightHandSides,
                                                   NqReArray& solution) const {
    return substituteInColumns("lowerTriangularForwardSubstitution", rightHandSides, solution, false);
}

bool NqReArray::lowerTriangularForwardSubstitutionOnTranspose(const NqReArray& rightHandSides,
                                                              NqReArray& solution) const {
    return substituteInRows("lowerTriangularForwardSubstitutionOnTranspose", rightHandSides, solution, false);
}

/// Solves with L, and with L^T too where `withBack` says so, for a right-hand side in each row.
bool NqReArray::substituteInRows(const char* operation, const NqReArray& rightHandSides, NqReArray& solution,
                                 bool withBack) const {
    if (!isSquare() || !rightHandSides.isRectangular() || rightHandSides.columns() != rows() ||
        &solution == this) {
        return refuse(operation);
    }
    if (&solution != &rightHandSides) {
        solution.m_Rows = rightHandSides.m_Rows;
    }
    for (Row& row : solution.m_Rows) {
        substituteForward(*this, row.data());
        if (withBack) {
            substituteBackOnTranspose(*this, row.data());
        }
    }
    return true;
}

/// The same for a right-hand side in each column.
bool NqReArray::substituteInColumns(const char* operation, const NqReArray& rightHandSides,
                                    NqReArray& solution, bool withBack) const {
    if (!rightHandSides.isRectangular()) {
        return refuse(operation);
    }
    NqReArray byRows;
    return rightHandSides.transpose(byRows) && substituteInRows(operation, byRows, byRows, withBack) &&
           byRows.transpose(solution);
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
