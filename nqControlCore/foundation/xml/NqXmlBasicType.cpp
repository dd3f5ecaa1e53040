#include <nqControlCore/foundation/xml/NqXmlBasicType.h>

#include <nqControlCore/foundation/text/NqTextConversion.h>

#include <charconv>
#include <utility>

template <typename T>
std::string NqXmlBasicType<T>::toText() const {
    if constexpr (std::same_as<T, double>) {
        return NqDOUBLE2STRING(this->m_Value);
    } else if constexpr (std::same_as<T, bool>) {
        return this->m_Value ? "true" : "false";
    } else if constexpr (std::same_as<T, std::string>) {
        return this->m_Value;
    } else {
        return std::to_string(this->m_Value);
    }
}

template <typename T>
bool NqXmlBasicType<T>::setValueFromString(const std::string& text) {
    if constexpr (std::same_as<T, double>) {
        return nqParseReal(text, this->m_Value);
    } else if constexpr (std::same_as<T, std::string>) {
        this->m_Value = text;
        return true;
    } else if constexpr (std::same_as<T, bool>) {
        const std::string_view word = nqTrimmed(text);
        const bool isTrue = word == "true" || word == "1";
        if (!isTrue && word != "false" && word != "0") {
            return false;
        }
        this->m_Value = isTrue;
        return true;
    } else {
        std::string_view number = nqTrimmed(text);
        if (number.starts_with('+') && !number.starts_with("+-")) {
            number.remove_prefix(1);
        }
        long long parsed = 0;
        const auto result = std::from_chars(number.data(), number.data() + number.size(), parsed);
        if (result.ec != std::errc() || result.ptr != number.data() + number.size() ||
            !std::in_range<T>(parsed)) {
            return false;
        }
        this->m_Value = static_cast<T>(parsed);
        return true;
    }
}

template <typename T>
bool NqXmlBasicType<T>::writeSchemaType(NqXmlSchema& schema) {
    return schema.writeSimpleType(typeid(T));
}

template class NqXmlBasicType<double>;
template class NqXmlBasicType<int>;
template class NqXmlBasicType<unsigned int>;
template class NqXmlBasicType<unsigned short>;
template class NqXmlBasicType<bool>;
template class NqXmlBasicType<std::string>;
