#include <nqControlCore/expression/NqExpressionCosine.h>

const NqToken& NqExpressionCosine::classToken() {
    return NqControlCore::NqCosineToken;
}

void NqExpressionCosine::operate(const NqReArray& operand, NqReArray& value) {
    operand.elementCosine(value);
}
