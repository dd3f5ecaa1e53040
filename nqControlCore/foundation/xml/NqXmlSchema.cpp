#include <nqControlCore/foundation/xml/NqXmlSchema.h>

#include <nqControlCore/foundation/xml/NqXmlObject.h>
#include <nqControlCore/foundation/xml/NqXmlWriter.h>

namespace {

using Attributes = std::vector<std::pair<const char*, std::string>>;

constexpr const char* kSchemaNamespace = "http://www.w3.org/2001/XMLSchema";

/// minOccurs and maxOccurs, which are 1 where they are not given.
void addOccurs(Attributes& attributes, NqXmlSchema::Occurs occurs) {
    if (occurs != NqXmlSchema::Occurs::Once) {
        attributes.emplace_back("minOccurs", "0");
    }
    if (occurs == NqXmlSchema::Occurs::AnyNumber) {
        attributes.emplace_back("maxOccurs", "unbounded");
    }
}

} // namespace

NqXmlSchema::NqXmlSchema(NqXmlWriter& writer) : m_Writer(writer) {
    m_Writer.setSchemaWriter(true);
}

bool NqXmlSchema::writeDocument(const NqXmlObject& object, const NqToken& rootToken) {
    Attributes attributes = {{"xmlns:xs", kSchemaNamespace}, {"elementFormDefault", "qualified"}};
    if (rootToken.isQualified()) {
        attributes.emplace_back("targetNamespace", std::string(rootToken.namespaceUri()));
    }
    return start("xs:schema", attributes) && beginElement(rootToken, Occurs::Once) &&
           object.writeSchema(*this) && endElement() && end();
}

bool NqXmlSchema::start(const char* name, const Attributes& attributes) {
    bool good = m_Writer.writeStartTag(name);
    for (const auto& [attribute, value] : attributes) {
        m_Writer.setAttributeName(attribute);
        good = good && m_Writer.attributeValue(value);
    }
    return good;
}

bool NqXmlSchema::end() {
    return m_Writer.writeEndTag();
}

bool NqXmlSchema::empty(const char* name, const Attributes& attributes) {
    return start(name, attributes) && end();
}

bool NqXmlSchema::beginElement(const NqToken& token, Occurs occurs) {
    Attributes attributes = {{"name", std::string(token.localName())}};
    addOccurs(attributes, occurs);
    return start("xs:element", attributes);
}

bool NqXmlSchema::endElement() {
    return end();
}

bool NqXmlSchema::beginComplexType() {
    return start("xs:complexType");
}

bool NqXmlSchema::beginSequence() {
    return start("xs:sequence");
}

bool NqXmlSchema::beginChoice(Occurs occurs) {
    Attributes attributes;
    addOccurs(attributes, occurs);
    return start("xs:choice", attributes);
}

bool NqXmlSchema::endContent() {
    return end();
}

bool NqXmlSchema::endComplexType() {
    return end();
}

bool NqXmlSchema::writeAnyElement() {
    return empty("xs:any", {{"processContents", "lax"}, {"minOccurs", "0"}, {"maxOccurs", "unbounded"}});
}

bool NqXmlSchema::beginAttribute(const NqToken& token) {
    return start("xs:attribute", {{"name", std::string(token.localName())}});
}

bool NqXmlSchema::endAttribute() {
    return end();
}

bool NqXmlSchema::writeSimpleType(const std::type_info& type) {
    return start("xs:simpleType") && empty("xs:restriction", {{"base", m_Writer.type(type)}}) && end();
}

bool NqXmlSchema::writeListType(const std::type_info& entry, std::size_t length) {
    const Attributes list = {{"itemType", m_Writer.type(entry)}};
    if (length == 0) {
        return start("xs:simpleType") && empty("xs:list", list) && end();
    }
    return start("xs:simpleType") && start("xs:restriction") && start("xs:simpleType") &&
           empty("xs:list", list) && end() && empty("xs:length", {{"value", std::to_string(length)}}) &&
           end() && end();
}

bool NqXmlSchema::writeEnumerationType(const std::vector<std::string>& names,
                                       const std::type_info& underlying) {
    bool good = start("xs:simpleType") && start("xs:union", {{"memberTypes", m_Writer.type(underlying)}}) &&
                start("xs:simpleType") && start("xs:restriction", {{"base", "xs:string"}});
    for (const std::string& name : names) {
        good = good && empty("xs:enumeration", {{"value", name}});
    }
    return good && end() && end() && end() && end();
}
