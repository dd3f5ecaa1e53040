#include <nqControlCore/xml/NqXmlBaseVariableCompoundType.h>

#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/xml/NqXmlObjectVisitor.h>
#include <nqControlCore/foundation/xml/NqXmlReader.h>
#include <nqControlCore/foundation/xml/NqXmlSchema.h>
#include <nqControlCore/foundation/xml/NqXmlWriter.h>

#include <algorithm>
#include <memory>

void NqXmlBaseVariableCompoundType::accept(NqXmlObjectVisitor* visitor) const {
    NqXmlObject::accept(visitor);
    visitor->visit(this);
}

bool NqXmlBaseVariableCompoundType::xmlInit() {
    if (!xmlInitialized()) {
        m_RegistersClass = true;
        registerComponentCreators();
        m_RegistersClass = false;
        for (const auto& [token, creator] : m_UserCreators) {
            m_Creators.insert_or_assign(token, creator);
        }
    }
    return NqXmlObject::xmlInit();
}

bool NqXmlBaseVariableCompoundType::read(NqXmlReader& reader) {
    if (!NqXmlObject::read(reader)) {
        return false;
    }
    m_AddLibraries.clear();
    m_ProcessedLibraries = 0;
    m_OuterContext = reader.context();
    reader.setContext(this);
    m_Reader = &reader;
    bool good = true;
    for (NqXmlReader::Children children(reader); children.next();) {
        const NqToken token = reader.token();
        good = readValueFromToken(token, reader) && good;
    }
    m_Reader = nullptr;
    reader.setContext(std::exchange(m_OuterContext, nullptr));
    return good && reader.good();
}

bool NqXmlBaseVariableCompoundType::write(NqXmlWriter& writer) const {
    const auto writeLibrary = [&](const NqXmlBasicType<std::string>& library) {
        return writer.writeStartTag(NqXml::NqLibraryToken) && library.write(writer) && writer.writeEndTag();
    };
    return NqXmlObject::write(writer) &&
           (m_AddLibraries.empty() ||
            (writer.writeStartTag(NqXml::NqAddLibrariesToken) &&
             std::ranges::all_of(m_AddLibraries, writeLibrary) && writer.writeEndTag()));
}

bool NqXmlBaseVariableCompoundType::writeSchema(NqXmlSchema& schema) const {
    return NqXmlObject::writeSchema(schema) && schema.beginComplexType() &&
           schema.beginChoice(NqXmlSchema::Occurs::AnyNumber) && writeLibrarySchema(schema) &&
           writeCreatorSchemas(schema) && schema.endContent() && writeSchemaAttributes(schema) &&
           schema.endComplexType();
}

void NqXmlBaseVariableCompoundType::registerComponentCreators() {}

void NqXmlBaseVariableCompoundType::registerComponentCreator(const NqToken& token, Creator creator) {
    m_Creators.insert_or_assign(token, creator);
    if (!m_RegistersClass) {
        m_UserCreators.insert_or_assign(token, creator);
    }
}

NqXmlObject* NqXmlBaseVariableCompoundType::newObjectFromToken(const NqToken& token) const {
    const CreatorMap& creators = creatorMap();
    auto entry = creators.find(token);
    if (entry == creators.end()) {
        entry = std::ranges::find_if(creators, [&](const auto& e) { return e.first.names(token); });
    }
    return entry == creators.end() ? nullptr : entry->second();
}

const NqXmlBaseVariableCompoundType::CreatorMap& NqXmlBaseVariableCompoundType::creatorMap() const {
    ensureInitialized();
    return m_Creators;
}

bool NqXmlBaseVariableCompoundType::readValueFromToken(const NqToken& token, NqXmlReader& reader) {
    if (NqXml::NqAddLibrariesToken.names(token)) {
        return readLibraries(reader) && processLibraries();
    }
    NqXmlCollection::reportUnknown(reader);
    return false;
}

bool NqXmlBaseVariableCompoundType::processLibraries() {
    for (; m_ProcessedLibraries < m_AddLibraries.size(); ++m_ProcessedLibraries) {
        if (!m_Reader || m_Reader->mayReport()) {
            Nq::Print::instance().write(
                Nq::PrintFailure,
                "NqXmlBaseVariableCompoundType::processLibraries(): library \"%s\" is not loaded\n",
                m_AddLibraries[m_ProcessedLibraries]);
        }
    }
    return true;
}

bool NqXmlBaseVariableCompoundType::writeSchemaAttributes(NqXmlSchema&) const {
    return true;
}

bool NqXmlBaseVariableCompoundType::writeCreatorSchemas(NqXmlSchema& schema) const {
    return std::ranges::all_of(creatorMap(), [&](const auto& entry) {
        const std::unique_ptr<NqXmlObject> object(entry.second());
        return object && schema.beginElement(entry.first, NqXmlSchema::Occurs::Once) &&
               object->writeSchema(schema) && schema.endElement();
    });
}

bool NqXmlBaseVariableCompoundType::writeLibrarySchema(NqXmlSchema& schema) const {
    return schema.beginElement(NqXml::NqAddLibrariesToken, NqXmlSchema::Occurs::Optional) &&
           schema.beginComplexType() && schema.beginSequence() &&
           schema.beginElement(NqXml::NqLibraryToken, NqXmlSchema::Occurs::AnyNumber) &&
           schema.writeSimpleType(typeid(std::string)) && schema.endElement() && schema.endContent() &&
           schema.endComplexType() && schema.endElement();
}

bool NqXmlBaseVariableCompoundType::readLibraries(NqXmlReader& reader) {
    bool good = true;
    for (NqXmlReader::Children children(reader); children.next();) {
        if (NqXml::NqLibraryToken.names(reader.token())) {
            NqXmlBasicType<std::string> library;
            good = library.read(reader) && good;
            m_AddLibraries.pushBack(library);
        } else {
            NqXmlCollection::reportUnknown(reader);
        }
    }
    return good;
}
