#include <nqControlCore/expression/NqExpressionNegative.h>

const NqToken& NqExpressionNegative::classToken() {
    return NqControlCore::NqNegativeToken;
}

void NqExpressionNegative::operate(const NqReArray& operand, NqReArray& value) {
    negate(operand, value);
}
