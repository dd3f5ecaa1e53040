#pragma once

#include <nqControlCore/foundation/manipulator/NqJointDescription.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>
#include <nqControlCore/foundation/manipulator/NqRigidBodyMassProperties.h>

#include <memory>
#include <string>

/// One labelled body of a manipulator: its base, a link that a joint moves, or a body fixed to one of these.
///
/// Each link has two frames. The DH frame is what its joint moves: its origin lies at the joint and its z
/// axis along the joint's axis. The primary frame is the one that the model gives the body, at a constant
/// offset from the DH frame.
///
/// A body on a fixed joint shares joint, joint index, DH frame and parent with the link that carries it; only
/// its label and its primary frame are its own, and its mass counts as the carrier's. One fixed to the base
/// thus has no parent and no column, like the base itself.
///
/// Links belong to their manipulator; they are made by NqIndividualManipulator::addLink() and live as long as
/// it.
class NqManipulatorLink {
public:
    virtual ~NqManipulatorLink() = default;

    virtual const std::string& linkLabel() const { return m_Label; }

    /// Its number among all links of the manipulator, as NqIndividualManipulator::link() takes it.
    unsigned number() const { return static_cast<unsigned>(m_Body); }

    /// The joint that moves this link relative to parentLink(); a fixed one for the base.
    virtual const NqJointDescription& joint() const { return m_Carrier->m_Joint; }

    /// The primary frame in the DH frame.
    virtual const NqCoordinateSystemTransformation& primaryFrameOffset() const {
        return m_PrimaryFrameOffset;
    }

    /// The next moving link towards the base, or the base; null for the base and what is fixed to it.
    virtual const NqManipulatorLink* parentLink() const { return m_Carrier->m_Parent; }

    /// Index of this link's joint in the joint vectors and of its Jacobian column. 0 for a link without
    /// parent, which has no joint.
    virtual unsigned jointIndex() const;

    /// DH frame in the system frame. For what the references refer to, see NqManipulatorActivePositionState.
    virtual const NqCoordinateSystemTransformation&
    linkFrameInSystem(NqManipulatorActivePositionState& state) const;

    /// Primary frame in the system frame: linkFrameInSystem(state) * primaryFrameOffset().
    virtual const NqCoordinateSystemTransformation&
    primaryFrameInSystem(NqManipulatorActivePositionState& state) const;

    /// Velocity of the DH frame's origin and angular velocity, in the axes of the DH frame.
    virtual const NqGeneralMotion& localVelocity(NqManipulatorActiveState& state) const;

    /// Velocity of the primary frame's origin and angular velocity, in the system frame.
    virtual const NqGeneralMotion& primaryFrameVelocity(NqManipulatorActiveState& state) const;

    /// Classical acceleration of the DH frame's origin, without gravity, and angular acceleration, in the
    /// axes of the DH frame.
    virtual const NqGeneralMotion& localAcceleration(NqManipulatorActiveState& state) const;

    /// This link's own mass properties, with those of all bodies fixed to it, about the origin of its primary
    /// frame and in that frame's axes. A body fixed to another has none: they count as its carrier's. A model
    /// has one set, which every `set` gives.
    virtual const NqRigidBodyMassProperties& massProperties(unsigned set = 0) const;

    /// Mass properties of this link and all that hangs from it, in its DH frame; for the base: of the whole
    /// manipulator in the base frame.
    virtual const NqRigidBodyMassProperties& compositeMassProperties(NqManipulatorActiveState& state) const;

    // The parts of these mass properties in the axes of the system frame, about the origin of the DH frame.
    // For mass and first moments, which the centre of mass and gravity need, no second moment is computed.

    virtual double compositeMass() const;
    virtual const NqVector& compositeFirstMoment(NqManipulatorActivePositionState& state) const;
    virtual const NqSecondMoment& compositeSecondMoment(NqManipulatorActivePositionState& state) const;

    // Walks from this link towards the base, joint by joint. Columns are joint indices.

    /// Calls `visit(column)` for each joint that carries this link.
    template <typename Visit>
    void forEachCarryingJoint(Visit visit) const {
        m_Tree->forEachInboardEntry(m_Entry,
                                    [&](std::size_t entry) { visit(static_cast<unsigned>(entry - 1)); });
    }

    /// Calls `visit(column, motion)` for each joint that carries this link, with the motion of a body fixed
    /// in the link, in the system frame and referred to `origin`, for a unit rate of that joint.
    template <typename Visit>
    void forEachUnitRateMotion(const NqVector& origin, NqManipulatorActivePositionState& state,
                               Visit visit) const {
        const std::vector<NqCoordinateSystemTransformation>& frames = state.linkFrames(*m_Tree);
        m_Tree->forEachInboardEntry(m_Entry, [&](std::size_t entry) {
            visit(static_cast<unsigned>(entry - 1), m_Tree->unitRateMotion(entry, frames[entry], origin));
        });
    }

    /// The same for this link's own joint; zero for a link without one.
    NqGeneralMotion unitRateMotion(const NqVector& origin, NqManipulatorActivePositionState& state) const {
        return m_Tree->unitRateMotion(m_Entry, state.linkFrame(*m_Tree, m_Entry), origin);
    }

protected:
    /// The base.
    NqManipulatorLink() = default;
    NqManipulatorLink(const NqManipulatorLink&) = default;
    NqManipulatorLink& operator=(const NqManipulatorLink&) = default;

private:
    friend class NqIndividualManipulator;

    std::string m_Label;
    NqJointDescription m_Joint;
    NqCoordinateSystemTransformation m_PrimaryFrameOffset;
    bool m_HasOffset = false;
    NqRigidBodyMassProperties m_MassProperties;

    // Places in the tree and among all bodies.
    std::size_t m_Entry = 0;
    std::size_t m_Body = 0;

    // Into the manipulator that owns this link.
    const NqKinematicTree* m_Tree = nullptr;
    const NqManipulatorLink* m_Carrier =
        this; ///< the link that the joint moves: this one unless it is fixed to another
    const NqManipulatorLink* m_Parent = nullptr;
};
