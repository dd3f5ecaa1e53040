#include <nqControlCore/expression/NqExpressionElement.h>

#include <nqControlCore/expression/NqExpressionContainer.h>
#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>
#include <functional>

NqExpressionElement::NqExpressionElement(const NqExpressionContainer* container)
    : NqBaseExpressionTreeElement(container) {}

NqExpressionElement::NqExpressionElement(const NqExpressionElement& other)
    : NqBaseExpressionTreeElement(other), m_Value(other.m_Value) {
    NqBaseExpressionTreeElement::setContainer(nullptr);
}

NqExpressionElement& NqExpressionElement::operator=(const NqExpressionElement& other) {
    const NqXmlBaseVariableCompoundType* own = container();
    NqBaseExpressionTreeElement::operator=(other);
    NqBaseExpressionTreeElement::setContainer(own);
    m_Value = other.m_Value;
    return *this;
}

bool NqExpressionElement::admits(std::uint64_t rows, std::uint64_t columns, const NqToken& token) {
    if (NqExpressionBudget::admits(rows, columns)) {
        return true;
    }
    Nq::Print::instance().write(
        Nq::PrintFailure,
        "NqExpressionElement::admits(): a matrix of %d by %d elements is too large, in "
        "\"%s\"\n",
        rows, columns, std::string(token.localName()));
    return false;
}

void NqExpressionElement::negate(const NqReArray& operand, NqReArray& value) {
    value = operand;
    for (std::size_t i = 0; i < value.size(); ++i) {
        std::ranges::transform(value[i], value[i].begin(), std::negate<>());
    }
}
