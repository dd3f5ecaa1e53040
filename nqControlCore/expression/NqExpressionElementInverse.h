#pragma once

#include <nqControlCore/expression/NqExpressionUnary.h>

/// 1 / c of each entry. Element "elementInverse".
class NqExpressionElementInverse : public NqExpressionUnary<NqExpressionElementInverse> {
public:
    using NqExpressionUnary::NqExpressionUnary;
    static const NqToken& classToken();

    static void operate(const NqReArray& operand, NqReArray& value);
};
