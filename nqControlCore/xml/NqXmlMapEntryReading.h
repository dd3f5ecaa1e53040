#pragma once

#include <nqControlCore/foundation/xml/NqXmlReader.h>

class NqXmlObject;

/// Reads one entry of a map, on which the reader stands: an element with a key and, behind it, a value.
/// Another form is reported, with what was expected and what was there.
class NqXmlMapEntryReading {
public:
    /// `name` is for messages, as in "NqXmlMapType".
    NqXmlMapEntryReading(NqXmlReader& reader, const char* name) : m_Reader(reader), m_Name(name) {}

    /// False where the entry, or the first element in it, has another name, or the key is bad in itself.
    bool readKey(NqXmlObject& key);

    /// Goes on to the value, whatever its name. False where there is none.
    bool nextValue();

    /// Reads the value. False where it has another name or is bad in itself.
    bool readValue(NqXmlObject& value);

private:
    bool expect(const NqToken& token);
    void reportForm(const char* expected, std::string_view received);

    NqXmlReader& m_Reader;
    const char* m_Name;
    NqXmlReader::Children m_Parts{m_Reader};
};
