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
    m_Namespace = rootToken.namespaceUri();
    if (rootToken.isQualified()) {
        attributes.emplace_back("targetNamespace", std::string(rootToken.namespaceUri()));
    }
    return start("xs:schema", attributes) && beginElement(rootToken, Occurs::Once) &&
           object.writeSchema(*this) && endElement() && end();
}

bool NqXmlSchema::start(const char* name, const Attributes& attributes) {
    if (m_Foreign != 0) {
        return true;
    }
    bool good = m_Writer.writeStartTag(name);
    for (const auto& [attribute, value] : attributes) {
        m_Writer.setAttributeName(attribute);
        good = good && m_Writer.attributeValue(value);
    }
    return good;
}

bool NqXmlSchema::end() {
    return m_Foreign != 0 || m_Writer.writeEndTag();
}

bool NqXmlSchema::empty(const char* name, const Attributes& attributes) {
    return start(name, attributes) && end();
}

bool NqXmlSchema::beginElement(const NqToken& token, Occurs occurs) {
    if (m_Foreign != 0 || (token.isQualified() && token.namespaceUri() != m_Namespace)) {
        return (m_Foreign != 0 || allow(token.namespaceUri())) && ++m_Foreign != 0;
    }
    Attributes attributes = {{"name", std::string(token.localName())}};
    addOccurs(attributes, occurs);
    return start("xs:element", attributes);
}

bool NqXmlSchema::endElement() {
    if (m_Foreign != 0) {
        --m_Foreign;
        return true;
    }
    return end();
}

/// Allows any elements of another namespace in the open group, once: the group could not tell two such places
/// apart.
bool NqXmlSchema::allow(std::string_view namespaceUri) {
    if (m_Groups.empty()) {
        return false;
    }
    Group& group = m_Groups.back();
    if (group.allowed == namespaceUri) {
        return true;
    }
    group.allowed = namespaceUri;
    Attributes attributes = {{"namespace", group.allowed}, {"processContents", "lax"}};
    if (group.isSequence) {
        addOccurs(attributes, Occurs::AnyNumber);
    }
    return empty("xs:any", attributes);
}

bool NqXmlSchema::beginComplexType() {
    return start("xs:complexType");
}

bool NqXmlSchema::beginSequence() {
    m_Groups.push_back({true, {}});
    return start("xs:sequence");
}

bool NqXmlSchema::beginChoice(Occurs occurs) {
    Attributes attributes;
    addOccurs(attributes, occurs);
    m_Groups.push_back({false, {}});
    return start("xs:choice", attributes);
}

bool NqXmlSchema::endContent() {
    if (m_Groups.empty()) {
        return false;
    }
    m_Groups.pop_back();
    return end();
}

bool NqXmlSchema::endComplexType() {
    return end();
}

bool NqXmlSchema::writeAnyElement() {
    Attributes attributes = {{"processContents", "lax"}};
    addOccurs(attributes, Occurs::AnyNumber);
    return empty("xs:any", attributes);
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
