#include <nqControlCore/xml/NqXmlCollectionReading.h>

#include <nqControlCore/foundation/xml/NqXmlTokens.h>
#include <nqControlCore/xml/NqXmlCollection.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

NqXmlCollectionReading::NqXmlCollectionReading(NqXmlReader& reader, const char* name, const char* kind,
                                               const char* signature)
    : m_Reader(reader), m_Name(name), m_Kind(kind), m_Signature(signature),
      m_HasContent(reader.nodeKind() != NqXmlReader::ElementWithoutContent), m_Children(reader) {
    for (unsigned i = 0; i < reader.attributeCount(); ++i) {
        if (NqXml::NqCountToken.names(reader.attributeToken(i))) {
            m_Declared = std::strtoll(reader.attributeValue(i).c_str(), nullptr, 10);
        }
    }
}

unsigned NqXmlCollectionReading::reservation() const {
    constexpr long long kMostAhead = 4096;
    return static_cast<unsigned>(std::clamp(m_Declared, 0LL, kMostAhead));
}

bool NqXmlCollectionReading::nextEntry() {
    for (;;) {
        NqXmlReader::Children& entries = m_Group ? *m_Group : m_Children;
        if (!entries.next()) {
            if (!m_Group) {
                return false;
            }
            m_Group.reset();
        } else if ((m_Group ? NqXml::NqValueToken : NqXml::NqElementToken).names(m_Reader.token())) {
            return true;
        } else if (!m_Group && NqXml::NqGroupToken.names(m_Reader.token())) {
            m_Group.emplace(m_Reader);
        } else {
            NqXmlCollection::reportUnknown(m_Reader);
        }
    }
}

bool NqXmlCollectionReading::finish(std::size_t count) {
    if (!m_Reader.dataMode()) {
        NqXmlCollection::reportNoData(m_Reader, m_Signature, m_Name);
    }
    if (m_HasContent && !std::cmp_equal(count, m_Declared)) {
        NqXmlCollection::reportCount(m_Reader, m_Signature, m_Name, m_Kind, m_Declared, count);
    }
    return m_Reader.good();
}
