#include <nqControlCore/expression/NqExpressionElementLogN.h>

const NqToken& NqExpressionElementLogN::classToken() {
    return NqControlCore::NqElementLogNToken;
}

bool NqExpressionElementLogN::operate(const NqReArray* left, const NqReArray* right, NqReArray& value) {
    if (!left) {
        return false;
    }
    if (right) {
        left->elementLogN((*right)[0][0], value);
    } else {
        left->elementLog(value);
    }
    return true;
}
