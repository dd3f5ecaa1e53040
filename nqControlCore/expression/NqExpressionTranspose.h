#pragma once

#include <nqControlCore/expression/NqExpressionUnary.h>

/// The transpose. Element "transpose".
class NqExpressionTranspose : public NqExpressionUnary<NqExpressionTranspose> {
public:
    using NqExpressionUnary::NqExpressionUnary;
    static const NqToken& classToken();

    static void operate(const NqReArray& operand, NqReArray& value);
};
