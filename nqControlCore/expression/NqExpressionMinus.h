#pragma once

#include <nqControlCore/expression/NqExpressionBinary.h>

/// L - R; with one child missing, L or -R. Element "minus".
class NqExpressionMinus : public NqExpressionBinary<NqExpressionMinus> {
public:
    using NqExpressionBinary::NqExpressionBinary;
    static const NqToken& classToken();

    static bool operate(const NqReArray* left, const NqReArray* right, NqReArray& value);
};
