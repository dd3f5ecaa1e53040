#include <nqControlCore/expression/NqExpressionSingleElementMatrix.h>

#include <nqControlCore/foundation/text/NqPrint.h>

const NqToken& NqExpressionSingleElementMatrix::classToken() {
    return NqControlCore::NqSingleElementMatrixToken;
}

void NqExpressionSingleElementMatrix::fill(NqReArray& value) const {
    if (m_RowPosition < m_RowSize && m_ColumnPosition < m_ColumnSize) {
        value[m_RowPosition][m_ColumnPosition] = m_ElementValue;
    } else {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqExpressionSingleElementMatrix::value(): position out of bounds\n");
    }
}
