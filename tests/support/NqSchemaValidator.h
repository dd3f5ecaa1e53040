#pragma once

#include <nqControlCore/foundation/xml/NqXmlDocument.h>
#include <nqControlCore/foundation/xml/NqXmlObject.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include <libxml/xmlschemas.h>

/// Validates documents, with libxml2, against the schema that an object writes of itself.
class NqSchemaValidator {
public:
    NqSchemaValidator(const NqXmlObject& object, const std::string& name) {
        const auto fileName = std::filesystem::path(testing::TempDir()) / (name + ".xsd");
        if (!object.createSchema(fileName.string(), object.token())) {
            return;
        }
        const auto parser = std::unique_ptr<xmlSchemaParserCtxt, decltype(&xmlSchemaFreeParserCtxt)>(
            xmlSchemaNewParserCtxt(fileName.c_str()), xmlSchemaFreeParserCtxt);
        m_Schema.reset(xmlSchemaParse(parser.get()));
    }

    /// Whether there is a schema, and it is one.
    bool isGood() const { return m_Schema != nullptr; }

    bool accepts(const std::string& text) const {
        const auto document = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>(
            xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, 0), xmlFreeDoc);
        const auto context = std::unique_ptr<xmlSchemaValidCtxt, decltype(&xmlSchemaFreeValidCtxt)>(
            xmlSchemaNewValidCtxt(m_Schema.get()), xmlSchemaFreeValidCtxt);
        xmlSchemaSetValidErrors(context.get(), keepSilent, nullptr, nullptr);
        return xmlSchemaValidateDoc(context.get(), document.get()) == 0;
    }

private:
    static void keepSilent(void*, const char*, ...) {}

    std::unique_ptr<xmlSchema, decltype(&xmlSchemaFree)> m_Schema{nullptr, xmlSchemaFree};
};
