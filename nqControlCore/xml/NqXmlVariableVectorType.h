#pragma once

#include <nqControlCore/xml/NqXmlBaseVariableCompoundType.h>

#include <vector>

/// A list of heap objects of classes derived from T, which it owns; T may be abstract.
///
/// In a file each object stands under the element name of its class; the attribute count tells how many there
/// are. A class below registers what may stand in a file, names itself and is made concrete by NqXmlConcrete:
///
///     class NqExampleVector : public NqXmlConcrete<NqExampleVector, NqXmlVariableVectorType<NqExample>> {
///     public:
///         static const NqToken& classToken();
///         void registerComponentCreators() override;
///     };
template <typename T>
class NqXmlVariableVectorType
    : public NqXmlConcrete<NqXmlVariableVectorType<T>, NqXmlBaseVariableCompoundType> {
    using Variable = NqXmlBaseVariableCompoundType;
    using Elements = std::vector<NqXmlOwned<T>>;

public:
    using iterator = NqXmlOwnedIterator<typename Elements::iterator, T>;
    using const_iterator = NqXmlOwnedIterator<typename Elements::const_iterator, const T>;

    NqXmlVariableVectorType() = default;
    NqXmlVariableVectorType(const NqXmlVariableVectorType&) = default;
    NqXmlVariableVectorType& operator=(const NqXmlVariableVectorType& other) {
        Elements copies = other.m_Elements;
        Variable::operator=(other);
        m_Elements.swap(copies);
        return *this;
    }

    static const NqToken& classToken() { return NqXml::NqVarVectorTypeToken; }

    friend bool operator==(const NqXmlVariableVectorType& a, const NqXmlVariableVectorType& b) {
        return static_cast<const Variable&>(a) == static_cast<const Variable&>(b) &&
               a.m_Elements == b.m_Elements;
    }

    /// The element, which stays the vector's; null, with a message, for an index that isn't below the size.
    virtual T* operator[](unsigned index) {
        return isIndex(index, __PRETTY_FUNCTION__, kSubscript) ? &*m_Elements[index] : nullptr;
    }
    virtual const T* operator[](unsigned index) const {
        return isIndex(index, __PRETTY_FUNCTION__, kSubscript) ? &*m_Elements[index] : nullptr;
    }

    virtual unsigned size() const { return static_cast<unsigned>(m_Elements.size()); }
    bool empty() const { return m_Elements.empty(); }

    /// Iterators give a T& each.
    iterator begin() { return iterator(m_Elements.begin()); }
    iterator end() { return iterator(m_Elements.end()); }
    const_iterator begin() const { return const_iterator(m_Elements.begin()); }
    const_iterator end() const { return const_iterator(m_Elements.end()); }

    void accept(NqXmlObjectVisitor* visitor) const override {
        Variable::accept(visitor);
        for (const T& element : *this) {
            element.accept(visitor);
        }
    }

    /// What comes in is cloned; what goes out is destroyed.
    virtual void append(const NqXmlVariableVectorType& other) {
        Elements copies = other.m_Elements;
        m_Elements.reserve(m_Elements.size() + copies.size());
        for (NqXmlOwned<T>& copy : copies) {
            m_Elements.push_back(std::move(copy));
        }
    }
    virtual void assign(unsigned count, const T& value) {
        Elements copies(count, NqXmlOwned<T>(value));
        m_Elements.swap(copies);
    }
    virtual void clear() { m_Elements.clear(); }
    virtual void pushBack(const T& value) { m_Elements.emplace_back(value); }
    virtual void reserve(unsigned count) { m_Elements.reserve(count); }

    /// Puts a clone in the place of an element. False, with a message, for an index that isn't below the
    /// size.
    virtual bool exchange(unsigned index, const T& value) {
        if (!isIndex(index, __PRETTY_FUNCTION__, "NqXmlVariableVectorType<ElementType>::exchange()")) {
            return false;
        }
        m_Elements[index] = NqXmlOwned<T>(value);
        return true;
    }

    /// False, with a message, for an index that isn't below the size.
    virtual bool erase(unsigned index) {
        if (!isIndex(index, __PRETTY_FUNCTION__, "NqXmlVariableVectorType<ElementType>::erase()")) {
            return false;
        }
        m_Elements.erase(m_Elements.begin() + index);
        return true;
    }

    /// Erases up to `last`, which stays. False, with a message, for a range that isn't within the vector or,
    /// unlike in NqXmlVectorType, is empty.
    virtual bool erase(unsigned first, unsigned last) {
        if (!NqXmlCollection::checkFilledRange(__PRETTY_FUNCTION__,
                                               "NqXmlVariableVectorType<ElementType>::erase", first, last,
                                               m_Elements.size())) {
            return false;
        }
        m_Elements.erase(m_Elements.begin() + first, m_Elements.begin() + last);
        return true;
    }

    /// Moves the first `count` elements to the end. False where `count` isn't below the size.
    virtual bool leftRotate(unsigned count) { return NqXmlCollection::leftRotate(m_Elements, count); }

    /// Replaces the elements by those of the file. An element of which no class is known is reported, and
    /// makes the result false. A wrong count is only reported.
    bool read(NqXmlReader& reader) override {
        clear();
        NqXmlCollectionReading reading(reader, "NqXmlVariableVectorType", "array", __PRETTY_FUNCTION__);
        m_Elements.reserve(reading.reservation());
        const bool good = Variable::read(reader);
        return reading.finish(m_Elements.size()) && good;
    }

    bool write(NqXmlWriter& writer) const override {
        return NqXmlObject::write(writer) && NqXmlCollection::writeCount(writer, size()) &&
               Variable::write(writer) && writeElements(writer);
    }

    /// Write a document in parts: header, body and further elements, footer. The header makes the writer,
    /// which is the caller's until the footer takes it back; all are false once anything has failed.
    virtual bool writeHeaderToStream(std::ostream& stream, NqXmlWriter*& writer) const {
        return NqXmlCollection::writeHeader(stream, writer, this->token(), size(), false) &&
               Variable::write(*writer);
    }
    virtual bool writeBodyToStream(NqXmlWriter* writer) const { return writer && writeElements(*writer); }
    virtual bool appendElementToStream(NqXmlWriter* writer, const T& element) const {
        return writer && NqXmlCollection::writeNamed(*writer, element.token(), element);
    }
    virtual bool writeFooterToStream(NqXmlWriter*& writer) const {
        return NqXmlCollection::writeFooter(writer, false);
    }

protected:
    bool readValueFromToken(const NqToken& token, NqXmlReader& reader) override {
        if (NqXml::NqAddLibrariesToken.names(token)) {
            return Variable::readValueFromToken(token, reader);
        }
        NqXmlOwned<T> element = this->template newComponent<T>(token);
        if (!element) {
            NqXmlCollection::reportUnregistered(reader, __PRETTY_FUNCTION__,
                                                "NqXmlVariableVectorType::readValueFromToken()");
            return false;
        }
        const bool good = element->read(reader);
        if (reader.good()) { // an element at which the document breaks off is a fragment
            m_Elements.push_back(std::move(element));
        }
        return good;
    }

    bool writeSchemaAttributes(NqXmlSchema& schema) const override {
        return NqXmlCollection::writeCountSchema(schema);
    }

private:
    static constexpr const char* kSubscript = "NqXmlVariableVectorType<ElementType>::operator[]";

    bool isIndex(unsigned index, const char* signature, const char* operation) const {
        return NqXmlCollection::checkIndex(signature, operation, index, m_Elements.size());
    }

    bool writeElements(NqXmlWriter& writer) const {
        return NqXmlCollection::forAll(m_Elements, [&](const NqXmlOwned<T>& element) {
            return NqXmlCollection::writeNamed(writer, element->token(), *element);
        });
    }

    Elements m_Elements;
};
