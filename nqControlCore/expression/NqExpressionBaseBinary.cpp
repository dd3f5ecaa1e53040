#include <nqControlCore/expression/NqExpressionBaseBinary.h>

const NqExpressionElement* NqExpressionBaseBinary::left() const {
    return childAt(0);
}

void NqExpressionBaseBinary::setLeft(const NqExpressionElement& left) {
    setChildAt(0, left);
}

const NqExpressionElement* NqExpressionBaseBinary::right() const {
    return childAt(1);
}

void NqExpressionBaseBinary::setRight(const NqExpressionElement& right) {
    setChildAt(1, right);
}

bool NqExpressionBaseBinary::assign(const NqReArray* operand, NqReArray& value) {
    if (operand) {
        value = *operand;
    }
    return operand;
}

bool NqExpressionBaseBinary::haveSameShape(const NqReArray& left, const NqReArray& right) {
    return left.rows() == right.rows() && left.columns() == right.columns();
}
