#include <nqControlCore/xml/NqXmlCollection.h>

#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlReader.h>
#include <nqControlCore/foundation/xml/NqXmlSchema.h>
#include <nqControlCore/foundation/xml/NqXmlTokens.h>
#include <nqControlCore/foundation/xml/NqXmlWriter.h>

#include <memory>
#include <ostream>

namespace {

/// A message that starts with the signature of the function that it is about.
Nq::Print::Stream message(const char* signature, unsigned printType = Nq::PrintFailure) {
    return Nq::Print::instance().ostream(printType, (std::string(signature) + ": ").c_str());
}

/// What stands behind every message on a file.
std::string placeIn(const NqXmlReader& reader) {
    return "Filename: " + reader.fileName() + ", Line count: " + std::to_string(reader.lineNumber()) + "\n";
}

void reportName(NqXmlReader& reader, const char* signature, const char* operation, std::string_view name,
                const char* complaint) {
    if (reader.mayReport()) {
        message(signature) << operation << " error:\n\t\"" << name << "\" " << complaint << ".\n"
                           << placeIn(reader);
    }
}

} // namespace

namespace NqXmlCollection {

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

bool checkFilledRange(const char* signature, const char* operation, unsigned first, unsigned last,
                      std::size_t size) {
    if (last <= size && first < last) {
        return true;
    }
    message(signature) << operation << ": bad first/last indices: " << first << "/" << last << "\n";
    return false;
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
    return writeNamed(writer, element.isBasicType() ? NqXml::NqValueToken : NqXml::NqElementToken, element);
}

bool writeNamed(NqXmlWriter& writer, const NqToken& token, const NqXmlObject& object) {
    return writer.writeStartTag(token) && object.write(writer) && writer.writeEndTag();
}

bool writePair(NqXmlWriter& writer, const NqXmlObject& key, const NqToken& valueToken,
               const NqXmlObject& value) {
    return writer.writeStartTag(NqXml::NqElementToken) && writeNamed(writer, NqXml::NqKeyToken, key) &&
           writeNamed(writer, valueToken, value) && writer.writeEndTag();
}

bool beginPairSchema(NqXmlSchema& schema, const NqXmlObject& key) {
    return schema.beginElement(NqXml::NqElementToken, NqXmlSchema::Occurs::AnyNumber) &&
           schema.beginComplexType() && schema.beginSequence() &&
           schema.beginElement(NqXml::NqKeyToken, NqXmlSchema::Occurs::Once) && key.writeSchema(schema) &&
           schema.endElement();
}

bool endPairSchema(NqXmlSchema& schema) {
    return schema.endContent() && schema.endComplexType() && schema.endElement();
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

void reportNoData(NqXmlReader& reader, const char* signature, const char* name) {
    if (reader.mayReport()) {
        message(signature) << name << " Error: XML parser should be in data mode\n" << placeIn(reader);
    }
}

void reportCount(NqXmlReader& reader, const char* signature, const char* name, const char* kind,
                 long long declared, std::size_t count) {
    if (reader.mayReport()) {
        message(signature, Nq::PrintReadTrouble)
            << name << " Error: " << kind << " size not equal to attribute value -- " << declared
            << ", actual -- " << count << placeIn(reader);
    }
}

void reportUnregistered(NqXmlReader& reader, const char* signature, const char* operation) {
    reportName(reader, signature, operation, reader.token().localName(), "tag not registered");
}

void reportRepeatedKey(NqXmlReader& reader, const char* signature, const char* operation,
                       const std::string& key) {
    reportName(reader, signature, operation, key, "key in XML map more than once");
}

} // namespace NqXmlCollection
