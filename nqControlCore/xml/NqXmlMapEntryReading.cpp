#include <nqControlCore/xml/NqXmlMapEntryReading.h>

#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/xml/NqXmlObject.h>
#include <nqControlCore/foundation/xml/NqXmlTokens.h>

bool NqXmlMapEntryReading::readKey(NqXmlObject& key) {
    if (!expect(NqXml::NqElementToken)) {
        return false;
    }
    if (!m_Parts.next()) {
        reportForm(NqXml::NqKeyToken.c_str(), "nothing");
        return false;
    }
    return expect(NqXml::NqKeyToken) && key.read(m_Reader);
}

bool NqXmlMapEntryReading::nextValue() {
    const bool found = m_Parts.next();
    if (!found) {
        reportForm(NqXml::NqValueToken.c_str(), "nothing");
    }
    return found;
}

bool NqXmlMapEntryReading::readValue(NqXmlObject& value) {
    return nextValue() && expect(NqXml::NqValueToken) && value.read(m_Reader);
}

bool NqXmlMapEntryReading::expect(const NqToken& token) {
    const NqToken received = m_Reader.token();
    const bool asExpected = token.names(received);
    if (!asExpected) {
        reportForm(token.c_str(), received.localName());
    }
    return asExpected;
}

void NqXmlMapEntryReading::reportForm(const char* expected, std::string_view received) {
    if (m_Reader.mayReport()) {
        Nq::Print::instance().write(
            Nq::PrintFailure,
            "%s Error: file not valid.\n\tKey map format not correct.\n\tFile: %s\n\tLine: "
            "%d\tExpected %s but received %s.\n",
            m_Name, m_Reader.fileName(), m_Reader.lineNumber(), expected, std::string(received));
    }
}
