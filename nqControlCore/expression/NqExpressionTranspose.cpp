#include <nqControlCore/expression/NqExpressionTranspose.h>

const NqToken& NqExpressionTranspose::classToken() {
    return NqControlCore::NqTransposeToken;
}

void NqExpressionTranspose::operate(const NqReArray& operand, NqReArray& value) {
    operand.transpose(value);
}
