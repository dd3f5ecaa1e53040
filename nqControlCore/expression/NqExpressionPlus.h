#pragma once

#include <nqControlCore/expression/NqExpressionBinary.h>

/// L + R; with one child missing, the value of the other. Element "plus".
class NqExpressionPlus : public NqExpressionBinary<NqExpressionPlus> {
public:
    using NqExpressionBinary::NqExpressionBinary;
    static const NqToken& classToken();

    static bool operate(const NqReArray* left, const NqReArray* right, NqReArray& value);
};
