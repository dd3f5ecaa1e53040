#include <nqControlCore/foundation/xml/NqXmlCompoundType.h>

#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/xml/NqXmlObjectVisitor.h>
#include <nqControlCore/foundation/xml/NqXmlReader.h>
#include <nqControlCore/foundation/xml/NqXmlSchema.h>
#include <nqControlCore/foundation/xml/NqXmlWriter.h>

#include <memory>
#include <utility>

struct NqXmlCompoundType::Tables {
    std::unique_ptr<NqXmlComponentMap> components;
    std::unique_ptr<NqXmlComponentMap> attributes;
    std::unique_ptr<SpecialDescriptorMap> specialDescriptors;
    bool isRegistering = false;
    bool isComplete = false; ///< registerComponents() has filled them
    bool isExtended = false; ///< they hold what registerComponents() has not given
};

/// Makes the tables for an operation, and drops them behind it if they weren't there before.
class NqXmlCompoundType::TablesInUse {
public:
    explicit TablesInUse(const NqXmlCompoundType& object)
        : m_Object(object), m_WereThere(object.m_Tables != nullptr) {
        object.ensureTables();
    }
    TablesInUse(const TablesInUse&) = delete;
    TablesInUse& operator=(const TablesInUse&) = delete;
    ~TablesInUse() {
        if (!m_WereThere && !m_Object.m_Tables->isExtended) {
            delete std::exchange(m_Object.m_Tables, nullptr);
        }
    }

private:
    const NqXmlCompoundType& m_Object;
    bool m_WereThere;
};

NqXmlCompoundType::~NqXmlCompoundType() {
    delete m_Tables;
}

NqXmlCompoundType::Tables& NqXmlCompoundType::tables() const {
    if (!m_Tables) {
        m_Tables = new Tables;
    }
    return *m_Tables;
}

void NqXmlCompoundType::ensureTables() const {
    ensureInitialized();
    if (!tables().isComplete) {
        m_Tables->isComplete = m_Tables->isRegistering = true;
        const_cast<NqXmlCompoundType*>(this)->registerComponents(); // which fills mutable tables alone
        m_Tables->isRegistering = false;
    }
}

void NqXmlCompoundType::accept(NqXmlObjectVisitor* visitor) const {
    const TablesInUse inUse(*this);
    NqXmlObject::accept(visitor);
    for (const auto* map : {&attributeComponentMap(), &componentMap()}) {
        for (const auto& entry : *map) {
            entry.object->accept(visitor);
        }
    }
}

bool NqXmlCompoundType::xmlInit() {
    const bool initialized = NqXmlObject::xmlInit();
    ensureTables();
    return initialized;
}

bool NqXmlCompoundType::read(NqXmlReader& reader) {
    const TablesInUse inUse(*this);
    if (!NqXmlObject::read(reader)) {
        return false;
    }
    for (const auto* map : {&componentMap(), &attributeComponentMap()}) {
        for (const auto& entry : *map) {
            entry.object->setSpecified(false);
        }
    }
    const bool attributesRead = readAttributes(reader);
    return readElements(reader) && attributesRead;
}

bool NqXmlCompoundType::readAttribute(NqXmlReader& reader) {
    return readAttributeFromToken(reader.currentAttributeToken(), reader);
}

bool NqXmlCompoundType::write(NqXmlWriter& writer) const {
    const TablesInUse inUse(*this);
    return NqXmlObject::write(writer) && writeAttributes(writer) && writeElements(writer);
}

bool NqXmlCompoundType::writeSchema(NqXmlSchema& schema) const {
    const TablesInUse inUse(*this);
    return NqXmlObject::writeSchema(schema) && schema.beginComplexType() && writeSchemaElements(schema) &&
           schema.endContent() && writeSchemaAttributes(schema) && schema.endComplexType();
}

bool NqXmlCompoundType::readAttributes(NqXmlReader& reader) {
    bool good = true;
    const unsigned count = reader.attributeCount();
    for (unsigned i = 0; i < count; ++i) {
        reader.setCurrentAttribute(i);
        good = readAttribute(reader) && good;
    }
    return good;
}

bool NqXmlCompoundType::readElements(NqXmlReader& reader) {
    bool good = true;
    for (NqXmlReader::Children children(reader); children.next();) {
        const NqToken token = reader.token();
        good = readValueFromToken(token, reader) && good;
    }
    return good && reader.good();
}

template <typename WriteComponent>
bool NqXmlCompoundType::writeComponents(NqXmlWriter& writer, const NqXmlComponentMap& map,
                                        const NqXmlComponentMap& (NqXmlCompoundType::*mapOf)() const,
                                        WriteComponent writeComponent) const {
    std::unique_ptr<NqXmlObject> blank;
    const NqXmlObject* leftOut = nullptr;
    if (!writer.writeDefaultDataFlag()) {
        leftOut = writer.defaultOf(*this);
        if (!leftOut) {
            blank.reset(newObject());
            leftOut = blank.get();
        }
    }
    const auto* theDefault = dynamic_cast<const NqXmlCompoundType*>(leftOut);
    for (const auto& entry : map) {
        if (entry.isReadOnly) {
            continue;
        }
        const auto* same = theDefault ? (theDefault->*mapOf)().find(entry.token) : nullptr;
        if (same && entry.object->equality(same->object)) {
            continue;
        }
        const NqXmlWriter::Default nested(writer, *entry.object, same ? same->object : nullptr);
        if (!writeComponent(entry)) {
            return false;
        }
    }
    return true;
}

