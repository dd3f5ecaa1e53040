#pragma once

#include <string>

class NqToken;
class NqXmlObjectVisitor;
class NqXmlReader;
class NqXmlSchema;
class NqXmlWriter;

/// Root of all persistent classes: a value that can be read from and written to XML.
///
/// read() is called with the reader on the start of the element that holds the object, and write() with the
/// object's element already open: an object reads and writes what stands inside its element, and its owner
/// names it.
class NqXmlObject {
public:
    NqXmlObject() = default;
    NqXmlObject(const NqXmlObject& other) noexcept : m_Specified(other.m_Specified) {}
    NqXmlObject& operator=(const NqXmlObject& other) noexcept {
        m_Specified = other.m_Specified;
        return *this;
    }
    virtual ~NqXmlObject() = default;

    /// Lets the visitor see this object and, where there are any, its components.
    virtual void accept(NqXmlObjectVisitor* visitor) const;

    /// A heap copy, owned by the caller.
    virtual NqXmlObject* clone() const = 0;

    /// Registers components and enumerators, once, when they are first needed. An override registers and
    /// does nothing else, since constant objects are registered too.
    virtual bool xmlInit();

    /// Reads the content of the reader's current element. False, with a message, where the content is broken;
    /// what was read until then stays.
    virtual bool read(NqXmlReader& reader);

    /// Reads the value from the reader's current attribute.
    virtual bool readAttribute(NqXmlReader& reader);

    /// Writes the content of the element that the writer has open.
    virtual bool write(NqXmlWriter& writer) const;

    /// Writes the type of the element that the schema has open.
    virtual bool writeSchema(NqXmlSchema& schema) const;

    /// Writes a schema file for documents whose root element bears the name `rootToken` and holds such an
    /// object.
    virtual bool createSchema(const std::string& fileName, const NqToken& rootToken) const;

    virtual bool xmlInitialized() const { return m_XmlInitialized; }
    virtual void setXmlInitialized(bool initialized) { m_XmlInitialized = initialized; }

    /// Whether the value was present in the file that its owner was last read from.
    virtual bool specified() const { return m_Specified; }
    virtual void setSpecified(bool specified) { m_Specified = specified; }

    /// Whether the value is a single text without elements of its own.
    virtual bool isBasicType() const { return false; }

    /// Whether the object equals a new one of its class.
    virtual bool equalsDefault() const;

    /// Whether the other object is of the same class and equal.
    virtual bool equality(const NqXmlObject* other) const = 0;

    /// A heap object made by the default constructor, owned by the caller.
    virtual NqXmlObject* newObject() const = 0;

    /// The element name of the class.
    virtual const NqToken& token() const = 0;

protected:
    /// Makes sure that xmlInit() has been called, which a constant object may need too: to register fills
    /// caches, and all of those are mutable.
    bool ensureInitialized() const { return xmlInitialized() || const_cast<NqXmlObject*>(this)->xmlInit(); }

private:
    mutable bool m_XmlInitialized = false;
    bool m_Specified = false;
};
