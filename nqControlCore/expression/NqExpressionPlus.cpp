#include <nqControlCore/expression/NqExpressionPlus.h>

const NqToken& NqExpressionPlus::classToken() {
    return NqControlCore::NqPlusToken;
}

bool NqExpressionPlus::operate(const NqReArray* left, const NqReArray* right, NqReArray& value) {
    if (!left || !right) {
        return assign(left ? left : right, value);
    }
    value = *left;
    value += *right;
    return haveSameShape(*left, *right);
}
