#pragma once

#include <nqControlCore/foundation/xml/NqXmlSchema.h>
#include <nqControlCore/xml/NqXmlBaseVariableCompoundType.h>
#include <nqControlCore/xml/NqXmlMapEntryReading.h>

#include <map>

/// Heap objects of classes derived from V by keys; it owns them, and V may be abstract.
///
/// In a file an entry stands as <element>, with <key> and, under the element name of its class, the object in
/// it. A class below is made as one below NqXmlVariableVectorType.
template <typename K, typename V>
class NqXmlVariableMapType : public NqXmlConcrete<NqXmlVariableMapType<K, V>, NqXmlBaseVariableCompoundType> {
    using Variable = NqXmlBaseVariableCompoundType;
    using Entries = std::map<K, NqXmlOwned<V>>;

public:
    NqXmlVariableMapType() = default;
    NqXmlVariableMapType(const NqXmlVariableMapType&) = default;
    NqXmlVariableMapType& operator=(const NqXmlVariableMapType& other) {
        Entries copies = other.m_Entries;
        Variable::operator=(other);
        m_Entries.swap(copies);
        return *this;
    }

    static const NqToken& classToken() { return NqXml::NqVarMapTypeToken; }

    friend bool operator==(const NqXmlVariableMapType& a, const NqXmlVariableMapType& b) {
        return static_cast<const Variable&>(a) == static_cast<const Variable&>(b) &&
               a.m_Entries == b.m_Entries;
    }

    virtual unsigned size() const { return static_cast<unsigned>(m_Entries.size()); }
    bool empty() const { return m_Entries.empty(); }

    /// Iterators give pairs of a key and an NqXmlOwned, in key order.
    auto begin() { return m_Entries.begin(); }
    auto end() { return m_Entries.end(); }
    auto begin() const { return m_Entries.begin(); }
    auto end() const { return m_Entries.end(); }

    void accept(NqXmlObjectVisitor* visitor) const override {
        Variable::accept(visitor);
        for (const auto& [key, value] : m_Entries) {
            key.accept(visitor);
            value->accept(visitor);
        }
    }

    /// Stores a clone, in the place of an object that has the key already.
    virtual void add(const K& key, const V& value) { m_Entries.insert_or_assign(key, NqXmlOwned<V>(value)); }
    virtual void clear() { m_Entries.clear(); }

    /// False where there is no such key.
    virtual bool erase(const K& key) { return m_Entries.erase(key) != 0; }

    /// The object, which stays the map's; null where there is no such key.
    virtual V* lookup(const K& key) {
        const auto entry = m_Entries.find(key);
        return entry == m_Entries.end() ? nullptr : &*entry->second;
    }
    virtual const V* lookup(const K& key) const {
        const auto entry = m_Entries.find(key);
        return entry == m_Entries.end() ? nullptr : &*entry->second;
    }

    /// Replaces the entries by those of the file. An entry of another form, with a bad key, of an unknown
    /// class or with a key that was there before is reported, left out, and makes the result false.
    bool read(NqXmlReader& reader) override {
        clear();
        return Variable::read(reader);
    }

    bool write(NqXmlWriter& writer) const override {
        return Variable::write(writer) && NqXmlCollection::forAll(m_Entries, [&](const auto& entry) {
                   return NqXmlCollection::writePair(writer, entry.first, entry.second->token(),
                                                     *entry.second);
               });
    }

    bool writeSchema(NqXmlSchema& schema) const override {
        return NqXmlObject::writeSchema(schema) && schema.beginComplexType() && schema.beginSequence() &&
               this->writeLibrarySchema(schema) && NqXmlCollection::beginPairSchema(schema, K()) &&
               schema.beginChoice(NqXmlSchema::Occurs::Once) && this->writeCreatorSchemas(schema) &&
               schema.endContent() && NqXmlCollection::endPairSchema(schema) && schema.endContent() &&
               schema.endComplexType();
    }

protected:
    bool readValueFromToken(const NqToken& token, NqXmlReader& reader) override {
        if (NqXml::NqAddLibrariesToken.names(token)) {
            return Variable::readValueFromToken(token, reader);
        }
        NqXmlMapEntryReading entry(reader, "NqXmlVariableMapType");
        K key;
        if (!entry.readKey(key) || !entry.nextValue()) {
            return false;
        }
        NqXmlOwned<V> value = this->template newComponent<V>(reader.token());
        if (!value) {
            NqXmlCollection::reportUnregistered(reader, __PRETTY_FUNCTION__, kRead);
            return false;
        }
        if (m_Entries.contains(key)) {
            NqXmlCollection::reportRepeatedKey(reader, __PRETTY_FUNCTION__, kRead, key.toText());
            return false;
        }
        const bool good = value->read(reader);
        if (reader.good()) { // an object at which the document breaks off is a fragment
            m_Entries.emplace(key, std::move(value));
        }
        return good;
    }

private:
    static constexpr const char* kRead = "NqXmlVariableMapType::read()";

    Entries m_Entries;
};
