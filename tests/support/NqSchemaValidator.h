#pragma once

#include <nqControlCore/foundation/xml/NqXmlObject.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include <libxml/xmlschemas.h>
#include <unistd.h>

/// Validates documents, with libxml2, against the schema that an object writes of itself.
class NqSchemaValidator {
public:
    explicit NqSchemaValidator(const NqXmlObject& object) {
        const std::string fileName = testing::TempDir() + "nqSchema" + std::to_string(getpid()) + ".xsd";
        object.createSchema(fileName, object.token());
        const auto parser = std::unique_ptr<xmlSchemaParserCtxt, decltype(&xmlSchemaFreeParserCtxt)>(
            xmlSchemaNewParserCtxt(fileName.c_str()), xmlSchemaFreeParserCtxt);
        m_Schema.reset(xmlSchemaParse(parser.get()));
        std::filesystem::remove(fileName);
    }

    /// False for all where there is no schema, or it is none.
    bool accepts(std::string_view text) const {
        const auto document = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>(
            xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, "UTF-8",
                          XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET | XML_PARSE_IGNORE_ENC),
            xmlFreeDoc);
        if (!document || document->intSubset ||
            text.find('\0') != text.npos) { // which libxml2 takes for the end
            return false;
        }
        const auto context = std::unique_ptr<xmlSchemaValidCtxt, decltype(&xmlSchemaFreeValidCtxt)>(
            xmlSchemaNewValidCtxt(m_Schema.get()), xmlSchemaFreeValidCtxt);
        xmlSchemaSetValidErrors(context.get(), keepSilent, nullptr, nullptr);
        return xmlSchemaValidateDoc(context.get(), document.get()) == 0;
    }

private:
    static void keepSilent(void*, const char*, ...) {}

    std::unique_ptr<xmlSchema, decltype(&xmlSchemaFree)> m_Schema{nullptr, xmlSchemaFree};
};
