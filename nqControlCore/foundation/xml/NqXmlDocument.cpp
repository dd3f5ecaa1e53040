#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/xml/NqXmlObject.h>
#include <nqControlCore/foundation/xml/NqXmlReader.h>
#include <nqControlCore/foundation/xml/NqXmlWriter.h>

#include <cstdio>
#include <fstream>
#include <sstream>

namespace {

bool readDocument(NqXmlReader& reader, NqXmlObject& object) {
    if (!reader.advanceToRoot()) {
        return false;
    }
    if (!object.token().names(reader.token())) {
        reader.report("the root element is \"" + std::string(reader.token().localName()) + "\" and not \"" +
                      std::string(object.token().localName()) + "\"");
        return false;
    }
    const bool good = object.read(reader);
    return reader.finish() && good;
}

} // namespace

bool NqXmlDocument::readFile(const std::string& fileName, NqXmlObject& object) {
    NqXmlReader reader(fileName);
    return readDocument(reader, object);
}

bool NqXmlDocument::readString(std::string_view document, NqXmlObject& object, const std::string& fileName) {
    NqXmlReader reader(fileName, document);
    return readDocument(reader, object);
}

bool NqXmlDocument::writeFile(const std::string& fileName, const NqXmlObject& object) {
    const std::string scratchName = fileName + ".new";
    std::string document;
    bool written = false;
    if (writeString(document, object)) {
        std::ofstream stream(scratchName, std::ios::binary);
        stream.write(document.data(), static_cast<std::streamsize>(document.size()));
        written = static_cast<bool>(stream.flush());
        stream.close();
        written = written && std::rename(scratchName.c_str(), fileName.c_str()) == 0;
    }
    if (!written) {
        std::remove(scratchName.c_str());
        Nq::Print::instance().write(Nq::PrintFailure, "NqXmlDocument::writeFile(): cannot write %s\n",
                                    fileName);
    }
    return written;
}

bool NqXmlDocument::writeString(std::string& document, const NqXmlObject& object) {
    std::ostringstream stream;
    bool good = false;
    {
        NqXmlWriter writer("(text)", stream);
        good = writer.writeStartTag(object.token()) && object.write(writer) && writer.writeEndTag() &&
               writer.flush();
    }
    if (good) {
        document = stream.str();
    }
    return good;
}
