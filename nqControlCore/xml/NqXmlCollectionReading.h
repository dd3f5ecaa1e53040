#pragma once

#include <nqControlCore/foundation/xml/NqXmlReader.h>

#include <optional>

/// One reading of a list: the declared count, the walk over the entries, and the comparison of the two at the
/// end. Entries are elements of their own, or values within a group.
class NqXmlCollectionReading {
public:
    /// Begins on the list's element. `name` and `kind` are for messages, as in "NqXmlVectorType" and "array".
    NqXmlCollectionReading(NqXmlReader& reader, const char* name, const char* kind, const char* signature);

    /// The declared count, as far as a file is trusted with memory.
    unsigned reservation() const;

    /// Goes on to the next entry; false behind the last one.
    bool nextEntry();

    /// Counts an entry that was not met by nextEntry().
    void countEntry() { ++m_Count; }

    /// Reports what is wrong. A wrong count doesn't count as a failure; false where the document is broken.
    bool finish();

private:
    NqXmlReader& m_Reader;
    const char* m_Name;
    const char* m_Kind;
    const char* m_Signature;
    bool m_HasContent;
    long long m_Declared = 0;
    long long m_Count = 0;
    NqXmlReader::Children m_Children;
    std::optional<NqXmlReader::Children> m_Group;
};
