#pragma once

#include <nqControlCore/expression/NqBaseExpressionTreeContainer.h>
#include <nqControlCore/expression/NqExpressionElement.h>

extern template class NqBaseExpressionTreeContainer<NqExpressionElement>;

/// A formula on matrices, as a tree: owns it, reads and writes it, evaluates it. Element
/// "expressionContainer"; the classes NqExpression... of this folder are the elements that it knows.
class NqExpressionContainer
    : public NqXmlConcrete<NqExpressionContainer, NqBaseExpressionTreeContainer<NqExpressionElement>> {
public:
    static const NqToken& classToken();

    void registerComponentCreators() override;

    /// Gives all nodes another container to ask for new ones.
    virtual void setContainer(const NqXmlBaseVariableCompoundType* container);

    /// The value of the top element, which stays its own; the empty matrix where there is none. Where all
    /// matrices of the tree together would take more than NqExpressionBudget::kMostBytes, those beyond are
    /// empty, with one line at print type 4.
    virtual const NqReArray& value() const;
};
