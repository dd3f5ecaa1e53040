#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/xml/NqXmlObject.h>
#include <nqControlCore/foundation/xml/NqXmlReader.h>
#include <nqControlCore/foundation/xml/NqXmlWriter.h>

#include <cerrno>
#include <cstdio>
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

/// Opens a file beside the other that nobody has yet, and tells its name; null if there is none to be had.
std::FILE* openScratch(const std::string& fileName, std::string& scratchName) {
    constexpr int kMostTries = 1000;
    for (int i = 0; i < kMostTries; ++i) {
        scratchName = fileName + ".new" + (i == 0 ? "" : std::to_string(i));
        std::FILE* file = std::fopen(scratchName.c_str(), "wbx");
        if (file || errno != EEXIST) {
            return file;
        }
    }
    return nullptr;
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
    std::string document;
    bool written = false;
    std::string scratchName;
    if (std::FILE* file = writeString(document, object) ? openScratch(fileName, scratchName) : nullptr) {
        written = std::fwrite(document.data(), 1, document.size(), file) == document.size();
        written = std::fclose(file) == 0 && written;
        written = written && std::rename(scratchName.c_str(), fileName.c_str()) == 0;
        if (!written) {
            std::remove(scratchName.c_str());
        }
    }
    if (!written) {
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
