#pragma once

#include <nqControlCore/expression/NqExpressionComparison.h>

/// Whether L < R. Element "lessThan".
class NqExpressionLessThan : public NqExpressionComparison<NqExpressionLessThan> {
public:
    using NqExpressionComparison::NqExpressionComparison;
    static const NqToken& classToken();

    static bool test(double left, double right);
};
