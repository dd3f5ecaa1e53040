#include <nqControlCore/foundation/manipulator/NqManipulatorActivePositionState.h>

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqJointVectors.h>

NqManipulatorActivePositionState::NqManipulatorActivePositionState(const NqIndividualManipulator& manipulator)
    : m_PositionState(manipulator.numberOfJoints()), m_NumberOfJoints(manipulator.numberOfJoints()) {}

void NqManipulatorActivePositionState::setPositionState(const NqPositionState& positionState) {
    m_PositionState = positionState;
    if (m_NumberOfJoints) {
        NqJointVectors::fit("NqManipulatorActivePositionState::setPositionState",
                            m_PositionState.jointPositions(), *m_NumberOfJoints);
    }
    m_Generation.advance();
}

void NqManipulatorActivePositionState::computeFrames(const NqKinematicTree& tree) {
    if (m_TreeId != tree.id()) {
        m_TreeId = tree.id();
        m_Generation.advance();
    }
    m_Frames.resize(tree.size());
    m_PrimaryFrames.grow(tree.numberOfBodies());
    m_Composites.grow(tree.size());
    NqXmlRealVector& positions = m_PositionState.jointPositions();
    NqJointVectors::grow("NqManipulatorActivePositionState", positions, tree.numberOfJoints());
    tree.computeFrames(m_PositionState.baseFrame(), positions.values(), m_Frames);
    m_FramesGeneration = m_Generation.value();
}

const NqCompositeMoments& NqManipulatorActivePositionState::firstMoments(const NqKinematicTree& tree) {
    update(tree);
    if (m_FirstMomentsGeneration != m_Generation.value()) {
        tree.computeFirstMoments(m_Frames, m_Moments);
        m_FirstMomentsGeneration = m_Generation.value();
    }
    return m_Moments;
}

const NqCompositeMoments& NqManipulatorActivePositionState::compositeMoments(const NqKinematicTree& tree) {
    firstMoments(tree);
    if (m_SecondMomentsGeneration != m_Generation.value()) {
        tree.computeSecondMoments(m_Frames, m_Moments);
        m_SecondMomentsGeneration = m_Generation.value();
    }
    return m_Moments;
}

const NqRigidBodyMassProperties&
NqManipulatorActivePositionState::compositeMassProperties(const NqKinematicTree& tree, std::size_t entry) {
    const NqCompositeMoments& moments = compositeMoments(tree);
    return m_Composites.get(entry, m_Generation.value(), [&] {
        NqRigidBodyMassProperties composite(tree.compositeMass(entry), moments.firstMoments[entry],
                                            moments.secondMoments[entry]);
        return composite.transformBy(m_Frames[entry].orientation().inverse());
    });
}
