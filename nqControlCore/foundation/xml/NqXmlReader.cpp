#include <nqControlCore/foundation/xml/NqXmlReader.h>

#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/text/NqTextConversion.h>
#include <nqControlCore/foundation/xml/NqXmlInputGuard.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include <libxml/xmlreader.h>

namespace {

constexpr int kDeepestNesting = 256; // libxml2's own limit too
constexpr const char* kTooDeep = "nested deeper than 256 elements";
constexpr unsigned kMostReports = 200;
constexpr std::size_t kLongestQuotation = 60;

std::string_view viewOf(const xmlChar* text) {
    return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

/// What libxml2 says, but for two cases that it words for its own developers.
std::string describe(const xmlError& error) {
    const std::string_view message = nqTrimmed(error.message ? error.message : "broken document");
    if (error.code == XML_ERR_DOCUMENT_END) {
        return "the document breaks off, or goes on behind its end";
    }
    return message.starts_with("Excessive depth") ? std::string(kTooDeep) : std::string(message);
}

struct Attribute {
    NqToken token;
    std::string value;
};

} // namespace

struct NqXmlReader::Implementation {
    std::string fileName;
    std::string_view memory;
    std::FILE* file = nullptr;
    xmlTextReaderPtr reader = nullptr;
    const NqXmlBaseVariableCompoundType* context = nullptr;
    std::vector<Attribute> attributes;
    unsigned currentAttribute = 0;
    NqXmlInputGuard guard;
    unsigned reports = 0;
    unsigned failureLine = 0; ///< where the document itself is broken
    unsigned tagLine = 0;     ///< of the last tag
    unsigned valueLine = 0;   ///< where the element begins that readText() has read
    bool started = false;
    bool failed = false;

    ~Implementation() {
        if (reader) {
            xmlFreeTextReader(reader);
        }
        if (file) {
            std::fclose(file);
        }
    }

    /// Bytes for libxml2, which itself opens nothing: so nothing is decompressed or fetched either.
    static int readBytes(void* context, char* buffer, int length) {
        auto& owner = *static_cast<NqXmlReader*>(context);
        auto& self = *owner.m_Implementation;
        std::size_t count = static_cast<std::size_t>(length);
        if (self.file) {
            count = std::fread(buffer, 1, count, self.file);
            if (count == 0 && std::ferror(self.file)) {
                owner.fail(std::string("cannot be read: ") + std::strerror(errno));
                return -1;
            }
        } else {
            count = std::min(count, self.memory.size());
            std::memcpy(buffer, self.memory.data(), count);
            self.memory.remove_prefix(count);
        }
        if (const char* trouble = self.guard.troubleIn({buffer, count})) {
            self.failureLine = self.guard.line();
            owner.fail(trouble);
            return -1;
        }
        return static_cast<int>(count);
    }

    static void takeError(void* context, xmlErrorPtr error) {
        auto& owner = *static_cast<NqXmlReader*>(context);
        if (error->level >= XML_ERR_ERROR && owner.good()) {
            owner.m_Implementation->failureLine = static_cast<unsigned>(std::max(error->line, 0));
            owner.fail(describe(*error));
        }
    }

    void open(NqXmlReader* owner) {
        reader = xmlReaderForIO(readBytes, nullptr, owner, nullptr, "UTF-8",
                                XML_PARSE_NONET | XML_PARSE_IGNORE_ENC | XML_PARSE_BIG_LINES);
        if (reader) {
            xmlTextReaderSetStructuredErrorHandler(
                reader, reinterpret_cast<xmlStructuredErrorFunc>(takeError), owner);
        } else if (owner->good()) {
            owner->fail("cannot be read");
        }
    }

