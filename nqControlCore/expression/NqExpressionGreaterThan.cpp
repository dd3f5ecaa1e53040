#include <nqControlCore/expression/NqExpressionGreaterThan.h>

const NqToken& NqExpressionGreaterThan::classToken() {
    return NqControlCore::NqGreaterThanToken;
}

bool NqExpressionGreaterThan::test(double left, double right) {
    return left > right;
}
