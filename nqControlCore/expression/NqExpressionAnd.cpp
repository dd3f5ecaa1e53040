#include <nqControlCore/expression/NqExpressionAnd.h>

const NqToken& NqExpressionAnd::classToken() {
    return NqControlCore::NqAndToken;
}

bool NqExpressionAnd::test(double left, double right) {
    return left != 0.0 && right != 0.0;
}
