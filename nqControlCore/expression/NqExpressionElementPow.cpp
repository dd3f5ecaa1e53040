#include <nqControlCore/expression/NqExpressionElementPow.h>

const NqToken& NqExpressionElementPow::classToken() {
    return NqControlCore::NqElementPowToken;
}

bool NqExpressionElementPow::operate(const NqReArray* left, const NqReArray* right, NqReArray& value) {
    if (!left || !right) {
        return assign(left, value);
    }
    left->elementPow((*right)[0][0], value);
    return true;
}
