#include <nqControlCore/expression/NqExpressionSingleElementColumn.h>

const NqToken& NqExpressionSingleElementColumn::classToken() {
    return NqControlCore::NqSingleElementColumnToken;
}

void NqExpressionSingleElementColumn::fill(NqReArray& value) const {
    if (m_Position < m_Size) {
        value[m_Position][0] = m_ElementValue;
    }
}
