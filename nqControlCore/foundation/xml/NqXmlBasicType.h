#pragma once

#include <nqControlCore/foundation/xml/NqXmlValueType.h>

#include <concepts>
#include <string>

/// An XML value of a basic type: double, int, unsigned int, unsigned short, bool or string.
template <typename T>
class NqXmlBasicType : public NqXmlValueType<NqXmlBasicType<T>, T> {
    using Value = NqXmlValueType<NqXmlBasicType<T>, T>;

public:
    using Value::Value;
    NqXmlBasicType() = default;

    /// From a character string, for the string type alone.
    template <std::same_as<T> Text = T>
    requires std::same_as<Text, std::string> NqXmlBasicType(const char* text) : Value(Text(text)) {}

    NqXmlBasicType& operator=(const T& value) {
        this->m_Value = value;
        return *this;
    }

    template <std::same_as<T> Text = T>
    requires std::same_as<Text, std::string> NqXmlBasicType& operator=(const char* text) {
        this->m_Value = text;
        return *this;
    }

    /// NaN comes behind all numbers, so that it may be a key like any other.
    friend bool operator<(const NqXmlBasicType& a, const NqXmlBasicType& b) {
        if constexpr (std::same_as<T, double>) {
            return a.m_Value < b.m_Value || (a.m_Value == a.m_Value && b.m_Value != b.m_Value);
        } else {
            return a.m_Value < b.m_Value;
        }
    }

    /// The text that reads back to the same value.
    std::string toText() const;

    /// Numbers may have white space around them and a sign, and the whole text must be one; booleans are
    /// "true", "false", "1" or "0". False, and the value kept, where the text is no such value.
    bool setValueFromString(const std::string& text);

    static bool writeSchemaType(NqXmlSchema& schema);
};

extern template class NqXmlBasicType<double>;
extern template class NqXmlBasicType<int>;
extern template class NqXmlBasicType<unsigned int>;
extern template class NqXmlBasicType<unsigned short>;
extern template class NqXmlBasicType<bool>;
extern template class NqXmlBasicType<std::string>;
