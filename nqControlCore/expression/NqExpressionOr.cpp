#include <nqControlCore/expression/NqExpressionOr.h>

const NqToken& NqExpressionOr::classToken() {
    return NqControlCore::NqOrToken;
}

bool NqExpressionOr::test(double left, double right) {
    return left != 0.0 || right != 0.0;
}
