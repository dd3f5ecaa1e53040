#include <nqControlCore/expression/NqExpressionTimes.h>

const NqToken& NqExpressionTimes::classToken() {
    return NqControlCore::NqTimesToken;
}

bool NqExpressionTimes::operate(const NqReArray* left, const NqReArray* right, NqReArray& value) {
    return left && right && admits(left->rows(), right->columns(), classToken()) &&
           left->transform(*right, value);
}
