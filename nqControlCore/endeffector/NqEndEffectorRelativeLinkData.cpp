#include <nqControlCore/endeffector/NqEndEffectorRelativeLinkData.h>

const NqToken& NqEndEffectorRelativeLinkData::classToken() {
    return NqControlCore::NqRelativeLinkDataToken;
}

NqEndEffectorRelativeLinkData&
NqEndEffectorRelativeLinkData::operator=(const NqEndEffectorRelativeLinkData& other) {
    NqXmlCompoundType::operator=(other);
    m_RelativeMode = other.m_RelativeMode;
    m_RelativeLinkID = other.m_RelativeLinkID;
    m_RelativeManipulatorIndex = other.m_RelativeManipulatorIndex;
    return *this;
}

bool NqEndEffectorRelativeLinkData::xmlInit() {
    registerRelativeModeEnumerations();
    return NqXmlCompoundType::xmlInit();
}

bool NqEndEffectorRelativeLinkData::read(NqXmlReader& reader) {
    m_IsRelativeLink = false;
    if (!NqXmlCompoundType::read(reader)) {
        return false;
    }
    if (relativeMode() == relativeModeNone) {
        setRelativeMode(m_IsRelativeLink ? relativeModeInternal : relativeModeNone);
    }
    return true;
}

const NqEndEffectorRelativeLinkData& NqEndEffectorRelativeLinkData::referenceObject() {
    static const NqEndEffectorRelativeLinkData theReference;
    return theReference;
}

void NqEndEffectorRelativeLinkData::registerRelativeModeEnumerations() {
    m_RelativeMode.registerEnumeration(relativeModeNone, NqControlCore::NqRelativeModeNoneToken);
    m_RelativeMode.registerEnumeration(relativeModeInternal, NqControlCore::NqRelativeModeInternalToken);
    m_RelativeMode.registerEnumeration(relativeModeExternal, NqControlCore::NqRelativeModeExternalToken);
}
