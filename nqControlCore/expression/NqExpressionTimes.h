#pragma once

#include <nqControlCore/expression/NqExpressionBinary.h>

/// The matrix product L R; with a child missing, the empty matrix. Element "times".
class NqExpressionTimes : public NqExpressionBinary<NqExpressionTimes> {
public:
    using NqExpressionBinary::NqExpressionBinary;
    static const NqToken& classToken();

    static bool operate(const NqReArray* left, const NqReArray* right, NqReArray& value);
};
