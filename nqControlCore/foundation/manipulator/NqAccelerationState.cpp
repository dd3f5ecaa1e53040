#include <nqControlCore/foundation/manipulator/NqAccelerationState.h>

#include <nqControlCore/foundation/manipulator/NqJointVectors.h>

const NqToken& NqAccelerationState::classToken() {
    return NqManipulator::NqAccelerationStateToken;
}

void NqAccelerationState::setJointAcceleration(unsigned index, double acceleration) {
    NqJointVectors::setEntry("NqAccelerationState::setJointAcceleration", m_JointAccelerations, index,
                             acceleration);
}
