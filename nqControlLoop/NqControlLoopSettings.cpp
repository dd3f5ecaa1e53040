#include <nqControlLoop/NqControlLoopSettings.h>

const NqToken& NqControlLoopSettings::classToken() {
    return NqLoop::NqControlLoopSettingsToken;
}

bool NqControlLoopSettings::xmlInit() {
    m_Blocked.registerEnumeration(Hold, NqLoop::NqHoldToken);
    m_Blocked.registerEnumeration(Slide, NqLoop::NqSlideToken);
    return NqXmlCompoundType::xmlInit();
}
