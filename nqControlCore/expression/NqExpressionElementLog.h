#pragma once

#include <nqControlCore/expression/NqExpressionUnary.h>

/// The natural logarithm of each entry. Element "elementLog".
class NqExpressionElementLog : public NqExpressionUnary<NqExpressionElementLog> {
public:
    using NqExpressionUnary::NqExpressionUnary;
    static const NqToken& classToken();

    static void operate(const NqReArray& operand, NqReArray& value);
};
