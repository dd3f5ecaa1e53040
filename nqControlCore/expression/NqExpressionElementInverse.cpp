#include <nqControlCore/expression/NqExpressionElementInverse.h>

const NqToken& NqExpressionElementInverse::classToken() {
    return NqControlCore::NqElementInverseToken;
}

void NqExpressionElementInverse::operate(const NqReArray& operand, NqReArray& value) {
    operand.elementInverse(value);
}
