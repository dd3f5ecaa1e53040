#pragma once

#include <nqControlCore/expression/NqExpressionUnary.h>

/// -c of each entry. Element "negative".
class NqExpressionNegative : public NqExpressionUnary<NqExpressionNegative> {
public:
    using NqExpressionUnary::NqExpressionUnary;
    static const NqToken& classToken();

    static void operate(const NqReArray& operand, NqReArray& value);
};
