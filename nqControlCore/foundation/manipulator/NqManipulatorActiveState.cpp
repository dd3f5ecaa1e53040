#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>

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
