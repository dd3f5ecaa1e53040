#pragma once

#include <nqControlCore/expression/NqExpressionParent.h>

/// A node with a left and a right child.
class NqExpressionBaseBinary : public NqExpressionParent<2> {
public:
    using NqExpressionParent::NqExpressionParent;

    /// Null where there is none. Setting replaces the child by a clone.
    virtual const NqExpressionElement* left() const;
    virtual void setLeft(const NqExpressionElement& left);
    virtual const NqExpressionElement* right() const;
    virtual void setRight(const NqExpressionElement& right);

protected:
    /// value = operand; false for a null pointer.
    static bool assign(const NqReArray* operand, NqReArray& value);

    static bool haveSameShape(const NqReArray& left, const NqReArray& right);
};
