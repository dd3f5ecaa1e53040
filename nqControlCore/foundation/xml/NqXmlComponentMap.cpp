#include <nqControlCore/foundation/xml/NqXmlComponentMap.h>

#include <algorithm>

void NqXmlComponentMap::add(const NqToken& token, NqXmlObject* object, bool isReadOnly) {
    const auto entry = std::ranges::find(m_Entries, token, &Entry::token);
    if (entry != m_Entries.end()) {
        *entry = {token, object, isReadOnly};
    } else {
        m_Entries.push_back({token, object, isReadOnly});
    }
}

const NqXmlComponentMap::Entry* NqXmlComponentMap::find(const NqToken& token) const {
    const auto entry = std::ranges::find_if(m_Entries, [&](const Entry& e) { return e.token.names(token); });
    return entry == m_Entries.end() ? nullptr : &*entry;
}
