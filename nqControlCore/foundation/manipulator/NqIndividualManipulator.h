#pragma once

#include <nqControlCore/foundation/manipulator/NqKinematicTree.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorLink.h>

#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

/// One manipulator: a tree of labelled links. The object is itself the base link, root of the tree.
///
/// Joints are numbered from 0 in the order in which they were added, so that indices rise from the base to
/// the leaves. A manipulator that nobody changes may be used by several threads at once. Copies share nothing
/// with their source.
class NqIndividualManipulator : public NqManipulatorLink {
public:
    /// A base without label and mass.
    NqIndividualManipulator() : NqIndividualManipulator(std::string(), std::string()) {}

    /// The base alone, with its mass properties about the origin of its frame.
    NqIndividualManipulator(const std::string& manipulatorLabel, const std::string& baseLabel,
                            const NqRigidBodyMassProperties& massProperties = {});

    NqIndividualManipulator(const NqIndividualManipulator& other);
    NqIndividualManipulator& operator=(const NqIndividualManipulator& other);

    /// Adds a link to one that is there and gives it; its address stays for the life of the manipulator.
    ///
    /// placement       the link's primary frame in the parent's primary frame, at joint position 0
    /// axis            direction of the joint's axis in the link's primary frame, of any length; the axis
    /// passes through
    ///                 that frame's origin. Of no account for a fixed joint.
    /// massProperties  of the link alone, about the origin of its primary frame and in that frame's axes
    ///
    /// The z axis of the DH frame is the axis; its x axis follows by the smallest rotation from the primary
    /// frame, so that the two frames are the same where the axis is z.
    ///
    /// Null, with a line at print type 4 and nothing changed, for an empty label or one that is taken, a
    /// parent that isn't there, an axis without direction, or numbers that aren't finite.
    const NqManipulatorLink* addLink(const std::string& parentLabel, const std::string& label,
                                     const NqJointDescription& joint,
                                     const NqCoordinateSystemTransformation& placement,
                                     const NqVector& axis = NqVector::zVector(1.0),
                                     const NqRigidBodyMassProperties& massProperties = {});

    virtual const std::string& manipulatorLabel() const { return m_ManipulatorLabel; }

    /// The width of a Jacobian without base columns.
    virtual unsigned numberOfJoints() const { return static_cast<unsigned>(m_MovingLinks.size()); }

    /// The link with that label, the base included. Null if there is none, and for an empty label.
    virtual const NqManipulatorLink* linkByLabel(const std::string& label) const;

    /// The link that joint `index` moves; null if there is none.
    virtual const NqManipulatorLink* linkByIndex(unsigned index) const;

    /// The base frame in the system frame.
    virtual const NqCoordinateSystemTransformation&
    baseFrameInSystem(NqManipulatorActivePositionState& state) const;

    /// The centre of mass of the whole manipulator, in the system frame; the base frame's origin where there
    /// is no mass.
    virtual NqVector centerOfMass(NqManipulatorActivePositionState& state) const;

    /// Linear momentum (kg m/s) of the whole manipulator for a unit rate of each joint, by joint index, in
    /// the axes of the system frame: the columns of a Jacobian of its first moment. Holds as long as frames
    /// do.
    virtual std::span<const NqVector> linearMomentaOfUnitRates(NqManipulatorActivePositionState& state) const;

    /// The same for the angular momentum (kg m^2/s) about the origin of the base frame.
    virtual std::span<const NqVector>
    angularMomentaOfUnitRates(NqManipulatorActivePositionState& state) const;

    /// Linear momentum of the whole manipulator as it moves, the motion of its base included, in the axes of
    /// the system frame: its mass times the velocity of its centre of mass.
    virtual const NqVector& linearMomentum(NqManipulatorActiveState& state) const;

    /// Its angular momentum about the origin of the base frame.
    virtual const NqVector& angularMomentum(NqManipulatorActiveState& state) const;

    /// All labelled links, bodies on fixed joints included: the base first, then in the order of addition.
    virtual unsigned numberOfLinks() const { return static_cast<unsigned>(m_Links.size() + 1); }
    /// One of these; null if there is none.
    virtual const NqManipulatorLink* link(unsigned number) const;

    /// The moving links as flat arrays; changes with every link that is added.
    const NqKinematicTree& kinematicTree() const { return m_KinematicTree; }

private:
    NqManipulatorLink* body(std::size_t number) { return number == 0 ? this : m_Links[number - 1].get(); }
    void copyLinks(const NqIndividualManipulator& other);
    /// Enters a link into the tables below.
    void attach(NqManipulatorLink& link);

    std::string m_ManipulatorLabel;
    NqKinematicTree m_KinematicTree;
    std::vector<std::unique_ptr<NqManipulatorLink>> m_Links; ///< all bodies but the base
    std::vector<const NqManipulatorLink*> m_MovingLinks;     ///< by joint index
    std::unordered_map<std::string, const NqManipulatorLink*> m_LinksByLabel;
};
