#pragma once

#include <nqControlCore/foundation/xml/NqXmlConcrete.h>
#include <nqControlCore/foundation/xml/NqXmlTokens.h>
#include <nqControlCore/xml/NqXmlCollection.h>
#include <nqControlCore/xml/NqXmlCollectionReading.h>

#include <set>

/// A set of XML objects of one type, in rising order. In a file it has the form of an NqXmlVectorType.
template <typename T>
class NqXmlSetType : public NqXmlConcrete<NqXmlSetType<T>, NqXmlObject> {
public:
    static const NqToken& classToken() { return NqXml::NqSetTypeToken; }

    friend bool operator==(const NqXmlSetType& a, const NqXmlSetType& b) {
        return a.m_Elements == b.m_Elements;
    }

    virtual unsigned size() const { return static_cast<unsigned>(m_Elements.size()); }
    bool empty() const { return m_Elements.empty(); }
    auto begin() const { return m_Elements.begin(); }
    auto end() const { return m_Elements.end(); }

    void accept(NqXmlObjectVisitor* visitor) const override {
        NqXmlObject::accept(visitor);
        for (const T& element : m_Elements) {
            element.accept(visitor);
        }
    }

    /// False where the element was there before.
    virtual bool add(const T& element) { return m_Elements.insert(element).second; }
    virtual void clear() { m_Elements.clear(); }

    /// False where the element isn't there.
    virtual bool erase(const T& element) { return m_Elements.erase(element) != 0; }
    virtual bool find(const T& element) const { return m_Elements.contains(element); }

    /// Replaces the elements by those of the file. A wrong count is only reported.
    bool read(NqXmlReader& reader) override {
        if (!NqXmlObject::read(reader)) {
            return false;
        }
        clear();
        NqXmlCollectionReading reading(reader, "NqXmlSetType", "set", __PRETTY_FUNCTION__);
        std::size_t count = 0;
        const bool good = reading.template readEntries<T>([&](const T& element) {
            m_Elements.insert(element);
            ++count;
        });
        return reading.finish(count) && good;
    }

    bool write(NqXmlWriter& writer) const override {
        const bool isBasic = !empty() && m_Elements.begin()->isBasicType();
        return NqXmlObject::write(writer) && NqXmlCollection::writeCount(writer, size()) &&
               NqXmlCollection::beginList(writer, isBasic) &&
               NqXmlCollection::forAll(
                   m_Elements,
                   [&](const T& element) { return NqXmlCollection::writeEntry(writer, element); }) &&
               NqXmlCollection::endList(writer, isBasic);
    }

    bool writeSchema(NqXmlSchema& schema) const override {
        return NqXmlObject::writeSchema(schema) && NqXmlCollection::writeListSchema(schema, T());
    }

private:
    std::set<T> m_Elements;
};
