#pragma once

#include <nqControlCore/foundation/xml/NqToken.h>

#include <vector>

class NqXmlObject;

/// The named components of an object, in the order in which they were registered, which is the order in a
/// file.
class NqXmlComponentMap {
public:
    struct Entry {
        NqToken token;
        NqXmlObject* object; ///< a field of the object that owns the map
        bool isReadOnly;     ///< taken from a file, never written back
    };

    /// Binds a name to a field. A name that is registered again keeps its place and takes the new field.
    void add(const NqToken& token, NqXmlObject* object, bool isReadOnly);

    /// The entry that a name in a file stands for, null if there is none.
    const Entry* find(const NqToken& token) const;

    std::size_t size() const { return m_Entries.size(); }
    bool empty() const { return m_Entries.empty(); }
    auto begin() const { return m_Entries.begin(); }
    auto end() const { return m_Entries.end(); }

private:
    std::vector<Entry> m_Entries;
};
