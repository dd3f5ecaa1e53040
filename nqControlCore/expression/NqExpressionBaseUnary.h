#pragma once

#include <nqControlCore/expression/NqExpressionParent.h>

/// A node with one child.
class NqExpressionBaseUnary : public NqExpressionParent<1> {
public:
    using NqExpressionParent::NqExpressionParent;

    /// Null where there is none.
    virtual const NqExpressionElement* child() const;
    /// Replaces the child by a clone.
    virtual void setChild(const NqExpressionElement& child);
};
