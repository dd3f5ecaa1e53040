#include <nqControlCore/expression/NqExpressionGreaterThanOrEqualTo.h>

const NqToken& NqExpressionGreaterThanOrEqualTo::classToken() {
    return NqControlCore::NqGreaterThanOrEqualToToken;
}

bool NqExpressionGreaterThanOrEqualTo::test(double left, double right) {
    return left >= right;
}
