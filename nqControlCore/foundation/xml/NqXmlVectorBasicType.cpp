#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>

template <typename Element>
std::string NqXmlVectorBasicType<Element>::toText() const {
    return nqToText(this->m_Value.data(), this->m_Value.size());
}

template <typename Element>
bool NqXmlVectorBasicType<Element>::setValueFromString(const std::string& text) {
    Numbers numbers;
    if (!nqAppendNumbers(text, numbers)) {
        return false;
    }
    this->m_Value = std::move(numbers);
    return true;
}

template <typename Element>
bool NqXmlVectorBasicType<Element>::writeSchemaType(NqXmlSchema& schema) {
    return nqWriteNumbersSchema(schema);
}

template <typename Element>
bool NqXmlVectorBasicType<Element>::write(NqXmlWriter& writer) const {
    return NqXmlObject::write(writer) &&
           writer.data(nqToText(this->m_Value.data(), this->m_Value.size(), writer.numOfContentColumns()));
}

template class NqXmlVectorBasicType<NqXmlBasicType<double>>;
