#include <nqControlCore/expression/NqExpressionElementRoot.h>

const NqToken& NqExpressionElementRoot::classToken() {
    return NqControlCore::NqElementRootToken;
}

bool NqExpressionElementRoot::operate(const NqReArray* left, const NqReArray* right, NqReArray& value) {
    if (!left) {
        return false;
    }
    const double root = right ? (*right)[0][0] : 2.0;
    if (root == 0.0) {
        return assign(left, value);
    }
    left->elementPow(1.0 / root, value);
    return true;
}
