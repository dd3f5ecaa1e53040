#include <nqControlCore/foundation/manipulator/NqPositionState.h>

#include <nqControlCore/foundation/manipulator/NqJointVectors.h>

const NqToken& NqPositionState::classToken() {
    return NqManipulator::NqPositionStateToken;
}

void NqPositionState::setJointPosition(unsigned index, double position) {
    NqJointVectors::setEntry("NqPositionState::setJointPosition", m_JointPositions, index, position);
}
