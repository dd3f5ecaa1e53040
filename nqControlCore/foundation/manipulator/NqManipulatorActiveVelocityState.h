#pragma once

#include <nqControlCore/foundation/manipulator/NqManipulatorActivePositionState.h>
#include <nqControlCore/foundation/manipulator/NqVelocityState.h>

/// A velocity state together with the link velocities computed from it.
///
/// Its results go with the positions of the NqManipulatorActiveState that holds it; they are computed as
/// those of NqManipulatorActivePositionState are, on the first query after a change.
class NqManipulatorActiveVelocityState {
public:
    /// A state of no size, for manipulators that it will be asked about.
    NqManipulatorActiveVelocityState() = default;
    /// A state for one manipulator, at rest.
    explicit NqManipulatorActiveVelocityState(const NqIndividualManipulator& manipulator);
    NqManipulatorActiveVelocityState(const NqManipulatorActiveVelocityState&) = default;
    NqManipulatorActiveVelocityState& operator=(const NqManipulatorActiveVelocityState&) = default;
    virtual ~NqManipulatorActiveVelocityState() = default;

    virtual const NqVelocityState& velocityState() const { return m_VelocityState; }

    /// Replaces the state. Vectors of another size are treated as by NqManipulatorActivePositionState.
    virtual void setVelocityState(const NqVelocityState& velocityState);

private:
    friend class NqManipulatorActiveState;
    friend class NqManipulatorActiveAccelerationState;

    /// Brings the velocities up to date with the rates and the positions.
    void update(const NqKinematicTree& tree, NqManipulatorActivePositionState& positions);

    /// A momentum of the whole manipulator, and what it was computed from.
    struct Momentum {
        std::uint64_t generation = 0;
        std::uint64_t positionGeneration = 0;
        NqVector value;
    };

    // Momenta for the rates and the positions, in the axes of the system frame; link velocities are not
    // needed.

    const NqVector& linearMomentum(const NqKinematicTree& tree, NqManipulatorActivePositionState& positions);
    /// About the origin of the base frame.
    const NqVector& angularMomentum(const NqKinematicTree& tree, NqManipulatorActivePositionState& positions);
    /// The cached one, or a new sum: of the base's part, and of each joint's rate times its part.
    template <typename OfBase>
    const NqVector& momentum(Momentum& cached, std::uint64_t positionGeneration, OfBase ofBase,
                             const std::vector<NqVector>& ofUnitRates);

    NqVelocityState m_VelocityState;
    std::optional<std::size_t> m_NumberOfJoints;

    NqCacheGeneration m_Generation;
    std::uint64_t m_ComputedGeneration = 0;
    std::uint64_t m_PositionGeneration = 0;
    std::vector<NqGeneralMotion> m_Velocities;
    NqStampedCache<NqGeneralMotion> m_LocalVelocities;
    NqStampedCache<NqGeneralMotion> m_PrimaryVelocities;
    Momentum m_LinearMomentum;
    Momentum m_AngularMomentum;
};