bool NqXmlCompoundType::writeAttributes(NqXmlWriter& writer) const {
    return writeComponents(writer, attributeComponentMap(), &NqXmlCompoundType::attributeComponentMap,
                           [&](const NqXmlComponentMap::Entry& entry) {
                               writer.setAttributeName(entry.token);
                               return entry.object->write(writer);
                           });
}

bool NqXmlCompoundType::writeElements(NqXmlWriter& writer) const {
    return writeComponents(
        writer, componentMap(), &NqXmlCompoundType::componentMap, [&](const NqXmlComponentMap::Entry& entry) {
            return writer.writeStartTag(entry.token) && entry.object->write(writer) && writer.writeEndTag();
        });
}

bool NqXmlCompoundType::writeSchemaAttributes(NqXmlSchema& schema) const {
    for (const auto& entry : attributeComponentMap()) {
        if (!schema.beginAttribute(entry.token) || !entry.object->writeSchema(schema) ||
            !schema.endAttribute()) {
            return false;
        }
    }
    return true;
}

bool NqXmlCompoundType::writeSchemaElements(NqXmlSchema& schema) const {
    if (!schema.beginSequence()) {
        return false;
    }
    for (const auto& entry : componentMap()) {
        if (!schema.beginElement(entry.token, NqXmlSchema::Occurs::Optional) ||
            !entry.object->writeSchema(schema) || !schema.endElement()) {
            return false;
        }
    }
    return true;
}

void NqXmlCompoundType::registerComponents() {}

void NqXmlCompoundType::registerIn(NqXmlComponentMap& map, const NqToken& token, NqXmlObject* component,
                                   bool isReadOnly) {
    map.add(token, component, isReadOnly);
    m_Tables->isExtended = m_Tables->isExtended || !m_Tables->isRegistering;
}

void NqXmlCompoundType::registerComponent(const NqToken& token, NqXmlObject* component) {
    registerIn(createComponentMap(), token, component, false);
}

void NqXmlCompoundType::registerComponentReadOnly(const NqToken& token, NqXmlObject* component) {
    registerIn(createComponentMap(), token, component, true);
}

const NqXmlComponentMap& NqXmlCompoundType::componentMap() const {
    ensureTables();
    return createComponentMap();
}

void NqXmlCompoundType::registerAttributeComponent(const NqToken& token, NqXmlObject* component) {
    registerIn(createAttributeComponentMap(), token, component, false);
}

void NqXmlCompoundType::registerAttributeComponentReadOnly(const NqToken& token, NqXmlObject* component) {
    registerIn(createAttributeComponentMap(), token, component, true);
}

const NqXmlComponentMap& NqXmlCompoundType::attributeComponentMap() const {
    static const NqXmlComponentMap theEmptyMap;
    ensureTables();
    return m_Tables->attributes ? *m_Tables->attributes : theEmptyMap;
}

NqXmlCompoundType::SpecialDescriptorMap& NqXmlCompoundType::specialDescriptorMap() {
    ensureTables();
    m_Tables->isExtended = true; // as it may be
    return createSpecialDescriptorMap();
}

bool NqXmlCompoundType::hasChildren() const {
    return !componentMap().empty();
}

bool NqXmlCompoundType::hasAttributes() const {
    return !attributeComponentMap().empty();
}

bool NqXmlCompoundType::readValueFromToken(const NqToken& token, NqXmlReader& reader) {
    const auto* entry = componentMap().find(token);
    if (!entry) {
        return readValueFromSpecialToken(token, reader);
    }
    const bool good = entry->object->read(reader);
    entry->object->setSpecified(good);
    return good;
}

bool NqXmlCompoundType::readValueFromSpecialToken(const NqToken& token, NqXmlReader& reader) {
    reader.report("element \"" + std::string(token.localName()) + "\" is not known here and is skipped");
    return true;
}

bool NqXmlCompoundType::readAttributeFromToken(const NqToken& token, NqXmlReader& reader) {
    const auto* entry = attributeComponentMap().find(token);
    if (!entry) {
        return true;
    }
    const bool good = entry->object->readAttribute(reader);
    entry->object->setSpecified(good);
    return good;
}

NqXmlComponentMap* NqXmlCompoundType::newComponentMap() const {
    return new NqXmlComponentMap;
}

NqXmlCompoundType::SpecialDescriptorMap* NqXmlCompoundType::newSpecialDescriptorMap() const {
    return new SpecialDescriptorMap;
}

NqXmlComponentMap& NqXmlCompoundType::createComponentMap() const {
    Tables& own = tables();
    if (!own.components) {
        own.components.reset(newComponentMap());
    }
    return *own.components;
}

NqXmlComponentMap& NqXmlCompoundType::createAttributeComponentMap() {
    Tables& own = tables();
    if (!own.attributes) {
        own.attributes.reset(newComponentMap());
    }
    return *own.attributes;
}

NqXmlCompoundType::SpecialDescriptorMap& NqXmlCompoundType::createSpecialDescriptorMap() {
    Tables& own = tables();
    if (!own.specialDescriptors) {
        own.specialDescriptors.reset(newSpecialDescriptorMap());
    }
    return *own.specialDescriptors;
}

bool NqXmlCompoundType::isReadOnlyComponent(const NqToken& token) const {
    const auto* entry = componentMap().find(token);
    return entry && entry->isReadOnly;
}

bool NqXmlCompoundType::isReadOnlyAttribute(const NqToken& token) const {
    const auto* entry = attributeComponentMap().find(token);
    return entry && entry->isReadOnly;
}
