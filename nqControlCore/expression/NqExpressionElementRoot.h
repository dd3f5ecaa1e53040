#pragma once

#include <nqControlCore/expression/NqExpressionBinary.h>

/// The R[0][0]-th root of each entry of L, and L itself where that is 0.0; without R, the square root.
/// Element "elementRoot".
class NqExpressionElementRoot : public NqExpressionBinary<NqExpressionElementRoot> {
public:
    using NqExpressionBinary::NqExpressionBinary;
    static const NqToken& classToken();

    static bool operate(const NqReArray* left, const NqReArray* right, NqReArray& value);
};
