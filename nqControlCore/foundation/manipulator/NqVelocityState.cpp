#include <nqControlCore/foundation/manipulator/NqVelocityState.h>

#include <nqControlCore/foundation/manipulator/NqJointVectors.h>

const NqToken& NqVelocityState::classToken() {
    return NqManipulator::NqVelocityStateToken;
}

void NqVelocityState::setJointVelocity(unsigned index, double velocity) {
    NqJointVectors::setEntry("NqVelocityState::setJointVelocity", m_JointVelocities, index, velocity);
}
