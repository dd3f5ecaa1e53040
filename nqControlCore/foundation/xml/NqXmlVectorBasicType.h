#pragma once

#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlNumberList.h>

#include <initializer_list>
#include <string_view>
#include <vector>

/// A vector of basic values that stands in a file as one list, its entries separated by white space. The
/// element type is NqXmlBasicType<double>; the storage is a plain std::vector<double>, and the object passes
/// for one.
template <typename Element>
class NqXmlVectorBasicType
    : public NqXmlValueType<NqXmlVectorBasicType<Element>, std::vector<typename Element::value_type>> {
    using Value = NqXmlValueType<NqXmlVectorBasicType<Element>, std::vector<typename Element::value_type>>;

public:
    using Number = typename Element::value_type;
    using Numbers = std::vector<Number>;

    using Value::Value;
    NqXmlVectorBasicType() = default;
    explicit NqXmlVectorBasicType(std::size_t size) : Value(Numbers(size)) {}
    NqXmlVectorBasicType(std::size_t size, Number value) : Value(Numbers(size, value)) {}
    NqXmlVectorBasicType(std::initializer_list<Number> numbers) : Value(Numbers(numbers)) {}
    NqXmlVectorBasicType& operator=(const Numbers& numbers) {
        this->m_Value = numbers;
        return *this;
    }

    const Numbers& values() const { return this->m_Value; }
    Numbers& values() { return this->m_Value; }

    /// Unchecked.
    Number& operator[](std::size_t index) { return this->m_Value[index]; }
    const Number& operator[](std::size_t index) const { return this->m_Value[index]; }

    std::size_t size() const { return this->m_Value.size(); }
    bool empty() const { return this->m_Value.empty(); }
    void resize(std::size_t size, Number value = Number()) { this->m_Value.resize(size, value); }
    void assign(std::size_t size, Number value) { this->m_Value.assign(size, value); }
    void reserve(std::size_t size) { this->m_Value.reserve(size); }
    void clear() { this->m_Value.clear(); }
    void pushBack(Number value) { this->m_Value.push_back(value); }

    auto begin() { return this->m_Value.begin(); }
    auto end() { return this->m_Value.end(); }
    auto begin() const { return this->m_Value.begin(); }
    auto end() const { return this->m_Value.end(); }

    std::string toText() const;
    bool setValueFromString(const std::string& text);
    static bool writeSchemaType(NqXmlSchema& schema);

    /// As other values, on as many lines as the writer's number of content columns says.
    bool write(NqXmlWriter& writer) const override;
};

extern template class NqXmlVectorBasicType<NqXmlBasicType<double>>;

/// The real vector that crosses most interfaces.
using NqXmlRealVector = NqXmlVectorBasicType<NqXmlBasicType<double>>;
