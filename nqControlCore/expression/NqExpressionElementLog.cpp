#include <nqControlCore/expression/NqExpressionElementLog.h>

const NqToken& NqExpressionElementLog::classToken() {
    return NqControlCore::NqElementLogToken;
}

void NqExpressionElementLog::operate(const NqReArray& operand, NqReArray& value) {
    operand.elementLog(value);
}
