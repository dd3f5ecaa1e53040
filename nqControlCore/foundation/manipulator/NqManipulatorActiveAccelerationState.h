#pragma once

#include <nqControlCore/foundation/manipulator/NqAccelerationState.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActivePositionState.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveVelocityState.h>

/// An acceleration state together with the link accelerations computed from it.
///
/// Its results go with the positions of the NqManipulatorActiveState that holds it; they are computed as
/// those of NqManipulatorActivePositionState are, on the first query after a change.
class NqManipulatorActiveAccelerationState {
public:
    /// A state of no size, for manipulators that it will be asked about.
    NqManipulatorActiveAccelerationState() = default;
    /// A state for one manipulator, at rest.
    explicit NqManipulatorActiveAccelerationState(const NqIndividualManipulator& manipulator);
    NqManipulatorActiveAccelerationState(const NqManipulatorActiveAccelerationState&) = default;
    NqManipulatorActiveAccelerationState& operator=(const NqManipulatorActiveAccelerationState&) = default;
    virtual ~NqManipulatorActiveAccelerationState() = default;

    virtual const NqAccelerationState& accelerationState() const { return m_AccelerationState; }

    /// Replaces the state. Vectors of another size are treated as by NqManipulatorActivePositionState.
    virtual void setAccelerationState(const NqAccelerationState& accelerationState);

private:
    friend class NqManipulatorActiveState;

    /// Brings the accelerations up to date with the joint accelerations, the rates and the positions.
    void update(const NqKinematicTree& tree, NqManipulatorActivePositionState& positions,
                NqManipulatorActiveVelocityState& velocities);

    NqAccelerationState m_AccelerationState;
    std::optional<std::size_t> m_NumberOfJoints;

    NqCacheGeneration m_Generation;
    std::uint64_t m_ComputedGeneration = 0;
    std::uint64_t m_VelocityGeneration = 0;
    std::vector<NqGeneralMotion> m_Accelerations;
    NqStampedCache<NqGeneralMotion> m_LocalAccelerations;
};
