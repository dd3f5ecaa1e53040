#include <nqControlCore/expression/NqExpressionMinus.h>

const NqToken& NqExpressionMinus::classToken() {
    return NqControlCore::NqMinusToken;
}

bool NqExpressionMinus::operate(const NqReArray* left, const NqReArray* right, NqReArray& value) {
    if (!left) {
        if (right) {
            negate(*right, value);
        }
        return right;
    }
    value = *left;
    if (right) {
        value -= *right;
    }
    return !right || haveSameShape(*left, *right);
}
