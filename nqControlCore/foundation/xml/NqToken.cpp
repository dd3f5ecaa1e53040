#include <nqControlCore/foundation/xml/NqToken.h>

bool NqToken::names(const NqToken& other) const {
    if (isQualified() && other.isQualified()) {
        return *this == other;
    }
    return localName() == other.localName();
}

NqToken operator+(const NqToken& ns, const char* name) {
    return {ns.token(), name};
}
