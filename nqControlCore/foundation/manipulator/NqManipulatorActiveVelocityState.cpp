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
    NqXmlRealVector& rates = m_VelocityState.jointVelocities();
    NqJointVectors::grow("NqManipulatorActiveVelocityState", rates, tree.numberOfJoints());
    tree.computeVelocities(positions.linkFrames(tree), m_VelocityState.baseMotion(), rates.values(),
                           m_Velocities);
    m_Generation.advance();
    m_ComputedGeneration = m_Generation.value();
    m_PositionGeneration = positionGeneration;
}

template <typename OfBase>
const NqVector& NqManipulatorActiveVelocityState::momentum(Momentum& cached, std::uint64_t positionGeneration,
                                                           OfBase ofBase,
                                                           const std::vector<NqVector>& ofUnitRates) {
    if (cached.generation != m_Generation.value() || cached.positionGeneration != positionGeneration) {
        NqXmlRealVector& rates = m_VelocityState.jointVelocities();
        NqJointVectors::grow("NqManipulatorActiveVelocityState", rates, ofUnitRates.size() - 1);
        NqVector sum = ofBase(m_VelocityState.baseMotion());
        for (std::size_t i = 1; i < ofUnitRates.size(); ++i) {
            sum += rates.values()[i - 1] * ofUnitRates[i];
        }
        cached = {m_Generation.value(), positionGeneration, sum};
    }
    return cached.value;
}

const NqVector&
NqManipulatorActiveVelocityState::linearMomentum(const NqKinematicTree& tree,
                                                 NqManipulatorActivePositionState& positions) {
    const NqCompositeMoments& moments = positions.firstMoments(tree);
    const auto ofBase = [&](const NqGeneralMotion& base) {
        return tree.compositeMass(0) * base.linear() + base.angular().cross(moments.firstMoments[0]);
    };
    return momentum(m_LinearMomentum, positions.generation(tree), ofBase, moments.linearMomenta);
}

const NqVector&
NqManipulatorActiveVelocityState::angularMomentum(const NqKinematicTree& tree,
                                                  NqManipulatorActivePositionState& positions) {
    const NqCompositeMoments& moments = positions.compositeMoments(tree);
    const auto ofBase = [&](const NqGeneralMotion& base) {
        return moments.secondMoments[0] * base.angular() + moments.firstMoments[0].cross(base.linear());
    };
    return momentum(m_AngularMomentum, positions.generation(tree), ofBase, moments.angularMomenta);
}
