#include <nqControlCore/expression/NqExpressionBaseUnary.h>

const NqExpressionElement* NqExpressionBaseUnary::child() const {
    return childAt(0);
}

void NqExpressionBaseUnary::setChild(const NqExpressionElement& child) {
    setChildAt(0, child);
}
