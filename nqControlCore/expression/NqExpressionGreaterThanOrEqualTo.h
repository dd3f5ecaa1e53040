#pragma once

#include <nqControlCore/expression/NqExpressionComparison.h>

/// Whether L >= R. Element "greaterThanOrEqualTo".
class NqExpressionGreaterThanOrEqualTo : public NqExpressionComparison<NqExpressionGreaterThanOrEqualTo> {
public:
    using NqExpressionComparison::NqExpressionComparison;
    static const NqToken& classToken();

    static bool test(double left, double right);
};
