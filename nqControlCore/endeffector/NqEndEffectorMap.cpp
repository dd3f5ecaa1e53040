#include <nqControlCore/endeffector/NqEndEffectorMap.h>

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>

const NqToken& NqEndEffectorMap::classToken() {
    return NqControlCore::NqEndEffectorMapToken;
}

void NqEndEffectorMap::registerComponentCreators() {
    nqRegisterEndEffectorTypes(*this);
}

bool NqEndEffectorMap::setRelativeLinkData(const NqXmlBasicType<std::string>& key,
                                           NqEndEffectorRelativeLinkData data) {
    NqEndEffector* endEffector = lookup(key);
    if (!endEffector) {
        return false;
    }
    endEffector->setRelativeLinkData(data);
    return true;
}

NqEndEffector* NqEndEffectorMap::endEffectorFromToken(const NqToken& token) {
    return nqEndEffectorFromToken(*this, token);
}
