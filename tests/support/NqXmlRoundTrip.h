#pragma once

#include <nqControlCore/foundation/xml/NqXmlDocument.h>
#include <nqControlCore/foundation/xml/NqXmlObject.h>
#include <nqControlCore/foundation/xml/NqXmlObjectVisitor.h>

#include <gtest/gtest.h>

#include <string>

/// The document of an object.
inline std::string nqWritten(const NqXmlObject& object) {
    std::string document;
    EXPECT_TRUE(NqXmlDocument::writeString(document, object));
    return document;
}

/// What is read of the document of an object, to which it needn't be equal.
template <typename Object>
Object nqThroughXml(const Object& object) {
    const std::string document = nqWritten(object);
    Object read;
    EXPECT_TRUE(NqXmlDocument::readString(document, read)) << document;
    return read;
}

/// How many objects an object shows to a visitor, where containers count once more.
inline unsigned nqVisited(const NqXmlObject& object) {
    class Visitor : public NqXmlObjectVisitor {
    public:
        using NqXmlObjectVisitor::visit;
        void visit(const NqXmlObject*) override { ++m_Count; }
        void visit(const NqXmlBaseVariableCompoundType*) override { ++m_Count; }
        unsigned m_Count = 0;
    };
    Visitor visitor;
    object.accept(&visitor);
    return visitor.m_Count;
}

inline std::string nqRepeated(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}
