#pragma once

#include <nqControlCore/foundation/xml/NqToken.h>

#include <iosfwd>
#include <string>
#include <typeinfo>

class NqXmlObject;

/// Writes an XML document to a stream.
///
/// Elements take the namespace of their token as default namespace, declared where it changes; an element
/// with an unqualified token stands in the namespace of its parent. Attributes bear their local name alone.
/// Operations are false once anything has failed: the stream, the nesting, or what XML can't hold, which is
/// reported at print type 4: control characters and broken UTF-8, names that are none, a comment with "--" in
/// it, and a second root or text beside the root.
class NqXmlWriter {
public:
    /// Writes to the stream, which must outlive the writer; the file name is for messages.
    NqXmlWriter(const std::string& fileName, std::ostream& stream);
    NqXmlWriter(const NqXmlWriter&) = delete;
    NqXmlWriter& operator=(const NqXmlWriter&) = delete;

    /// Closes the elements that are still open.
    virtual ~NqXmlWriter();

    /// Opens an element. Attributes follow by attributeValue(), then content or further elements, then the
    /// end tag.
    virtual bool writeStartTag(const NqToken& token);
    virtual bool writeStartTagUsingParentNamespace(const NqToken& token);
    virtual bool writeEndTag();

    /// Writes text into the open element.
    virtual bool content(const std::string& text);

    /// Writes a value: the value of the attribute named by setAttributeName, if one is pending, or else
    /// content.
    virtual bool data(const std::string& text);

    virtual bool attributeValue(const std::string& text);
    virtual void setAttributeName(const NqToken& token);

    /// Begins the document: declaration, a comment unless `comment` is empty, and the start tag of the root.
    virtual bool header(const NqToken& root, const std::string& comment);

    /// Writes an indentation of so many steps as content.
    virtual bool tab(unsigned count);

    /// The XML Schema type, such as "xs:double", of a basic C++ type; "xs:string" for any other.
    virtual std::string type(const std::type_info& type) const;

    virtual void setHeader(bool writesDeclaration); ///< whether the XML declaration is written; true at first
    virtual void setIndent(bool indents); ///< whether elements stand on lines of their own; true at first
    virtual void setStyleSheet(const std::string& uri); ///< named ahead of the root, unless empty
    virtual void
    setSchemaInstance(bool declares); ///< whether the root declares the schema instance namespace
    virtual void setSchemaLocation(const std::string& location); ///< told by the root, unless empty
    virtual void setSchemaWriter(bool isSchemaWriter); ///< whether names may have a prefix; false at first
    virtual bool schemaWriter() const;
    virtual void setLanguageSelection(const std::string& language); ///< xml:lang of the root, unless empty

    /// A tally that a caller may keep while it writes the links of a large model.
    virtual void setLinkTotal(unsigned total);
    virtual unsigned linkTotal() const;
    virtual void incrementLinkCount();
    virtual void resetLinkCount();
    virtual unsigned linkCount() const;

    /// Numbers on a line of a long list; 0, as at first, for all on one line.
    virtual void setNumOfContentColumns(unsigned columns);
    virtual unsigned numOfContentColumns() const;

    /// Whether components that are as in a new object are written too; true at first.
    virtual void setWriteDefaultDataFlag(bool writes);
    virtual bool writeDefaultDataFlag() const;

    /// Hands all that was written on to the stream. False if anything has failed.
    virtual bool flush();

    /// What an object that is about to be written would hold if it were left out of the file, as its owner
    /// says: the same component of a new owner. It holds for that very object while this lives; any other is
    /// as new objects of its class are.
    class Default {
    public:
        Default(NqXmlWriter& writer, const NqXmlObject& object, const NqXmlObject* leftOut)
            : m_Writer(writer), m_Outer(writer.m_Default), m_Object(&object), m_LeftOut(leftOut) {
            writer.m_Default = this;
        }
        Default(const Default&) = delete;
        Default& operator=(const Default&) = delete;
        ~Default() { m_Writer.m_Default = m_Outer; }

    private:
        friend class NqXmlWriter;
        NqXmlWriter& m_Writer;
        const Default* m_Outer;
        const NqXmlObject* m_Object;
        const NqXmlObject* m_LeftOut;
    };

    /// What the object would hold if it were left out; null where nobody has said so.
    const NqXmlObject* defaultOf(const NqXmlObject& object) const {
        return m_Default && m_Default->m_Object == &object ? m_Default->m_LeftOut : nullptr;
    }

private:
    struct Implementation;

    bool start(std::string_view namespaceUri, std::string_view localName);
    bool check(bool succeeded);
    bool checkText(const std::string& text);
    bool checkName(const std::string& name);
    bool refuse(const char* complaint);

    Implementation* const m_Implementation;
    const Default* m_Default = nullptr;
};
