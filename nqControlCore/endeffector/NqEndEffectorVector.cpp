#include <nqControlCore/endeffector/NqEndEffectorVector.h>

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>

const NqToken& NqEndEffectorVector::classToken() {
    return NqControlCore::NqEndEffectorVectorToken;
}

void NqEndEffectorVector::registerComponents() {}

void NqEndEffectorVector::registerComponentCreators() {
    nqRegisterEndEffectorTypes(*this);
}

bool NqEndEffectorVector::setRelativeLinkData(unsigned index, NqEndEffectorRelativeLinkData data) {
    if (index >= size()) {
        return false;
    }
    (*this)[index]->setRelativeLinkData(data);
    return true;
}

NqEndEffector* NqEndEffectorVector::endEffectorFromToken(const NqToken& token) {
    return nqEndEffectorFromToken(*this, token);
}
