#include <nqControlCore/expression/NqExpressionSine.h>

const NqToken& NqExpressionSine::classToken() {
    return NqControlCore::NqSineToken;
}

void NqExpressionSine::operate(const NqReArray& operand, NqReArray& value) {
    operand.elementSine(value);
}
