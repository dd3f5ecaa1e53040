#pragma once

#include <nqControlCore/foundation/xml/NqXmlReader.h>

#include <optional>

/// One reading of a collection: the declared count, the walk over the entries of a list, and the comparison
/// of the two counts at the end.
class NqXmlCollectionReading {
public:
    /// Begins on the collection's element. `name` and `kind` are for messages, as in "NqXmlVectorType" and
    /// "array"; all texts must outlive the reading.
    NqXmlCollectionReading(NqXmlReader& reader, const char* name, const char* kind, const char* signature);

    /// The declared count, as far as a file is trusted with memory.
    unsigned reservation() const;

    /// Reads a list: elements of their own, or values within a group. Each is read into one scratch object
    /// and handed to `store`, those that are bad in themselves too, with what could be read of them. False if
    /// any was.
    template <typename Entry, typename Store>
    bool readEntries(Store store) {
        const Entry blank;
        Entry scratch;
        bool good = true;
        while (nextEntry()) {
            good = scratch.read(m_Reader) && good;
            if (m_Reader.good()) { // an entry at which the document breaks off is a fragment
                store(scratch);
                scratch = blank;
            }
        }
        return good;
    }

    /// Reports what is wrong. A wrong count doesn't count as a failure; false where the document is broken.
    bool finish(std::size_t count);

private:
    bool nextEntry();

    NqXmlReader& m_Reader;
    const char* m_Name;
    const char* m_Kind;
    const char* m_Signature;
    bool m_HasContent;
    long long m_Declared = 0;
    NqXmlReader::Children m_Children;
    std::optional<NqXmlReader::Children> m_Group;
};
