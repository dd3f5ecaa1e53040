#pragma once

#include <nqControlCore/foundation/xml/NqXmlConcrete.h>
#include <nqControlCore/foundation/xml/NqXmlTokens.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>
#include <nqControlCore/xml/NqXmlCollection.h>
#include <nqControlCore/xml/NqXmlCollectionReading.h>
#include <nqControlCore/xml/NqXmlWrapper.h>

#include <initializer_list>
#include <type_traits>
#include <vector>

/// A list of values of one type: an XML object of its own, or one of the plain values that NqXmlWrapper
/// knows.
///
/// In a file, basic values stand as <value> in one <group>, others each as <element>; the attribute count
/// tells how many there are.
template <typename T>
class NqXmlVectorType : public NqXmlConcrete<NqXmlVectorType<T>, NqXmlObject> {
    using Wrapper = typename NqXmlWrapper<T>::Type;

public:
    using value_type = T;

    NqXmlVectorType() = default;
    explicit NqXmlVectorType(unsigned size) : m_Elements(size) {}
    NqXmlVectorType(unsigned size, const T& value) : m_Elements(size, value) {}
    NqXmlVectorType(std::initializer_list<T> elements) : m_Elements(elements) {}

    static const NqToken& classToken() { return NqXml::NqVectorTypeToken; }

    friend bool operator==(const NqXmlVectorType& a, const NqXmlVectorType& b) {
        return a.m_Elements == b.m_Elements;
    }

    /// Unchecked.
    T& operator[](std::size_t index) { return m_Elements[index]; }
    const T& operator[](std::size_t index) const { return m_Elements[index]; }

    virtual unsigned size() const { return static_cast<unsigned>(m_Elements.size()); }
    bool empty() const { return m_Elements.empty(); }
    auto begin() { return m_Elements.begin(); }
    auto end() { return m_Elements.end(); }
    auto begin() const { return m_Elements.begin(); }
    auto end() const { return m_Elements.end(); }

    /// Shows the visitor the elements too, unless they are plain values.
    void accept(NqXmlObjectVisitor* visitor) const override {
        NqXmlObject::accept(visitor);
        if constexpr (std::is_same_v<T, Wrapper>) {
            for (const T& element : m_Elements) {
                element.accept(visitor);
            }
        }
    }

    virtual void append(const NqXmlVectorType& other) {
        const std::size_t count = other.m_Elements.size(); // the other may be this one
        m_Elements.reserve(m_Elements.size() + count);
        for (std::size_t i = 0; i < count; ++i) {
            m_Elements.push_back(other.m_Elements[i]);
        }
    }
    virtual void assign(unsigned count, const T& value) { m_Elements.assign(count, T(value)); }
    virtual void clear() { m_Elements.clear(); }
    virtual void pushBack(const T& value) { m_Elements.push_back(value); }
    virtual void reserve(unsigned count) { m_Elements.reserve(count); }

    /// New elements are default-constructed.
    virtual void resize(unsigned size) { m_Elements.resize(size); }

    /// As resize(), but never shrinks.
    virtual void resizeToAtLeast(unsigned size) {
        if (this->size() < size) {
            resize(size);
        }
    }

    /// False, with a message, for an index that isn't below the size.
    virtual bool erase(unsigned index) {
        if (!NqXmlCollection::checkIndex(__PRETTY_FUNCTION__, "NqXmlVectorType<ElementType>::erase()", index,
                                         m_Elements.size())) {
            return false;
        }
        m_Elements.erase(m_Elements.begin() + index);
        return true;
    }

    /// Erases up to `last`, which stays; the range may be empty. False, with a message, for a range that
    /// isn't within the vector.
    virtual bool erase(unsigned first, unsigned last) {
        if (!NqXmlCollection::checkRange(__PRETTY_FUNCTION__, first, last, m_Elements.size())) {
            return false;
        }
        m_Elements.erase(m_Elements.begin() + first, m_Elements.begin() + last);
        return true;
    }

    /// Moves the first `count` elements to the end. False where `count` isn't below the size.
    virtual bool leftRotate(unsigned count) { return NqXmlCollection::leftRotate(m_Elements, count); }

    /// Replaces the elements by those of the file. An element that is bad in itself keeps its place, with
    /// what could be read of it, and makes the result false. A wrong count is only reported.
    bool read(NqXmlReader& reader) override {
        if (!NqXmlObject::read(reader)) {
            return false;
        }
        clear();
        NqXmlCollectionReading reading(reader, "NqXmlVectorType", "array", __PRETTY_FUNCTION__);
        m_Elements.reserve(reading.reservation());
        const bool good = reading.template readEntries<Wrapper>(
            [&](const Wrapper& element) { m_Elements.push_back(element); });
        return reading.finish(m_Elements.size()) && good;
    }

    bool write(NqXmlWriter& writer) const override {
        const bool isBasic = !empty() && isBasicList();
        return NqXmlObject::write(writer) && NqXmlCollection::writeCount(writer, size()) &&
               NqXmlCollection::beginList(writer, isBasic) && writeElements(writer) &&
               NqXmlCollection::endList(writer, isBasic);
    }

    /// Write a document in three parts. The header makes the writer, which is the caller's until the footer
    /// takes it back; all are false once anything has failed.
    virtual bool writeHeaderToStream(std::ostream& stream, NqXmlWriter*& writer) const {
        return NqXmlCollection::writeHeader(stream, writer, this->token(), size(), isBasicList());
    }
    virtual bool writeBodyToStream(NqXmlWriter* writer) const { return writer && writeElements(*writer); }
    virtual bool writeFooterToStream(NqXmlWriter*& writer) const {
        return NqXmlCollection::writeFooter(writer, isBasicList());
    }

    bool writeSchema(NqXmlSchema& schema) const override {
        return NqXmlObject::writeSchema(schema) && NqXmlCollection::writeListSchema(schema, Wrapper());
    }

private:
    static bool isBasicList() { return Wrapper().isBasicType(); }

    bool writeElements(NqXmlWriter& writer) const {
        return NqXmlCollection::forAll(m_Elements, [&](const T& element) {
            if constexpr (std::is_same_v<T, Wrapper>) {
                return NqXmlCollection::writeEntry(writer, element);
            } else {
                return NqXmlCollection::writeEntry(writer, Wrapper(element));
            }
        });
    }

    std::vector<T> m_Elements;
};
