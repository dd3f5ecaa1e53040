#include <nqControlCore/expression/NqExpressionLessThan.h>

const NqToken& NqExpressionLessThan::classToken() {
    return NqControlCore::NqLessThanToken;
}

bool NqExpressionLessThan::test(double left, double right) {
    return left < right;
}
