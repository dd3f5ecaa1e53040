#include <nqControlCore/foundation/xml/NqXmlCompoundType.h>

#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/xml/NqXmlObjectVisitor.h>
#include <nqControlCore/foundation/xml/NqXmlReader.h>
#include <nqControlCore/foundation/xml/NqXmlSchema.h>
#include <nqControlCore/foundation/xml/NqXmlWriter.h>

void NqXmlCompoundType::accept(NqXmlObjectVisitor* visitor) const {
    NqXmlObject::accept(visitor);
    for (const auto* map : {&attributeComponentMap(), &componentMap()}) {
        for (const auto& entry : *map) {
            entry.object->accept(visitor);
        }
    }
}

bool NqXmlCompoundType::xmlInit() {
    if (!xmlInitialized()) {
        registerComponents();
    }
    return NqXmlObject::xmlInit();
}

bool NqXmlCompoundType::read(NqXmlReader& reader) {
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
    return NqXmlObject::write(writer) && writeAttributes(writer) && writeElements(writer);
}

bool NqXmlCompoundType::writeSchema(NqXmlSchema& schema) const {
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

void NqXmlCompoundType::registerComponent(const NqToken& token, NqXmlObject* component) {
    createComponentMap().add(token, component, false);
}

void NqXmlCompoundType::registerComponentReadOnly(const NqToken& token, NqXmlObject* component) {
    createComponentMap().add(token, component, true);
}

const NqXmlComponentMap& NqXmlCompoundType::componentMap() const {
    ensureInitialized();
    return createComponentMap();
}

void NqXmlCompoundType::registerAttributeComponent(const NqToken& token, NqXmlObject* component) {
    createAttributeComponentMap().add(token, component, false);
}

void NqXmlCompoundType::registerAttributeComponentReadOnly(const NqToken& token, NqXmlObject* component) {
    createAttributeComponentMap().add(token, component, true);
}

const NqXmlComponentMap& NqXmlCompoundType::attributeComponentMap() const {
    static const NqXmlComponentMap theEmptyMap;
    ensureInitialized();
    return m_AttributeComponents ? *m_AttributeComponents : theEmptyMap;
}

NqXmlCompoundType::SpecialDescriptorMap& NqXmlCompoundType::specialDescriptorMap() {
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

std::unique_ptr<NqXmlComponentMap> NqXmlCompoundType::newComponentMap() const {
    return std::make_unique<NqXmlComponentMap>();
}

std::unique_ptr<NqXmlCompoundType::SpecialDescriptorMap> NqXmlCompoundType::newSpecialDescriptorMap() {
    return std::make_unique<SpecialDescriptorMap>();
}

NqXmlComponentMap& NqXmlCompoundType::createComponentMap() const {
    if (!m_Components) {
        m_Components = newComponentMap();
    }
    return *m_Components;
}

NqXmlComponentMap& NqXmlCompoundType::createAttributeComponentMap() {
    if (!m_AttributeComponents) {
        m_AttributeComponents = newComponentMap();
    }
    return *m_AttributeComponents;
}

NqXmlCompoundType::SpecialDescriptorMap& NqXmlCompoundType::createSpecialDescriptorMap() {
    if (!m_SpecialDescriptors) {
        m_SpecialDescriptors = newSpecialDescriptorMap();
    }
    return *m_SpecialDescriptors;
}

bool NqXmlCompoundType::isReadOnlyComponent(const NqToken& token) const {
    const auto* entry = componentMap().find(token);
    return entry && entry->isReadOnly;
}

bool NqXmlCompoundType::isReadOnlyAttribute(const NqToken& token) const {
    const auto* entry = attributeComponentMap().find(token);
    return entry && entry->isReadOnly;
}
