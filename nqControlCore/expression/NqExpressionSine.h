#pragma once

#include <nqControlCore/expression/NqExpressionUnary.h>

/// The sine of each entry. Element "sine".
class NqExpressionSine : public NqExpressionUnary<NqExpressionSine> {
public:
    using NqExpressionUnary::NqExpressionUnary;
    static const NqToken& classToken();

    static void operate(const NqReArray& operand, NqReArray& value);
};
