#pragma once

#include <nqControlCore/foundation/xml/NqXmlCompoundType.h>

class NqXmlBaseVariableCompoundType;

/// A node of a tree that one container owns: a compound object with a pointer back to that container, which
/// is neither persisted nor compared.
class NqBaseExpressionTreeElement : public NqXmlCompoundType {
public:
    NqBaseExpressionTreeElement() = default;
    explicit NqBaseExpressionTreeElement(const NqXmlBaseVariableCompoundType* container)
        : m_Container(container) {}

    void registerComponents() override;

    virtual const NqXmlBaseVariableCompoundType* container() const { return m_Container; }
    virtual void setContainer(const NqXmlBaseVariableCompoundType* container) { m_Container = container; }

    friend bool operator==(const NqBaseExpressionTreeElement&, const NqBaseExpressionTreeElement&) {
        return true;
    }

private:
    const NqXmlBaseVariableCompoundType* m_Container = nullptr;
};
