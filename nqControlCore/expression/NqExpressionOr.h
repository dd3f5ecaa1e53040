#pragma once

#include <nqControlCore/expression/NqExpressionComparison.h>

/// Whether one of the entries is non-zero, as a NaN is. Element "or".
class NqExpressionOr : public NqExpressionComparison<NqExpressionOr> {
public:
    using NqExpressionComparison::NqExpressionComparison;
    static const NqToken& classToken();

    static bool test(double left, double right);
};
