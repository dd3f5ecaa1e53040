#pragma once

#include <nqControlCore/expression/NqExpressionBinary.h>

/// The logarithm of each entry of L to the base R[0][0]; without R, the natural one. Element "elementLogN".
class NqExpressionElementLogN : public NqExpressionBinary<NqExpressionElementLogN> {
public:
    using NqExpressionBinary::NqExpressionBinary;
    static const NqToken& classToken();

    static bool operate(const NqReArray* left, const NqReArray* right, NqReArray& value);
};