    void collectAttributes() {
        attributes.clear();
        currentAttribute = 0;
        while (xmlTextReaderMoveToNextAttribute(reader) == 1) {
            if (xmlTextReaderIsNamespaceDecl(reader) != 1) {
                attributes.push_back({{viewOf(xmlTextReaderConstNamespaceUri(reader)),
                                       viewOf(xmlTextReaderConstLocalName(reader))},
                                      std::string(viewOf(xmlTextReaderConstValue(reader)))});
            }
        }
        xmlTextReaderMoveToElement(reader);
    }
};

NqXmlReader::NqXmlReader(const std::string& fileName) : m_Implementation(new Implementation) {
    m_Implementation->fileName = fileName;
    m_Implementation->file = std::fopen(fileName.c_str(), "rb");
    if (m_Implementation->file) {
        m_Implementation->open(this);
    } else {
        fail(std::string("cannot be opened: ") + std::strerror(errno));
    }
}

NqXmlReader::NqXmlReader(const std::string& fileName, std::string_view document)
    : m_Implementation(new Implementation) {
    m_Implementation->fileName = fileName;
    m_Implementation->memory = document;
    m_Implementation->open(this);
}

NqXmlReader::~NqXmlReader() {
    delete m_Implementation;
}

unsigned NqXmlReader::attributeCount() const {
    return static_cast<unsigned>(m_Implementation->attributes.size());
}

NqToken NqXmlReader::attributeToken(unsigned index) const {
    return index < attributeCount() ? m_Implementation->attributes[index].token : NqToken("");
}

std::string NqXmlReader::attributeValue(unsigned index) const {
    return index < attributeCount() ? m_Implementation->attributes[index].value : std::string();
}

void NqXmlReader::setCurrentAttribute(unsigned index) {
    m_Implementation->currentAttribute = index;
}

NqToken NqXmlReader::currentAttributeToken() const {
    return attributeToken(m_Implementation->currentAttribute);
}

std::string NqXmlReader::currentAttributeValue() const {
    return attributeValue(m_Implementation->currentAttribute);
}

unsigned NqXmlReader::nodeKind() const {
    if (!good() || !m_Implementation->started) {
        return NoNode;
    }
    switch (xmlTextReaderNodeType(m_Implementation->reader)) {
    case XML_READER_TYPE_ELEMENT:
        return xmlTextReaderIsEmptyElement(m_Implementation->reader) == 1 ? ElementWithoutContent
                                                                          : ElementStart;
    case XML_READER_TYPE_END_ELEMENT:
        return ElementEnd;
    case XML_READER_TYPE_TEXT:
    case XML_READER_TYPE_CDATA:
    case XML_READER_TYPE_WHITESPACE:
    case XML_READER_TYPE_SIGNIFICANT_WHITESPACE:
        return Text;
    default:
        return NoNode;
    }
}

bool NqXmlReader::moveOn() {
    if (!good()) {
        return false;
    }
    const int result = xmlTextReaderRead(m_Implementation->reader);
    m_Implementation->started = true;
    if (result != 1 || !good()) {
        if (result < 0 && good()) {
            fail("broken document");
        }
        return false;
    }
    switch (xmlTextReaderNodeType(m_Implementation->reader)) {
    case XML_READER_TYPE_DOCUMENT_TYPE:
    case XML_READER_TYPE_ENTITY_REFERENCE:
        fail("document types and entities are refused");
        return false;
    case XML_READER_TYPE_ELEMENT:
        if (depth() >= kDeepestNesting) {
            fail(kTooDeep);
            return false;
        }
        m_Implementation->collectAttributes();
        [[fallthrough]];
    case XML_READER_TYPE_END_ELEMENT:
        m_Implementation->tagLine = m_Implementation->guard.takeTagLine();
        return true;
    default:
        return true;
    }
}

bool NqXmlReader::advance() {
    return moveOn();
}

bool NqXmlReader::advanceToRoot() {
    while (moveOn()) {
        if (nodeKind() == ElementStart || nodeKind() == ElementWithoutContent) {
            return true;
        }
    }
    if (good()) {
        fail("no element in the document");
    }
    return false;
}

bool NqXmlReader::finish() {
    while (moveOn()) {
    }
    return good();
}

NqToken NqXmlReader::token() const {
    if (!good() || !m_Implementation->started) {
        return "";
    }
    return {viewOf(xmlTextReaderConstNamespaceUri(m_Implementation->reader)),
            viewOf(xmlTextReaderConstLocalName(m_Implementation->reader))};
}

bool NqXmlReader::dataMode() const {
    return good() && m_Implementation->started;
}

bool NqXmlReader::good() const {
    return !m_Implementation->failed;
}

unsigned NqXmlReader::lineNumber() const {
    if (m_Implementation->failureLine != 0 || !m_Implementation->reader) {
        return m_Implementation->failureLine;
    }
    // The parser works ahead, and tells the line of a text alone.
    const unsigned kind = nodeKind();
    if (kind != NoNode && kind != Text) {
        return m_Implementation->tagLine;
    }
    const long nodeLine = xmlGetLineNo(xmlTextReaderCurrentNode(m_Implementation->reader));
    if (nodeLine > 0) {
        return static_cast<unsigned>(nodeLine);
    }
    return static_cast<unsigned>(std::max(xmlTextReaderGetParserLineNumber(m_Implementation->reader), 0));
}

const std::string& NqXmlReader::fileName() const {
    return m_Implementation->fileName;
}

const NqXmlBaseVariableCompoundType* NqXmlReader::context() const {
    return m_Implementation->context;
}

void NqXmlReader::setContext(const NqXmlBaseVariableCompoundType* context) {
    m_Implementation->context = context;
}

int NqXmlReader::depth() const {
    return xmlTextReaderDepth(m_Implementation->reader);
}

bool NqXmlReader::readText(std::string& text) {
    text.clear();
    if (nodeKind() == ElementWithoutContent) {
        return true;
    }
    if (nodeKind() != ElementStart) {
        return false;
    }
    const int elementDepth = depth();
    m_Implementation->valueLine = lineNumber();
    while (moveOn()) {
        switch (nodeKind()) {
        case Text:
            text += viewOf(xmlTextReaderConstValue(m_Implementation->reader));
            break;
        case ElementEnd:
            if (depth() == elementDepth) {
                return true;
            }
            break;
        case ElementStart:
        case ElementWithoutContent:
            report("element \"" + std::string(token().localName()) + "\" stands where a value is expected");
            return false;
        default:
            break;
        }
    }
    return false;
}

bool NqXmlReader::mayReport() {
    if (m_Implementation->reports == kMostReports) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqXmlReader: further messages are left out -- file: %s\n", fileName());
    }
    return ++m_Implementation->reports <= kMostReports;
}

