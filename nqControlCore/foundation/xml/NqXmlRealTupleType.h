#pragma once

#include <nqControlCore/foundation/xml/NqXmlNumberList.h>
#include <nqControlCore/foundation/xml/NqXmlValueType.h>

#include <array>

/// What the wrappers of plain geometry values share: they stand in a file as a fixed count of numbers.
///
/// Derived gives `static std::array<double, Count> toNumbers(const T&)` and `static T fromNumbers(const
/// double*)`.
template <typename Derived, typename T, std::size_t Count>
class NqXmlRealTupleType : public NqXmlValueType<Derived, T> {
public:
    using NqXmlValueType<Derived, T>::NqXmlValueType;

    std::string toText() const { return nqToText(Derived::toNumbers(this->m_Value).data(), Count); }

    /// Takes exactly `Count` numbers; false, and the value kept, for anything else.
    bool setValueFromString(const std::string& text) {
        std::array<double, Count> numbers;
        if (!nqTakeNumbers(text, numbers.data(), Count)) {
            return false;
        }
        this->m_Value = Derived::fromNumbers(numbers.data());
        return true;
    }

    static bool writeSchemaType(NqXmlSchema& schema) { return nqWriteNumbersSchema(schema, Count); }
};
