#include <nqControlCore/foundation/xml/NqXmlWriter.h>

#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>
#include <optional>
#include <ostream>
#include <utility>
#include <vector>

#include <libxml/chvalid.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>
#include <libxml/xmlwriter.h>

namespace {

const xmlChar* xmlText(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

/// Whether XML 1.0 can hold the text: UTF-8 of allowed characters.
bool isXmlText(const std::string& text) {
    const auto* at = xmlText(text);
    auto left = static_cast<int>(std::min<std::size_t>(text.size(), 1U << 30));
    while (left > 0) {
        int length = left;
        const int character = xmlGetUTF8Char(at, &length);
        xmlChar bytes[4]; // it has in UTF-8: some others are let pass as the same character
        if (character < 0 || !xmlIsCharQ(static_cast<unsigned>(character)) ||
            xmlCopyCharMultiByte(bytes, character) != length || !std::equal(bytes, bytes + length, at)) {
            return false;
        }
        at += length;
        left -= length;
    }
    return true;
}

} // namespace

struct NqXmlWriter::Implementation {
    Implementation(const std::string& name, std::ostream& out) : fileName(name), stream(out) {}

    std::string fileName;
    std::ostream& stream;
    xmlTextWriterPtr writer = nullptr;
    std::vector<std::string> namespaces; ///< of the open elements
    std::optional<NqToken> attributeName;
    std::string styleSheet;
    std::string schemaLocation;
    std::string language;
    unsigned linkTotal = 0;
    unsigned linkCount = 0;
    unsigned contentColumns = 0;
    bool hasRoot = false;
    bool writesDeclaration = true;
    bool declaresSchemaInstance = false;
    bool isSchemaWriter = false;
    bool writesDefaultData = true;
    bool good = true;

    static int writeBytes(void* context, const char* bytes, int length) {
        auto& self = *static_cast<Implementation*>(context);
        self.stream.write(bytes, length);
        return self.stream ? length : -1;
    }

    bool beginDocument() {
        if (writesDeclaration && xmlTextWriterStartDocument(writer, nullptr, "UTF-8", nullptr) < 0) {
            return false;
        }
        const std::string pointer = "type=\"text/xsl\" href=\"" + styleSheet + "\"";
        return styleSheet.empty() ||
               xmlTextWriterWritePI(writer, xmlText("xml-stylesheet"), xmlText(pointer)) >= 0;
    }

    bool attribute(const std::string& name, const std::string& text) {
        return xmlTextWriterWriteAttribute(writer, xmlText(name), xmlText(text)) >= 0;
    }

