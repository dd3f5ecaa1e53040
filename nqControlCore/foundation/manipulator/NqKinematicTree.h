#pragma once

#include <nqControlCore/foundation/manipulator/NqCompositeMoments.h>
#include <nqControlCore/foundation/manipulator/NqRigidBodyMassProperties.h>
#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/math/NqGeneralMotion.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// The moving links of a manipulator as flat arrays, and the passes that compute all of their frames,
/// velocities, accelerations and mass properties. It holds what is constant; results stand in vectors of the
/// caller.
///
/// Entry 0 is the base, entry j + 1 the link that joint j moves; a parent stands before its children. All
/// frames are DH frames: the origin at the joint, the z axis along the joint's axis.
class NqKinematicTree {
public:
    NqKinematicTree();

    /// Names the content: a copy has the same, any change takes a new one.
    std::uint64_t id() const { return m_Id; }

    /// Entries: the base and one per joint.
    std::size_t size() const { return m_Entries.size(); }
    std::size_t numberOfJoints() const { return m_Entries.size() - 1; }
    /// Labelled bodies: the base, the moving links and what is fixed to them.
    std::size_t numberOfBodies() const { return m_NumberOfBodies; }

    /// Adds a joint with its link and gives its entry. `placement` is the link's frame in the parent's at
    /// position 0.
    std::size_t addJoint(std::size_t parent, bool isPrismatic,
                         const NqCoordinateSystemTransformation& placement);

    /// Adds a body that moves with `entry`, its mass properties given in the frame of that entry.
    void addBody(std::size_t entry, const NqRigidBodyMassProperties& massProperties);

    bool isPrismatic(std::size_t entry) const { return m_Entries[entry].isPrismatic; }

    /// Whether a motion of the joint of `inboard`, or of the base, moves `entry`.
    bool carries(std::size_t inboard, std::size_t entry) const {
        while (entry > inboard) {
            entry = m_Entries[entry].parent;
        }
        return entry == inboard;
    }

    /// Mass of an entry and of all that hangs from it.
    double compositeMass(std::size_t entry) const { return m_CompositeMasses[entry]; }

    /// Calls `visit(entry)` for the entries from this one towards the base, which is not visited.
    template <typename Visit>
    void forEachInboardEntry(std::size_t entry, Visit visit) const {
        for (; entry != 0; entry = m_Entries[entry].parent) {
            visit(entry);
        }
    }

    /// Motion, in the system frame and referred to `origin`, of a body carried by an entry with that frame,
    /// for a unit rate of the entry's joint; zero for the base.
    NqGeneralMotion unitRateMotion(std::size_t entry, const NqCoordinateSystemTransformation& frame,
                                   const NqVector& origin) const {
        if (entry == 0) {
            return {};
        }
        const NqVector axis = frame.orientation().zAxis();
        return m_Entries[entry].isPrismatic ? NqGeneralMotion(axis, NqVector())
                                            : NqGeneralMotion(axis.cross(origin - frame.translation()), axis);
    }

    // The passes go from the base to the leaves, and from the leaves to the base for moments. Vectors of
    // joint values must have an entry per joint, all others of the caller one per entry; the sizes are not
    // checked.

    /// Frames in the system frame.
    void computeFrames(const NqCoordinateSystemTransformation& baseFrame,
                       const std::vector<double>& positions,
                       std::vector<NqCoordinateSystemTransformation>& frames) const;

    /// Velocities of the frames' origins, in the system frame.
    void computeVelocities(const std::vector<NqCoordinateSystemTransformation>& frames,
                           const NqGeneralMotion& baseMotion, const std::vector<double>& rates,
                           std::vector<NqGeneralMotion>& velocities) const;

    /// Accelerations of the frames' origins, in the system frame.
    void computeAccelerations(const std::vector<NqCoordinateSystemTransformation>& frames,
                              const std::vector<NqGeneralMotion>& velocities,
                              const NqGeneralMotion& baseAcceleration, const std::vector<double>& rates,
                              const std::vector<double>& jointAccelerations,
                              std::vector<NqGeneralMotion>& accelerations) const;

    /// Moments of the first order. Sizes the vectors.
    void computeFirstMoments(const std::vector<NqCoordinateSystemTransformation>& frames,
                             NqCompositeMoments& moments) const;

    /// Moments of the second order, where those of the first are there. Sizes the vectors.
    void computeSecondMoments(const std::vector<NqCoordinateSystemTransformation>& frames,
                              NqCompositeMoments& moments) const;

private:
    struct Entry {
        std::size_t parent = 0;
        bool isPrismatic = false;
        NqCoordinateSystemTransformation placement;
    };

    void changed();

    std::uint64_t m_Id = 0;
    std::size_t m_NumberOfBodies = 0;
    std::vector<Entry> m_Entries;

    // Of each entry alone, about the origin of its DH frame and in its axes; and with all that hangs from it.
    std::vector<NqVector> m_FirstMoments;
    std::vector<NqSecondMoment> m_SecondMoments;
    std::vector<double> m_CompositeMasses;
};
