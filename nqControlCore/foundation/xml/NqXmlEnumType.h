#pragma once

#include <nqControlCore/foundation/text/NqTextConversion.h>
#include <nqControlCore/foundation/xml/NqToken.h>
#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlEnumNames.h>

/// An XML value out of a list of named values. The owner binds the names in its xmlInit(); a value without a
/// name is written as its number and read back from it. A text that is neither name nor number fails the
/// read, and the value stays.
///
/// Names belong to the owner's class: all values share one list, and assignment takes the value alone.
template <typename T>
class NqXmlEnumType : public NqXmlValueType<NqXmlEnumType<T>, T> {
    using Value = NqXmlValueType<NqXmlEnumType<T>, T>;

public:
    using Value::Value;
    NqXmlEnumType() = default;
    NqXmlEnumType(const NqXmlEnumType&) = default;
    NqXmlEnumType& operator=(const NqXmlEnumType& other) {
        Value::operator=(other);
        return *this;
    }
    NqXmlEnumType& operator=(const T& value) {
        this->m_Value = value;
        return *this;
    }

    /// The present value.
    virtual const T& enumeration() const { return this->m_Value; }

    /// Binds a value to the local name of a token. A name bound again takes the new value.
    virtual void registerEnumeration(const T& value, const NqToken& name) {
        m_Names = &m_Names->with(static_cast<long long>(value), name.localName());
    }

    std::string toText() const {
        const std::string* name = m_Names->nameOf(static_cast<long long>(this->m_Value));
        return name ? *name : std::to_string(this->m_Value);
    }

    bool setValueFromString(const std::string& text) {
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

    bool writeSchemaType(NqXmlSchema& schema) const {
        std::vector<std::string> names;
        for (const auto& [value, name] : m_Names->names()) {
            names.push_back(name);
        }
        return schema.writeEnumerationType(names, typeid(T));
    }

private:
    mutable const NqXmlEnumNames* m_Names = // which a constant owner's xmlInit() binds too
        &NqXmlEnumNames::none();
};