    bool rootAttributes() {
        const bool tellsInstance = declaresSchemaInstance || !schemaLocation.empty();
        return (!tellsInstance || attribute("xmlns:xsi", "http://www.w3.org/2001/XMLSchema-instance")) &&
               (schemaLocation.empty() || attribute("xsi:schemaLocation", schemaLocation)) &&
               (language.empty() || attribute("xml:lang", language));
    }
};

NqXmlWriter::NqXmlWriter(const std::string& fileName, std::ostream& stream)
    : m_Implementation(new Implementation(fileName, stream)) {
    if (auto* buffer =
            xmlOutputBufferCreateIO(Implementation::writeBytes, nullptr, m_Implementation, nullptr)) {
        m_Implementation->writer = xmlNewTextWriter(buffer);
    }
    check(m_Implementation->writer != nullptr && stream.good());
    setIndent(true);
}

NqXmlWriter::~NqXmlWriter() {
    if (m_Implementation->writer) {
        xmlTextWriterEndDocument(m_Implementation->writer);
        xmlFreeTextWriter(m_Implementation->writer);
    }
    delete m_Implementation;
}

bool NqXmlWriter::check(bool succeeded) {
    m_Implementation->good = m_Implementation->good && succeeded;
    return m_Implementation->good;
}

bool NqXmlWriter::checkText(const std::string& text) {
    return isXmlText(text) ? m_Implementation->good : refuse("a text holds characters that XML cannot");
}

bool NqXmlWriter::checkName(const std::string& name) {
    const auto isName = m_Implementation->isSchemaWriter ? xmlValidateQName : xmlValidateNCName;
    if (isXmlText(name) && isName(xmlText(name), 0) == 0) {
        return m_Implementation->good;
    }
    return refuse("a name is none that XML could hold");
}

bool NqXmlWriter::refuse(const char* complaint) {
    Nq::Print::instance().write(Nq::PrintFailure, "NqXmlWriter: %s -- file: %s\n", complaint,
                                m_Implementation->fileName);
    return check(false);
}

bool NqXmlWriter::start(std::string_view namespaceUri, std::string_view localName) {
    auto& self = *m_Implementation;
    const bool isRoot = self.namespaces.empty();
    const std::string uri(namespaceUri);
    const std::string name(localName);
    if (!self.good || !checkName(name)) {
        return false;
    }
    if (isRoot && std::exchange(self.hasRoot, true)) {
        return refuse("a document has one root");
    }
    if (isRoot && !check(self.beginDocument())) {
        return false;
    }
    const bool redeclares = isRoot ? !uri.empty() : uri != self.namespaces.back();
    self.namespaces.push_back(uri);
    return check(xmlTextWriterStartElement(self.writer, xmlText(name)) >= 0 &&
                 (!redeclares || self.attribute("xmlns", uri)) && (!isRoot || self.rootAttributes()));
}

bool NqXmlWriter::writeStartTag(const NqToken& token) {
    return token.isQualified() ? start(token.namespaceUri(), token.localName())
                               : writeStartTagUsingParentNamespace(token);
}

bool NqXmlWriter::writeStartTagUsingParentNamespace(const NqToken& token) {
    const auto& namespaces = m_Implementation->namespaces;
    return start(namespaces.empty() ? std::string_view() : namespaces.back(), token.localName());
}

bool NqXmlWriter::writeEndTag() {
    auto& self = *m_Implementation;
    if (!check(!self.namespaces.empty())) {
        return false;
    }
    self.namespaces.pop_back();
    return check(xmlTextWriterEndElement(self.writer) >= 0);
}

bool NqXmlWriter::content(const std::string& text) {
    if (m_Implementation->namespaces.empty()) {
        return refuse("text stands within the root");
    }
    return checkText(text) && check(xmlTextWriterWriteString(m_Implementation->writer, xmlText(text)) >= 0);
}

bool NqXmlWriter::data(const std::string& text) {
    return m_Implementation->attributeName ? attributeValue(text) : content(text);
}

bool NqXmlWriter::attributeValue(const std::string& text) {
    auto& self = *m_Implementation;
    if (!checkText(text) || !check(self.attributeName.has_value())) {
        return false;
    }
    const std::string name(self.attributeName->localName());
    self.attributeName.reset();
    return checkName(name) && check(self.attribute(name, text));
}

void NqXmlWriter::setAttributeName(const NqToken& token) {
    m_Implementation->attributeName = token;
}

bool NqXmlWriter::header(const NqToken& root, const std::string& comment) {
    auto& self = *m_Implementation;
    if (!check(self.namespaces.empty()) || !checkText(comment)) {
        return false;
    }
    if (comment.find("--") != std::string::npos || comment.ends_with('-')) {
        return refuse("a comment holds \"--\", or ends in \"-\"");
    }
    if (!comment.empty()) {
        // The declaration must come first, so start() is told not to write it again.
        if (!check(self.beginDocument() && xmlTextWriterWriteComment(self.writer, xmlText(comment)) >= 0)) {
            return false;
        }
        self.writesDeclaration = false;
        self.styleSheet.clear();
    }
    return writeStartTag(root);
}

bool NqXmlWriter::tab(unsigned count) {
    return content(std::string(2 * static_cast<std::size_t>(count), ' '));
}

std::string NqXmlWriter::type(const std::type_info& type) const {
    if (type == typeid(double)) {
        return "xs:double";
    }
    if (type == typeid(int)) {
        return "xs:int";
    }
    if (type == typeid(unsigned int)) {
        return "xs:unsignedInt";
    }
    if (type == typeid(unsigned short)) {
        return "xs:unsignedShort";
    }
    return type == typeid(bool) ? "xs:boolean" : "xs:string";
}

void NqXmlWriter::setHeader(bool writesDeclaration) {
    m_Implementation->writesDeclaration = writesDeclaration;
}

void NqXmlWriter::setIndent(bool indents) {
    if (m_Implementation->writer) {
        xmlTextWriterSetIndent(m_Implementation->writer, indents ? 1 : 0);
        xmlTextWriterSetIndentString(m_Implementation->writer, xmlText("  "));
    }
}

void NqXmlWriter::setStyleSheet(const std::string& uri) {
    m_Implementation->styleSheet = uri;
}
void NqXmlWriter::setSchemaInstance(bool declares) {
    m_Implementation->declaresSchemaInstance = declares;
}
void NqXmlWriter::setSchemaLocation(const std::string& location) {
    m_Implementation->schemaLocation = location;
}
void NqXmlWriter::setSchemaWriter(bool isSchemaWriter) {
    m_Implementation->isSchemaWriter = isSchemaWriter;
}
bool NqXmlWriter::schemaWriter() const {
    return m_Implementation->isSchemaWriter;
}
void NqXmlWriter::setLanguageSelection(const std::string& language) {
    m_Implementation->language = language;
}
void NqXmlWriter::setLinkTotal(unsigned total) {
    m_Implementation->linkTotal = total;
}
unsigned NqXmlWriter::linkTotal() const {
    return m_Implementation->linkTotal;
}
void NqXmlWriter::incrementLinkCount() {
    ++m_Implementation->linkCount;
}
void NqXmlWriter::resetLinkCount() {
    m_Implementation->linkCount = 0;
}
unsigned NqXmlWriter::linkCount() const {
    return m_Implementation->linkCount;
}
void NqXmlWriter::setNumOfContentColumns(unsigned columns) {
    m_Implementation->contentColumns = columns;
}
unsigned NqXmlWriter::numOfContentColumns() const {
    return m_Implementation->contentColumns;
}
void NqXmlWriter::setWriteDefaultDataFlag(bool writes) {
    m_Implementation->writesDefaultData = writes;
}
bool NqXmlWriter::writeDefaultDataFlag() const {
    return m_Implementation->writesDefaultData;
}

bool NqXmlWriter::flush() {
    return check(m_Implementation->writer && xmlTextWriterFlush(m_Implementation->writer) >= 0) &&
           check(m_Implementation->stream.flush().good());
}
