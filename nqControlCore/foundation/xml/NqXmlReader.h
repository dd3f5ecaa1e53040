#pragma once

#include <nqControlCore/foundation/xml/NqToken.h>

#include <string>
#include <string_view>

class NqXmlBaseVariableCompoundType;

/// Reads an XML document as a stream, node by node.
///
/// Nothing that a file says is trusted: document type declarations (and with them entities), other encodings
/// than UTF-8, nesting deeper than 256 elements, more than 256 attributes in a tag, texts of more than 10 MB
/// and network access are refused. What is wrong with a document is reported at print type 4 with file and
/// line; from then on good() is false and nothing advances.
class NqXmlReader {
public:
    /// Kinds of node that nodeKind() tells apart.
    enum NodeKind : unsigned {
        NoNode = 0,
        ElementStart = 1,
        ElementEnd = 2,
        ElementWithoutContent = 3,
        Text = 4
    };

    /// Opens a file. A file that can't be opened is reported, and good() is false.
    explicit NqXmlReader(const std::string& fileName);

    /// Reads a document in memory, which must outlive the reader; `fileName` is only for messages.
    NqXmlReader(const std::string& fileName, std::string_view document);

    NqXmlReader(const NqXmlReader&) = delete;
    NqXmlReader& operator=(const NqXmlReader&) = delete;
    virtual ~NqXmlReader();

    /// Attributes of the current element, namespace declarations left out. An index out of range gives empty
    /// results.
    virtual unsigned attributeCount() const;
    virtual NqToken attributeToken(unsigned index) const;
    virtual std::string attributeValue(unsigned index) const;

    /// The attribute that readAttribute() operations take their value from.
    virtual void setCurrentAttribute(unsigned index);
    virtual NqToken currentAttributeToken() const;
    virtual std::string currentAttributeValue() const;

    virtual unsigned nodeKind() const;

    /// Goes on to the next node. False at the end of the document or of what could be read of it.
    virtual bool advance();

    /// Goes on to the start of the root element. False if there is none.
    virtual bool advanceToRoot();

    /// Goes on behind the root element to the end of the document, so that trouble there is found too.
    virtual bool finish();

    /// The name of the current element.
    virtual NqToken token() const;

    /// Whether the reader stands in the document's data: something was read, and no trouble was met.
    virtual bool dataMode() const;

    /// Whether no trouble was met so far.
    virtual bool good() const;

    /// Of the current tag, or of the text between two; of what is broken, once anything is.
    virtual unsigned lineNumber() const;
    virtual const std::string& fileName() const;

    /// The innermost object being read that can make objects from tokens, or null.
    virtual const NqXmlBaseVariableCompoundType* context() const;
    virtual void setContext(const NqXmlBaseVariableCompoundType* context);

    /// The text of the current element, up to its end. False where there are elements in it, or it breaks
    /// off.
    virtual bool readText(std::string& text);

    /// Whether one more message about this document may be printed. After a few hundred it is false: a broken
    /// file must not flood the log.
    virtual bool mayReport();

    /// Prints a message with file and line at print type 4, if mayReport() allows it.
    virtual void report(const std::string& message);

    /// Reports a text that is no value of the current element or attribute, with the line in which the
    /// element begins.
    virtual void reportBadValue(std::string_view text);

    /// Walks the children of the element that the reader stands on when this is made:
    ///
    ///     for (NqXmlReader::Children children(reader); children.next();) { ... reader.token() ... }
    ///
    /// A child may be read or not, whole or in part: next() passes by what is left of it. After the last
    /// child the reader stands on the end of the element.
    class Children {
    public:
        explicit Children(NqXmlReader& reader);
        bool next();

    private:
        NqXmlReader& m_Reader;
        int m_Depth;
        bool m_IsDone;
    };

private:
    struct Implementation;

    int depth() const;
    bool moveOn();
    void reportAt(unsigned line, const std::string& message);
    void fail(const std::string& message);

    Implementation* const m_Implementation;
};
