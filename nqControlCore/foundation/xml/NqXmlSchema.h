#pragma once

#include <nqControlCore/foundation/xml/NqToken.h>

#include <string>
#include <typeinfo>
#include <vector>

class NqXmlObject;
class NqXmlWriter;

/// Writes an XML Schema (W3C, 1.0) for what the library writes. Objects are handed this by their
/// writeSchema() while the element or attribute that they are to describe is open, and add its type; types
/// are anonymous and nested.
///
/// One schema describes the elements of one namespace, that of the root. Where the elements of an object
/// stand in another, as those of a compound object in a plain list do, any element of that one is allowed.
class NqXmlSchema {
public:
    enum class Occurs { Once, Optional, AnyNumber };

    explicit NqXmlSchema(NqXmlWriter& writer);

    /// Writes the whole schema of documents with this object in a root element of that name.
    bool writeDocument(const NqXmlObject& object, const NqToken& rootToken);

    bool beginElement(const NqToken& token, Occurs occurs);
    bool endElement();

    /// A type with content and attributes: the content is one sequence or choice, ended by endContent().
    bool beginComplexType();
    bool beginSequence();
    bool beginChoice(Occurs occurs);
    bool endContent();
    bool endComplexType();

    /// Allows any element, its content unchecked, at this place of a sequence or choice.
    bool writeAnyElement();

    bool beginAttribute(const NqToken& token);
    bool endAttribute();

    bool writeSimpleType(const std::type_info& type);

    /// A list separated by white space; of exactly `length` entries, unless that is 0.
    bool writeListType(const std::type_info& entry, std::size_t length = 0);

    /// One of the names, or a value of the underlying type.
    bool writeEnumerationType(const std::vector<std::string>& names, const std::type_info& underlying);

private:
    bool start(const char* name, const std::vector<std::pair<const char*, std::string>>& attributes = {});
    bool end();
    bool empty(const char* name, const std::vector<std::pair<const char*, std::string>>& attributes);

    bool allow(std::string_view namespaceUri);

    /// A sequence or choice that is open, and the other namespace that it allows.
    struct Group {
        bool isSequence;
        std::string allowed;
    };

    NqXmlWriter& m_Writer;
    std::string m_Namespace; ///< of the root
    std::vector<Group> m_Groups;
    unsigned m_Foreign = 0; ///< how deep in elements of another namespace, of which nothing is written
};
