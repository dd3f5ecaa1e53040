#include <nqControlCore/foundation/xml/NqXmlObject.h>

#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/xml/NqXmlObjectVisitor.h>
#include <nqControlCore/foundation/xml/NqXmlSchema.h>
#include <nqControlCore/foundation/xml/NqXmlWriter.h>

#include <fstream>
#include <memory>

void NqXmlObject::accept(NqXmlObjectVisitor* visitor) const {
    visitor->visit(this);
}

bool NqXmlObject::xmlInit() {
    m_XmlInitialized = true;
    return true;
}

bool NqXmlObject::read(NqXmlReader&) {
    return ensureInitialized();
}

bool NqXmlObject::readAttribute(NqXmlReader&) {
    return false;
}

bool NqXmlObject::write(NqXmlWriter&) const {
    return ensureInitialized();
}

bool NqXmlObject::writeSchema(NqXmlSchema&) const {
    return ensureInitialized();
}

bool NqXmlObject::createSchema(const std::string& fileName, const NqToken& rootToken) const {
    std::ofstream stream(fileName, std::ios::binary);
    NqXmlWriter writer(fileName, stream);
    NqXmlSchema schema(writer);
    const bool written = schema.writeDocument(*this, rootToken) && writer.flush();
    if (!written) {
        Nq::Print::instance().write(Nq::PrintFailure, "NqXmlObject::createSchema(): cannot write %s\n",
                                    fileName);
    }
    return written;
}

bool NqXmlObject::equalsDefault() const {
    const std::unique_ptr<NqXmlObject> theDefault(newObject());
    return theDefault && equality(theDefault.get());
}
