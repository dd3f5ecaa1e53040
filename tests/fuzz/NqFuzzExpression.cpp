#include "NqFuzzTarget.h"
#include "matrix/NqArrayTesting.h"

#include <nqControlCore/expression/NqExpressionContainer.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

namespace {

bool areSame(const NqReArray& a, const NqReArray& b) {
    bool isSame = a.size() == b.size();
    for (std::size_t i = 0; isSame && i < a.size(); ++i) {
        isSame = nqSameBits(a[i], b[i]);
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
    for (std::size_t i = 0; i < value.size(); ++i) {
        nqHolds(value[i].size() == value.columns(), "a value is a matrix");
    }
    nqHolds(value.size() * value.columns() <= NqExpressionBudget::kMostElements, "a value is no larger");
    nqHolds(areSame(expression.value(), value), "the second value is the first");
    nqHolds(areSame(NqExpressionContainer(expression).value(), value), "a copy has the same value");
    NqExpressionContainer back;
    nqHolds(NqXmlDocument::readString(written, back) && areSame(back.value(), value),
            "what reads back has the same value");
}
