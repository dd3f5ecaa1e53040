#pragma once

#include <nqControlCore/expression/NqExpressionComparison.h>

/// Whether both entries are non-zero, as a NaN is. Element "and".
class NqExpressionAnd : public NqExpressionComparison<NqExpressionAnd> {
public:
    using NqExpressionComparison::NqExpressionComparison;
    static const NqToken& classToken();

    static bool test(double left, double right);
};
