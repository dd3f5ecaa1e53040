#pragma once

#include <nqControlCore/foundation/xml/NqXmlConcrete.h>
#include <nqControlCore/foundation/xml/NqXmlSchema.h>
#include <nqControlCore/foundation/xml/NqXmlTokens.h>
#include <nqControlCore/xml/NqXmlCollection.h>
#include <nqControlCore/xml/NqXmlMapEntryReading.h>

#include <iterator>
#include <map>

/// Values by keys, both XML objects of one type each; it is walked over in key order.
///
/// In a file an entry stands as <element>, with <key> and <value> in it.
template <typename K, typename V>
class NqXmlMapType : public NqXmlConcrete<NqXmlMapType<K, V>, NqXmlObject> {
public:
    static const NqToken& classToken() { return NqXml::NqMapTypeToken; }

    friend bool operator==(const NqXmlMapType& a, const NqXmlMapType& b) {
        return a.m_Entries == b.m_Entries;
    }

    virtual unsigned size() const { return static_cast<unsigned>(m_Entries.size()); }
    bool empty() const { return m_Entries.empty(); }
    auto begin() const { return m_Entries.begin(); }
    auto end() const { return m_Entries.end(); }

    void accept(NqXmlObjectVisitor* visitor) const override {
        NqXmlObject::accept(visitor);
        for (const auto& [key, value] : m_Entries) {
            key.accept(visitor);
            value.accept(visitor);
        }
    }

    /// Stores the value, in the place of one that has the key already.
    virtual void add(const K& key, const V& value) { m_Entries.insert_or_assign(key, value); }
    virtual void clear() { m_Entries.clear(); }

    /// These are false, and change nothing, where there is no such key or position. Positions run in key
    /// order.
    virtual bool erase(const K& key) { return m_Entries.erase(key) != 0; }
    virtual bool lookup(const K& key, V& value) const {
        const auto entry = m_Entries.find(key);
        if (entry == m_Entries.end()) {
            return false;
        }
        value = entry->second;
        return true;
    }
    virtual bool indexKey(const unsigned& index, K& key) const {
        if (index >= m_Entries.size()) {
            return false;
        }
        key = std::next(m_Entries.begin(), index)->first;
        return true;
    }
    virtual bool keyIndex(const K& key, unsigned& index) const {
        const auto entry = m_Entries.find(key);
        if (entry == m_Entries.end()) {
            return false;
        }
        index = static_cast<unsigned>(std::distance(m_Entries.begin(), entry));
        return true;
    }

    /// Replaces the entries by those of the file. An entry of another form, or with a key or value that is
    /// bad in itself, is left out and makes the result false. Of two with one key, the later stays.
    bool read(NqXmlReader& reader) override {
        if (!NqXmlObject::read(reader)) {
            return false;
        }
        clear();
        bool good = true;
        for (NqXmlReader::Children children(reader); children.next();) {
            NqXmlMapEntryReading entry(reader, "NqXmlMapType");
            K key;
            V value;
            if (entry.readKey(key) && entry.readValue(value)) {
                add(key, value);
            } else {
                good = false;
            }
        }
        return good && reader.good();
    }

    bool write(NqXmlWriter& writer) const override {
        return NqXmlObject::write(writer) && NqXmlCollection::forAll(m_Entries, [&](const auto& entry) {
                   return NqXmlCollection::writePair(writer, entry.first, NqXml::NqValueToken, entry.second);
               });
    }

    bool writeSchema(NqXmlSchema& schema) const override {
        return NqXmlObject::writeSchema(schema) && schema.beginComplexType() && schema.beginSequence() &&
               NqXmlCollection::beginPairSchema(schema, K()) &&
               schema.beginElement(NqXml::NqValueToken, NqXmlSchema::Occurs::Once) &&
               V().writeSchema(schema) && schema.endElement() && NqXmlCollection::endPairSchema(schema) &&
               schema.endContent() && schema.endComplexType();
    }

private:
    std::map<K, V> m_Entries;
};
