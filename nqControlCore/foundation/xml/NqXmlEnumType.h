#pragma once

#include <nqControlCore/foundation/text/NqTextConversion.h>
#include <nqControlCore/foundation/xml/NqToken.h>
#include <nqControlCore/foundation/xml/NqXmlBasicType.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

/// An XML value out of a list of named values. The owner binds the names in its xmlInit(); a value without a
/// name is written as its number and read back from it. A text that is neither name nor number fails the
/// read, and the value stays.
template <typename T>
class NqXmlEnumType : public NqXmlValueType<NqXmlEnumType<T>, T> {
    using Value = NqXmlValueType<NqXmlEnumType<T>, T>;

public:
    using Value::Value;
    NqXmlEnumType() = default;
    NqXmlEnumType& operator=(const T& value) {
        this->m_Value = value;
        return *this;
    }

    /// The present value.
    virtual const T& enumeration() const { return this->m_Value; }

    /// Binds a value to the local name of a token. A name bound again takes the new value.
    virtual void registerEnumeration(const T& value, const NqToken& name) {
        std::erase_if(m_Names, [&](const auto& entry) { return entry.second == name.localName(); });
        m_Names.emplace_back(value, name.localName());
    }

    std::string toText() const {
        const auto entry = std::ranges::find(m_Names, this->m_Value, &Name::first);
        return entry != m_Names.end() ? entry->second : std::to_string(this->m_Value);
    }

    bool setValueFromString(const std::string& text) {
        const std::string_view word = nqTrimmed(text);
        const auto entry = std::ranges::find(m_Names, word, &Name::second);
        if (entry != m_Names.end()) {
            this->m_Value = entry->first;
            return true;
        }
        NqXmlBasicType<T> number;
        if (!number.setValueFromString(text)) {
            return false;
        }
        this->m_Value = number.value();
        return true;
    }

    bool writeSchemaType(NqXmlSchema& schema) const {
        std::vector<std::string> names;
        for (const Name& name : m_Names) {
            names.push_back(name.second);
        }
        return schema.writeEnumerationType(names, typeid(T));
    }

private:
    using Name = std::pair<T, std::string>;
    std::vector<Name> m_Names;
};
