#pragma once

#include <nqControlCore/foundation/xml/NqToken.h>
#include <nqControlCore/foundation/xml/NqXmlValueType.h>

class NqXmlEnumNames;

/// An XML value out of a list of named values. The owner binds the names in its xmlInit(); a value without a
/// name is written as its number and read back from it. A text that is neither name nor number fails the
/// read, and the value stays.
///
/// The type is unsigned int. Names belong to the owner's class: all values share one list, and assignment
/// takes the value alone.
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
    virtual void registerEnumeration(const T& value, const NqToken& name);

    std::string toText() const;
    bool setValueFromString(const std::string& text);
    bool writeSchemaType(NqXmlSchema& schema) const;

private:
    static const NqXmlEnumNames* noNames();

    mutable const NqXmlEnumNames* m_Names = noNames(); // which a constant owner's xmlInit() binds too
};

extern template class NqXmlEnumType<unsigned int>;
