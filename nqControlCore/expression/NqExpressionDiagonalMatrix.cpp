#include <nqControlCore/expression/NqExpressionDiagonalMatrix.h>

#include <algorithm>

const NqToken& NqExpressionDiagonalMatrix::classToken() {
    return NqControlCore::NqDiagonalMatrixToken;
}

void NqExpressionDiagonalMatrix::assign(unsigned rows, unsigned columns, const double& value) {
    if (admits(rows, columns, classToken())) {
        setRowSize(rows);
        setColumnSize(columns);
        m_Diagonal.assign(std::min(rows, columns), value);
    }
}

void NqExpressionDiagonalMatrix::fill(NqReArray& value) const {
    for (std::size_t i = 0; i < std::min({value.size(), m_Diagonal.size(), std::size_t{m_ColumnSize}}); ++i) {
        value[i][i] = m_Diagonal[i];
    }
}
