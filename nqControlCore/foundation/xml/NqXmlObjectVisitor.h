#pragma once

class NqXmlBaseVariableCompoundType;
class NqXmlObject;

/// Sees the objects of a tree, from NqXmlObject::accept. Override the forms of interest; the others do
/// nothing.
class NqXmlObjectVisitor {
public:
    virtual ~NqXmlObjectVisitor() = default;

    virtual void visit(const NqXmlObject* object);
    virtual void visit(const NqXmlBaseVariableCompoundType* container);

    /// A container of an expression tree: visits the container, then its top element, if there is one.
    template <typename Container>
    requires requires(const Container& container) { container.topElement(); }
    void visit(const Container* container) {
        visit(static_cast<const NqXmlBaseVariableCompoundType*>(container));
        if (container->topElement()) {
            container->topElement()->accept(this);
        }
    }
};
