#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>

namespace {

/// What is there without the joints' rates, and what each of them adds.
NqVector sumOfMomenta(const NqVector& ofBase, const std::vector<NqVector>& ofUnitRates,
                      const NqXmlRealVector& rates) {
    NqVector sum = ofBase;
    for (std::size_t i = 1; i < ofUnitRates.size(); ++i) {
        sum += rates.values()[i - 1] * ofUnitRates[i];
    }
    return sum;
}

} // namespace

const NqGeneralMotion& NqManipulatorActiveState::localVelocity(const NqKinematicTree& tree,
                                                               std::size_t entry) {
    NqManipulatorActiveVelocityState& velocities = m_ActiveVelocityState;
    velocities.update(tree, m_ActivePositionState);
    return velocities.m_LocalVelocities.get(entry, velocities.m_Generation.value(), [&] {
        return m_ActivePositionState.linkFrame(tree, entry).orientation().inverse() *
               velocities.m_Velocities[entry];
    });
}

const NqGeneralMotion&
NqManipulatorActiveState::primaryFrameVelocity(const NqKinematicTree& tree, std::size_t entry,
                                               std::size_t body,
                                               const NqCoordinateSystemTransformation& offset) {
    NqManipulatorActiveVelocityState& velocities = m_ActiveVelocityState;
    velocities.update(tree, m_ActivePositionState);
    if (offset.translation() == NqVector()) {
        return velocities.m_Velocities[entry];
    }
    return velocities.m_PrimaryVelocities.get(body, velocities.m_Generation.value(), [&] {
        const NqOrientation& orientation = m_ActivePositionState.linkFrame(tree, entry).orientation();
        NqGeneralMotion velocity = velocities.m_Velocities[entry];
        return velocity.transformBy(orientation * offset.translation());
    });
}

const NqGeneralMotion& NqManipulatorActiveState::localAcceleration(const NqKinematicTree& tree,
                                                                   std::size_t entry) {
    NqManipulatorActiveAccelerationState& accelerations = m_ActiveAccelerationState;
    accelerations.update(tree, m_ActivePositionState, m_ActiveVelocityState);
    return accelerations.m_LocalAccelerations.get(entry, accelerations.m_Generation.value(), [&] {
        return m_ActivePositionState.linkFrame(tree, entry).orientation().inverse() *
               accelerations.m_Accelerations[entry];
    });
}

const NqVector& NqManipulatorActiveState::linearMomentum(const NqKinematicTree& tree) {
    NqManipulatorActiveVelocityState& velocities = m_ActiveVelocityState;
    velocities.update(tree, m_ActivePositionState);
    return velocities.m_Momenta.get(0, velocities.m_Generation.value(), [&] {
        const NqCompositeMoments& moments = m_ActivePositionState.firstMoments(tree);
        const NqGeneralMotion& base = velocities.m_VelocityState.baseMotion();
        return sumOfMomenta(tree.compositeMass(0) * base.linear() +
                                base.angular().cross(moments.firstMoments[0]),
                            moments.linearMomenta, velocities.m_VelocityState.jointVelocities());
    });
}

const NqVector& NqManipulatorActiveState::angularMomentum(const NqKinematicTree& tree) {
    NqManipulatorActiveVelocityState& velocities = m_ActiveVelocityState;
    velocities.update(tree, m_ActivePositionState);
    return velocities.m_Momenta.get(1, velocities.m_Generation.value(), [&] {
        const NqCompositeMoments& moments = m_ActivePositionState.compositeMoments(tree);
        const NqGeneralMotion& base = velocities.m_VelocityState.baseMotion();
        return sumOfMomenta(moments.secondMoments[0] * base.angular() +
                                moments.firstMoments[0].cross(base.linear()),
                            moments.angularMomenta, velocities.m_VelocityState.jointVelocities());
    });
}
