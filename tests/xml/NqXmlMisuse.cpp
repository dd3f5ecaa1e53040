#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/foundation/xml/NqXmlTokens.h>

// Persistent classes with the faults that must not compile; without a macro there is none.

class NqGround : public NqXmlPersistent<NqGround, NqXmlCompoundType> {
public:
    static const NqToken& classToken() { return NqXml::NqElementToken; }

protected:
    NqXmlBasicType<double> m_Value;

private:
    friend struct NqXmlComponentAccess;
    static auto components() { return nqComponentList(nqComponent(NqXml::NqValueToken, &NqGround::m_Value)); }
};

class NqAbove : public NqXmlPersistent<NqAbove, NqGround> {
public:
    static const NqToken& classToken() { return NqXml::NqGroupToken; }

private:
    NqXmlBasicType<double> m_Key;
#ifndef NQ_WITHOUT_FRIEND
    friend struct NqXmlComponentAccess;
#endif
    static auto components() {
#if defined(NQ_FIELD_OF_BASE)
        return nqComponentList(nqComponent(NqXml::NqValueToken, &NqAbove::m_Value));
#else
        return nqComponentList(nqComponent(NqXml::NqKeyToken, &NqAbove::m_Key));
#endif
    }
};

bool nqSame(const NqAbove& a, const NqAbove& b);
bool nqSame(const NqAbove& a, const NqAbove& b) {
    return a == b;
}
