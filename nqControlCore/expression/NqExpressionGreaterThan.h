#pragma once

#include <nqControlCore/expression/NqExpressionComparison.h>

/// Whether L > R. Element "greaterThan".
class NqExpressionGreaterThan : public NqExpressionComparison<NqExpressionGreaterThan> {
public:
    using NqExpressionComparison::NqExpressionComparison;
    static const NqToken& classToken();

    static bool test(double left, double right);
};
