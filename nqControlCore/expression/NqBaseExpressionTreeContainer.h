#pragma once

#include <nqControlCore/foundation/xml/NqXmlObjectVisitor.h>
#include <nqControlCore/foundation/xml/NqXmlReader.h>
#include <nqControlCore/foundation/xml/NqXmlSchema.h>
#include <nqControlCore/foundation/xml/NqXmlTokens.h>
#include <nqControlCore/xml/NqXmlBaseVariableCompoundType.h>
#include <nqControlCore/xml/NqXmlCollection.h>
#include <nqControlCore/xml/NqXmlOwned.h>

#include <algorithm>
#include <string>
#include <utility>

/// Holds a tree of nodes by its top element, which it owns; T is the class of the nodes, a
/// NqBaseExpressionTreeElement.
///
/// In a file the top element stands under the element name of its class. It is one that the container has
/// registered, or else one that the object knows within which the container is read. Of several elements the
/// last one stays. After kMostElements, of the whole tree, all others are passed by with a message and a
/// false result.
template <typename T>
class NqBaseExpressionTreeContainer : public NqXmlBaseVariableCompoundType {
    using Variable = NqXmlBaseVariableCompoundType;

public:
    static constexpr unsigned kMostElements = 65536; ///< that are read into one tree

    NqBaseExpressionTreeContainer() = default;
    NqBaseExpressionTreeContainer(const NqBaseExpressionTreeContainer& other)
        : Variable(other), m_TopElement(other.m_TopElement) {
        NqBaseExpressionTreeContainer::setTopElementContainerToThis();
    }
    NqBaseExpressionTreeContainer& operator=(const NqBaseExpressionTreeContainer& other) {
        NqXmlOwned<T> copy = other.m_TopElement; // which may be a part of ours
        Variable::operator=(other);
        m_TopElement = std::move(copy);
        setTopElementContainerToThis();
        return *this;
    }

    friend bool operator==(const NqBaseExpressionTreeContainer& a, const NqBaseExpressionTreeContainer& b) {
        return static_cast<const Variable&>(a) == static_cast<const Variable&>(b) &&
               a.m_TopElement == b.m_TopElement;
    }

    /// Null where there is none.
    virtual const T* topElement() const { return m_TopElement.get(); }
    virtual T* topElement() { return m_TopElement.get(); }

    /// Replaces the tree by a clone of this one.
    virtual void setTopElement(const T& element) {
        m_TopElement = NqXmlOwned<T>(element);
        setTopElementContainerToThis();
    }

    /// Replaces the tree by this one, which the container takes over; null leaves it without any.
    virtual void setAndDeleteTopElementPointer(T* element) {
        if (element == topElement()) {
            return;
        }
        m_TopElement = NqXmlOwned<T>(element);
        setTopElementContainerToThis();
    }

    bool read(NqXmlReader& reader) override {
        m_TopElement = NqXmlOwned<T>();
        m_ElementsRead = 0;
        const bool good = Variable::read(reader);
        setTopElementContainerToThis();
        return good;
    }

    bool write(NqXmlWriter& writer) const override {
        return Variable::write(writer) &&
               (!m_TopElement || NqXmlCollection::writeNamed(writer, topElement()->token(), *m_TopElement));
    }

    bool writeSchema(NqXmlSchema& schema) const override {
        return NqXmlObject::writeSchema(schema) && schema.beginComplexType() && schema.beginSequence() &&
               this->writeLibrarySchema(schema) && schema.beginChoice(NqXmlSchema::Occurs::Optional) &&
               this->writeCreatorSchemas(schema) && schema.endContent() && schema.endContent() &&
               schema.endComplexType();
    }

    /// Visits this as an object and as a container, then the top element.
    void accept(NqXmlObjectVisitor* visitor) const override {
        NqXmlObject::accept(visitor);
        visitor->visit(this);
    }

    /// Whether the tree that is being read takes one more element. Reports the first that it doesn't.
    bool takesElement(NqXmlReader& reader) const {
        if (m_ElementsRead == kMostElements) {
            reader.report("the expression has more than " + std::to_string(kMostElements) + " elements");
        }
        m_ElementsRead = std::min(m_ElementsRead + 1, kMostElements + 1);
        return m_ElementsRead <= kMostElements;
    }

protected:
    bool readValueFromToken(const NqToken& token, NqXmlReader& reader) override {
        if (NqXml::NqAddLibrariesToken.names(token)) {
            return Variable::readValueFromToken(token, reader);
        }
        if (!takesElement(reader)) {
            return false;
        }
        NqXmlOwned<T> element = this->template newComponent<T>(token);
        if (!element) {
            NqXmlCollection::reportUnknown(reader);
            return false;
        }
        element->setContainer(this);
        const bool good = element->read(reader);
        if (reader.good()) { // a tree at which the document breaks off is a fragment
            m_TopElement = std::move(element);
        }
        return good;
    }

    virtual void setTopElementContainerToThis() {
        if (m_TopElement) {
            topElement()->setContainer(this);
        }
    }

private:
    NqXmlOwned<T> m_TopElement;

    mutable unsigned m_ElementsRead = 0; ///< while this is read
};
