#include <nqControlCore/foundation/manipulator/NqManipulatorActiveAccelerationState.h>

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqJointVectors.h>

NqManipulatorActiveAccelerationState::NqManipulatorActiveAccelerationState(
    const NqIndividualManipulator& manipulator)
    : m_AccelerationState(manipulator.numberOfJoints()), m_NumberOfJoints(manipulator.numberOfJoints()) {}

void NqManipulatorActiveAccelerationState::setAccelerationState(
    const NqAccelerationState& accelerationState) {
    m_AccelerationState = accelerationState;
    if (m_NumberOfJoints) {
        NqJointVectors::fit("NqManipulatorActiveAccelerationState::setAccelerationState",
                            m_AccelerationState.jointAccelerations(), *m_NumberOfJoints);
    }
    m_Generation.advance();
}

void NqManipulatorActiveAccelerationState::update(const NqKinematicTree& tree,
                                                  NqManipulatorActivePositionState& positions,
                                                  NqManipulatorActiveVelocityState& velocities) {
    velocities.update(tree, positions);
    const std::uint64_t velocityGeneration = velocities.m_Generation.value();
    if (m_ComputedGeneration == m_Generation.value() && m_VelocityGeneration == velocityGeneration) {
        return;
    }
    m_Accelerations.resize(tree.size());
    m_LocalAccelerations.grow(tree.size());
    NqXmlRealVector& accelerations = m_AccelerationState.jointAccelerations();
    NqJointVectors::grow("NqManipulatorActiveAccelerationState", accelerations, tree.numberOfJoints());
    tree.computeAccelerations(
        positions.linkFrames(tree), velocities.m_Velocities, m_AccelerationState.baseMotion(),
        velocities.m_VelocityState.jointVelocities().values(), accelerations.values(), m_Accelerations);
    m_Generation.advance();
    m_ComputedGeneration = m_Generation.value();
    m_VelocityGeneration = velocityGeneration;
}
