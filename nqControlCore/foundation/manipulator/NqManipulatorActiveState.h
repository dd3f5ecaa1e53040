#pragma once

#include <nqControlCore/foundation/manipulator/NqManipulatorActiveAccelerationState.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActivePositionState.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveVelocityState.h>

/// Position, velocity and acceleration of a manipulator, together with the frames, velocities and
/// accelerations of its links. These are computed on the first query after a change; see
/// NqManipulatorActivePositionState. A state belongs to one thread at a time.
class NqManipulatorActiveState {
public:
    /// A state of no size, for manipulators that it will be asked about.
    NqManipulatorActiveState() = default;
    /// A state for one manipulator: all joints at zero and at rest, the base at the origin.
    explicit NqManipulatorActiveState(const NqIndividualManipulator& manipulator)
        : m_ActivePositionState(manipulator), m_ActiveVelocityState(manipulator),
          m_ActiveAccelerationState(manipulator) {}
    NqManipulatorActiveState(const NqManipulatorActiveState&) = default;
    NqManipulatorActiveState& operator=(const NqManipulatorActiveState&) = default;
    virtual ~NqManipulatorActiveState() = default;

    virtual const NqPositionState& positionState() const { return m_ActivePositionState.positionState(); }
    virtual const NqVelocityState& velocityState() const { return m_ActiveVelocityState.velocityState(); }
    virtual const NqAccelerationState& accelerationState() const {
        return m_ActiveAccelerationState.accelerationState();
    }
    virtual NqManipulatorActivePositionState& activePositionState() { return m_ActivePositionState; }
    virtual NqManipulatorActiveVelocityState& activeVelocityState() { return m_ActiveVelocityState; }
    virtual NqManipulatorActiveAccelerationState& activeAccelerationState() {
        return m_ActiveAccelerationState;
    }

    /// Replace one part, and drop what was computed from it.
    virtual void setPositionState(const NqPositionState& state) {
        m_ActivePositionState.setPositionState(state);
    }
    virtual void setVelocityState(const NqVelocityState& state) {
        m_ActiveVelocityState.setVelocityState(state);
    }
    virtual void setAccelerationState(const NqAccelerationState& state) {
        m_ActiveAccelerationState.setAccelerationState(state);
    }

    // For the links, which know their tree and their places in it.

    /// Velocity of an entry's DH frame, in its own axes.
    const NqGeneralMotion& localVelocity(const NqKinematicTree& tree, std::size_t entry);
    /// Velocity of the origin of a body's primary frame, in the system frame.
    const NqGeneralMotion& primaryFrameVelocity(const NqKinematicTree& tree, std::size_t entry,
                                                std::size_t body,
                                                const NqCoordinateSystemTransformation& offset);
    /// Acceleration of an entry's DH frame, in its own axes.
    const NqGeneralMotion& localAcceleration(const NqKinematicTree& tree, std::size_t entry);
    /// Linear momentum of all entries together, in the axes of the system frame.
    const NqVector& linearMomentum(const NqKinematicTree& tree) {
        return m_ActiveVelocityState.linearMomentum(tree, m_ActivePositionState);
    }
    /// Their angular momentum about the origin of the base frame.
    const NqVector& angularMomentum(const NqKinematicTree& tree) {
        return m_ActiveVelocityState.angularMomentum(tree, m_ActivePositionState);
    }

private:
    NqManipulatorActivePositionState m_ActivePositionState;
    NqManipulatorActiveVelocityState m_ActiveVelocityState;
    NqManipulatorActiveAccelerationState m_ActiveAccelerationState;
};
