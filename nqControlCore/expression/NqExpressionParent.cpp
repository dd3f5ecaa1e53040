#include <nqControlCore/expression/NqExpressionParent.h>

#include <nqControlCore/expression/NqExpressionContainer.h>
#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/xml/NqXmlReader.h>
#include <nqControlCore/foundation/xml/NqXmlSchema.h>
#include <nqControlCore/xml/NqXmlCollection.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

template <unsigned Places>
NqExpressionParent<Places>& NqExpressionParent<Places>::operator=(const NqExpressionParent& other) {
    auto children = other.m_Children; // which `other` may be one of ours
    NqExpressionElement::operator=(other);
    m_Children.swap(children);
    setContainer(container());
    return *this;
}

template <unsigned Places>
bool NqExpressionParent<Places>::read(NqXmlReader& reader) {
    m_Children = {};
    m_ChildrenRead = 0;
    return NqExpressionElement::read(reader);
}

template <unsigned Places>
bool NqExpressionParent<Places>::write(NqXmlWriter& writer) const {
    return NqExpressionElement::write(writer) && std::ranges::all_of(m_Children, [&](const Child& child) {
               return !child || NqXmlCollection::writeNamed(writer, child->token(), *child);
           });
}

template <unsigned Places>
bool NqExpressionParent<Places>::writeSchemaElements(NqXmlSchema& schema) const {
    return NqExpressionElement::writeSchemaElements(schema) && schema.writeAnyElement();
}

template <unsigned Places>
void NqExpressionParent<Places>::setContainer(const NqXmlBaseVariableCompoundType* container) {
    NqExpressionElement::setContainer(container);
    for (Child& child : m_Children) {
        if (child) {
            child->setContainer(container);
        }
    }
}

template <unsigned Places>
void NqExpressionParent<Places>::setChildAt(unsigned place, const NqExpressionElement& child) {
    NqXmlOwned<NqExpressionElement> copy(child);
    copy->setContainer(container());
    m_Children[place] = std::move(copy);
}

template <unsigned Places>
bool NqExpressionParent<Places>::readValueFromSpecialToken(const NqToken& token, NqXmlReader& reader) {
    if (!container()) {
        if (reader.mayReport()) {
            Nq::Print::instance().write(Nq::PrintFailure, "Bad token: %s on line %d\n", token.c_str(),
                                        reader.lineNumber());
        }
        return false;
    }
    if (m_ChildrenRead == kMostChildren) {
        ++m_ChildrenRead;
        reader.report("more than " + std::to_string(kMostChildren) +
                      " elements stand in one of an expression");
    }
    const auto* expression = dynamic_cast<const NqExpressionContainer*>(container());
    if (m_ChildrenRead > kMostChildren || (expression && !expression->takesElement(reader))) {
        return false;
    }
    std::unique_ptr<NqXmlObject> object(container()->newObjectFromToken(token));
    if (!dynamic_cast<NqExpressionElement*>(object.get())) {
        NqXmlCollection::reportUnknown(reader);
        return false;
    }
    NqXmlOwned<NqExpressionElement> child(static_cast<NqExpressionElement*>(object.release()));
    child->setContainer(container());
    const bool good = child->read(reader);
    m_Children[std::min(m_ChildrenRead++, Places - 1)] = std::move(child);
    return good;
}

template class NqExpressionParent<1>;
template class NqExpressionParent<2>;
