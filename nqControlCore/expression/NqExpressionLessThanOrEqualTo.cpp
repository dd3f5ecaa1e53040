#include <nqControlCore/expression/NqExpressionLessThanOrEqualTo.h>

const NqToken& NqExpressionLessThanOrEqualTo::classToken() {
    return NqControlCore::NqLessThanOrEqualToToken;
}

bool NqExpressionLessThanOrEqualTo::test(double left, double right) {
    return left <= right;
}
