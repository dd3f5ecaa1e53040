#include <nqControlCore/foundation/xml/NqXmlEnumNames.h>

#include <algorithm>
#include <mutex>

const NqXmlEnumNames& NqXmlEnumNames::none() {
    static const auto& theList = *new NqXmlEnumNames; // static objects may be written as late as any other
    return theList;
}

const NqXmlEnumNames& NqXmlEnumNames::with(long long value, std::string_view name) const {
    const long long* bound = valueOf(name);
    if (bound && *bound == value) {
        return *this;
    }
    static std::mutex theMutex;
    const std::scoped_lock lock(theMutex);
    const auto known = std::ranges::find_if(m_Longer, [&](const auto& longer) {
        return longer->m_Names.back().first == value && longer->m_Names.back().second == name;
    });
    if (known != m_Longer.end()) {
        return **known;
    }
    auto* longer = new NqXmlEnumNames;
    longer->m_Names = m_Names;
    std::erase_if(longer->m_Names, [&](const Name& old) { return old.second == name; });
    longer->m_Names.emplace_back(value, name);
    return *m_Longer.emplace_back(longer);
}

const std::string* NqXmlEnumNames::nameOf(long long value) const {
    const auto entry = std::ranges::find(m_Names, value, &Name::first);
    return entry == m_Names.end() ? nullptr : &entry->second;
}

const long long* NqXmlEnumNames::valueOf(std::string_view name) const {
    const auto entry = std::ranges::find(m_Names, name, &Name::second);
    return entry == m_Names.end() ? nullptr : &entry->first;
}
