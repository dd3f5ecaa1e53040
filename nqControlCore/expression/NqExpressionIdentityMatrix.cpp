#include <nqControlCore/expression/NqExpressionIdentityMatrix.h>

const NqToken& NqExpressionIdentityMatrix::classToken() {
    return NqControlCore::NqIdentityMatrixToken;
}

void NqExpressionIdentityMatrix::fill(NqReArray& value) const {
    value.setToIdentity(m_Size, m_Size);
}
