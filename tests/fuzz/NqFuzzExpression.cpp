#include "NqFuzzTarget.h"

#include <nqControlCore/expression/NqExpressionContainer.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

namespace {

/// Rows of one length; false for one that isn't a matrix or is larger than it may be.
bool isMatrix(const NqReArray& matrix) {
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        if (matrix[i].size() != matrix.columns()) {
            return false;
        }
    }
    return matrix.size() * matrix.columns() <= NqExpressionBudget::kMostElements;
}

bool areSame(const NqReArray& a, const NqReArray& b) {
    bool isSame = a.size() == b.size();
    for (std::size_t i = 0; isSame && i < a.size(); ++i) {
        isSame = nqAreSame(a[i], b[i]);
    }
    return isSame;
}

} // namespace

/// A document of an expression, evaluated: again, of a copy, and of what was written and read back.
void nqFuzzExpression(NqFuzzInput& input) {
    NqExpressionContainer expression;
    const std::string written =
        nqReadAndCheck(input.rest(), expression, false); // any elements may stand in an operation
    const NqReArray value = expression.value();
    nqHolds(isMatrix(value), "a value is a matrix");
    nqHolds(areSame(expression.value(), value), "the second value is the first");
    nqHolds(areSame(NqExpressionContainer(expression).value(), value), "a copy has the same value");
    NqExpressionContainer back;
    nqHolds(NqXmlDocument::readString(written, back) && areSame(back.value(), value),
            "what reads back has the same value");
}
