#pragma once

#include <nqControlCore/expression/NqExpressionBinary.h>

/// Each entry of L to the power of R[0][0]; without R, L itself. Element "elementPow".
class NqExpressionElementPow : public NqExpressionBinary<NqExpressionElementPow> {
public:
    using NqExpressionBinary::NqExpressionBinary;
    static const NqToken& classToken();

    static bool operate(const NqReArray* left, const NqReArray* right, NqReArray& value);
};