void NqXmlReader::report(const std::string& message) {
    reportAt(lineNumber(), message);
}

void NqXmlReader::reportAt(unsigned line, const std::string& message) {
    if (mayReport()) {
        Nq::Print::instance().write(Nq::PrintFailure, "NqXmlReader: %s -- file: %s, line: %d\n", message,
                                    fileName(), line);
    }
}

void NqXmlReader::reportBadValue(std::string_view text) {
    std::string quotation(text.substr(0, kLongestQuotation));
    if (quotation.size() < text.size()) {
        quotation += "...";
    }
    reportAt(nodeKind() == ElementEnd ? m_Implementation->valueLine : lineNumber(),
             "\"" + quotation + "\" is no value of element \"" + std::string(token().localName()) + "\"");
}

void NqXmlReader::fail(const std::string& message) {
    report(message);
    m_Implementation->failed = true;
}

NqXmlReader::Children::Children(NqXmlReader& reader)
    : m_Reader(reader), m_Depth(reader.good() ? reader.depth() : 0),
      m_IsDone(reader.nodeKind() != ElementStart) {}

bool NqXmlReader::Children::next() {
    while (!m_IsDone && m_Reader.moveOn()) {
        const unsigned kind = m_Reader.nodeKind();
        const int depth = m_Reader.depth();
        if (kind == ElementEnd && depth <= m_Depth) {
            m_IsDone = true;
        } else if (depth == m_Depth + 1 && (kind == ElementStart || kind == ElementWithoutContent)) {
            return true;
        } else if (depth == m_Depth + 1 && kind == Text &&
                   !nqTrimmed(viewOf(xmlTextReaderConstValue(m_Reader.m_Implementation->reader))).empty()) {
            m_Reader.report("text stands where elements are expected, and is skipped");
        }
    }
    m_IsDone = true;
    return false;
}
