#pragma once

#include <nqControlCore/expression/NqExpressionUnary.h>

/// The cosine of each entry. Element "cosine".
class NqExpressionCosine : public NqExpressionUnary<NqExpressionCosine> {
public:
    using NqExpressionUnary::NqExpressionUnary;
    static const NqToken& classToken();

    static void operate(const NqReArray& operand, NqReArray& value);
};
