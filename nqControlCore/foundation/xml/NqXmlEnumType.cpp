#include <nqControlCore/foundation/xml/NqXmlEnumType.h>

#include <nqControlCore/foundation/text/NqTextConversion.h>
#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlEnumNames.h>

template <typename T>
const NqXmlEnumNames* NqXmlEnumType<T>::noNames() {
    return &NqXmlEnumNames::none();
}

template <typename T>
void NqXmlEnumType<T>::registerEnumeration(const T& value, const NqToken& name) {
    m_Names = &m_Names->with(value, name.localName());
}

template <typename T>
std::string NqXmlEnumType<T>::toText() const {
    const std::string* name = m_Names->nameOf(this->m_Value);
    return name ? *name : std::to_string(this->m_Value);
}

template <typename T>
bool NqXmlEnumType<T>::setValueFromString(const std::string& text) {
    if (const long long* named = m_Names->valueOf(nqTrimmed(text))) {
        this->m_Value = static_cast<T>(*named);
        return true;
    }
    NqXmlBasicType<T> number;
    if (!number.setValueFromString(text)) {
        return false;
    }
    this->m_Value = number.value();
    return true;
}

template <typename T>
bool NqXmlEnumType<T>::writeSchemaType(NqXmlSchema& schema) const {
    std::vector<std::string> names;
    for (const auto& [value, name] : m_Names->names()) {
        names.push_back(name);
    }
    return schema.writeEnumerationType(names, typeid(T));
}

template class NqXmlEnumType<unsigned int>;
