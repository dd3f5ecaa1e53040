#pragma once

#include <nqControlCore/foundation/xml/NqXmlObject.h>
#include <nqControlCore/foundation/xml/NqXmlReader.h>
#include <nqControlCore/foundation/xml/NqXmlSchema.h>
#include <nqControlCore/foundation/xml/NqXmlTokens.h>
#include <nqControlCore/foundation/xml/NqXmlWriter.h>

#include <type_traits>
#include <utility>

/// What all wrappers of one value share. Such a value stands in a file as one text, the content of an element
/// or the value of an attribute; reading through the wrapper costs nothing.
///
/// Derived gives `std::string toText() const`, `bool writeSchemaType(NqXmlSchema&) const`, and
/// `bool setValueFromString(const std::string&)`, which is false, with the value kept, where the text is no
/// such value.
template <typename Derived, typename T>
class NqXmlValueType : public NqXmlObject {
public:
    using value_type = T;

    NqXmlValueType() = default;
    NqXmlValueType(const T& value) : m_Value(value) {}
    NqXmlValueType(T&& value) noexcept : m_Value(std::move(value)) {}

    const T& value() const { return m_Value; }
    T& value() { return m_Value; }
    void setValue(const T& value) { m_Value = value; }
    operator const T&() const { return m_Value; }

    friend bool operator==(const Derived& a, const Derived& b) { return a.value() == b.value(); }
    template <typename U>
    requires(!std::is_base_of_v<NqXmlObject, U>) && std::is_convertible_v<const U&, const T&> friend bool
                                                    operator==(const Derived& a, const U& b) {
        return a.value() == static_cast<const T&>(b);
    }

    NqXmlObject* clone() const override { return new Derived(self()); }
    NqXmlObject* newObject() const override { return new Derived; }
    bool equality(const NqXmlObject* other) const override {
        return other && typeid(*other) == typeid(*this) && self() == static_cast<const Derived&>(*other);
    }
    const NqToken& token() const override { return NqXml::NqValueToken; }
    bool isBasicType() const override { return true; }

    bool read(NqXmlReader& reader) override {
        std::string text;
        return NqXmlObject::read(reader) && reader.readText(text) && accepted(text, reader);
    }
    bool readAttribute(NqXmlReader& reader) override {
        return NqXmlObject::read(reader) && accepted(reader.currentAttributeValue(), reader);
    }
    /// Becomes the value of the attribute that the writer has named, or else the content of its element.
    bool write(NqXmlWriter& writer) const override {
        return NqXmlObject::write(writer) && writer.data(self().toText());
    }
    bool writeSchema(NqXmlSchema& schema) const override {
        return NqXmlObject::writeSchema(schema) && self().writeSchemaType(schema);
    }

protected:
    T m_Value{};

private:
    const Derived& self() const { return static_cast<const Derived&>(*this); }

    bool accepted(const std::string& text, NqXmlReader& reader) {
        if (static_cast<Derived&>(*this).setValueFromString(text)) {
            return true;
        }
        reader.reportBadValue(text);
        return false;
    }
};
