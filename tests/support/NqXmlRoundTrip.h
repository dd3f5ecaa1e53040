#pragma once

#include <nqControlCore/foundation/xml/NqXmlDocument.h>

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
