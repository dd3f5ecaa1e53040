#pragma once

#include <nqControlCore/expression/NqExpressionComparison.h>

/// Whether L <= R. Element "lessThanOrEqualTo".
class NqExpressionLessThanOrEqualTo : public NqExpressionComparison<NqExpressionLessThanOrEqualTo> {
public:
    using NqExpressionComparison::NqExpressionComparison;
    static const NqToken& classToken();

    static bool test(double left, double right);
};
