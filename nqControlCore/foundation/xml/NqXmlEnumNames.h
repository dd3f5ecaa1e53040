#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Names of the values of an enumeration, in the order in which they were bound. Lists that were bound alike
/// are one object, which all values with those names share and which stays until the program ends.
class NqXmlEnumNames {
public:
    using Name = std::pair<long long, std::string>;

    /// The list without names, from which all others are made.
    static const NqXmlEnumNames& none();

    /// This list with one more name. A name that is bound again takes the new value.
    const NqXmlEnumNames& with(long long value, std::string_view name) const;

    /// The first name of a value, or the value of a name; null where there is none.
    const std::string* nameOf(long long value) const;
    const long long* valueOf(std::string_view name) const;

    const std::vector<Name>& names() const { return m_Names; }

private:
    NqXmlEnumNames() = default;

    std::vector<Name> m_Names;
    mutable std::vector<const NqXmlEnumNames*> m_Longer; ///< that were made from this
};
