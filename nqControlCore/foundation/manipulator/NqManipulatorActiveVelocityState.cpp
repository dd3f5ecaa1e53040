#include <nqControlCore/foundation/manipulator/NqManipulatorActiveVelocityState.h>

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqJointVectors.h>

NqManipulatorActiveVelocityState::NqManipulatorActiveVelocityState(const NqIndividualManipulator& manipulator)
    : m_VelocityState(manipulator.numberOfJoints()), m_NumberOfJoints(manipulator.numberOfJoints()) {}

void NqManipulatorActiveVelocityState::setVelocityState(const NqVelocityState& velocityState) {
    m_VelocityState = velocityState;
    if (m_NumberOfJoints) {
        NqJointVectors::fit("NqManipulatorActiveVelocityState::setVelocityState",
                            m_VelocityState.jointVelocities(), *m_NumberOfJoints);
    }
    m_Generation.advance();
}

void NqManipulatorActiveVelocityState::update(const NqKinematicTree& tree,
                                              NqManipulatorActivePositionState& positions) {
    const std::uint64_t positionGeneration = positions.generation(tree);
    if (m_ComputedGeneration == m_Generation.value() && m_PositionGeneration == positionGeneration) {
        return;
    }
    m_Velocities.resize(tree.size());
    m_LocalVelocities.grow(tree.size());
    m_PrimaryVelocities.grow(tree.numberOfBodies());
    m_Momenta.grow(2);
    NqXmlRealVector& rates = m_VelocityState.jointVelocities();
    NqJointVectors::grow("NqManipulatorActiveVelocityState", rates, tree.numberOfJoints());
    tree.computeVelocities(positions.linkFrames(tree), m_VelocityState.baseMotion(), rates.values(),
                           m_Velocities);
    m_Generation.advance();
    m_ComputedGeneration = m_Generation.value();
    m_PositionGeneration = positionGeneration;
}
