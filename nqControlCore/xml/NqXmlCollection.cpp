#include <nqControlCore/xml/NqXmlCollection.h>

#include <nqControlCore/foundation/xml/NqXmlBasicType.h>

#include <memory>
#include <ostream>

namespace NqXmlCollection {

Nq::Print::Stream message(const char* signature, unsigned printType) {
    return Nq::Print::instance().ostream(printType, (std::string(signature) + ": ").c_str());
}

bool checkIndex(const char* signature, const char* operation, unsigned index, std::size_t size) {
    if (index < size) {
        return true;
    }
    message(signature) << operation << ": index (" << index << ") exceeds vector size (" << size << ").\n";
    return false;
}

bool checkRange(const char* signature, unsigned first, unsigned last, std::size_t size) {
    if (last > size) {
        message(signature) << "index (" << last << ") exceeds vector size ( " << size << ").\n";
        return false;
    }
    if (first > last) {
        message(signature) << "first (" << first << ") is bigger than last (" << last << ").\n";
        return false;
    }
    return true;
}

bool writeCount(NqXmlWriter& writer, std::size_t size) {
    writer.setAttributeName(NqXml::NqCountToken);
    return NqXmlBasicType<unsigned int>(static_cast<unsigned int>(size)).write(writer);
}

bool writeCountSchema(NqXmlSchema& schema) {
    return schema.beginAttribute(NqXml::NqCountToken) && NqXmlBasicType<unsigned int>().writeSchema(schema) &&
           schema.endAttribute();
}

bool writeListSchema(NqXmlSchema& schema, const NqXmlObject& element) {
    using Occurs = NqXmlSchema::Occurs;
    const auto writeEntries = [&](const NqToken& token) {
        return schema.beginSequence() && schema.beginElement(token, Occurs::AnyNumber) &&
               element.writeSchema(schema) && schema.endElement() && schema.endContent();
    };
    const auto writeGroup = [&] {
        return schema.beginSequence() && schema.beginElement(NqXml::NqGroupToken, Occurs::Optional) &&
               schema.beginComplexType() && writeEntries(NqXml::NqValueToken) && schema.endComplexType() &&
               schema.endElement() && schema.endContent();
    };
    return schema.beginComplexType() &&
           (element.isBasicType() ? writeGroup() : writeEntries(NqXml::NqElementToken)) &&
           writeCountSchema(schema) && schema.endComplexType();
}

bool beginList(NqXmlWriter& writer, bool isBasic) {
    return !isBasic || writer.writeStartTag(NqXml::NqGroupToken);
}

bool endList(NqXmlWriter& writer, bool isBasic) {
    return !isBasic || writer.writeEndTag();
}

bool writeEntry(NqXmlWriter& writer, const NqXmlObject& element) {
    return writer.writeStartTag(element.isBasicType() ? NqXml::NqValueToken : NqXml::NqElementToken) &&
           element.write(writer) && writer.writeEndTag();
}

bool writeHeader(std::ostream& stream, NqXmlWriter*& writer, const NqToken& root, std::size_t size,
                 bool isBasic) {
    if (!stream) {
        return false;
    }
    writer = new NqXmlWriter("(stream)", stream);
    return writer->header(root, "") && writeCount(*writer, size) && beginList(*writer, isBasic);
}

bool writeFooter(NqXmlWriter*& writer, bool isBasic) {
    const std::unique_ptr<NqXmlWriter> owner(std::exchange(writer, nullptr));
    return owner && endList(*owner, isBasic) && owner->writeEndTag() && owner->flush();
}

void reportUnknown(NqXmlReader& reader) {
    reader.report("element \"" + std::string(reader.token().localName()) +
                  "\" is not known here and is skipped");
}

} // namespace NqXmlCollection
