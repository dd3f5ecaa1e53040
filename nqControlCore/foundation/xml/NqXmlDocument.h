#pragma once

#include <string>
#include <string_view>

class NqXmlObject;

/// Reads and writes whole documents, the root element of which bears the object's token.
///
/// Reading is false, with a message that names file and line, where a document can't be opened, is broken or
/// holds another root; what was read until then stays in the object. Writing is false where the file can't be
/// written or the object holds a text that XML can't.
class NqXmlDocument {
public:
    static bool readFile(const std::string& fileName, NqXmlObject& object);
    static bool readString(std::string_view document, NqXmlObject& object,
                           const std::string& fileName = "(text)");

    /// The file is replaced only once the whole document was written.
    static bool writeFile(const std::string& fileName, const NqXmlObject& object);
    static bool writeString(std::string& document, const NqXmlObject& object);
};
