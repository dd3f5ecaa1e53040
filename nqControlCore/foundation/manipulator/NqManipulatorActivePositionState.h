#pragma once

#include <nqControlCore/foundation/manipulator/NqCacheGeneration.h>
#include <nqControlCore/foundation/manipulator/NqKinematicTree.h>
#include <nqControlCore/foundation/manipulator/NqPositionState.h>
#include <nqControlCore/foundation/manipulator/NqStampedCache.h>

#include <optional>
#include <vector>

class NqIndividualManipulator;

/// A position state together with the link frames computed from it.
///
/// The first query about a link after a change computes the DH frames of all moving links; further queries
/// only read. What a query returns by reference holds until the state changes or is asked about another
/// manipulator. Once it has been asked about a manipulator, nothing allocates.
class NqManipulatorActivePositionState {
public:
    /// A state of no size, for manipulators that it will be asked about.
    NqManipulatorActivePositionState() = default;
    /// A state for one manipulator: all joints at zero, the base at the origin.
    explicit NqManipulatorActivePositionState(const NqIndividualManipulator& manipulator);
    NqManipulatorActivePositionState(const NqManipulatorActivePositionState&) = default;
    NqManipulatorActivePositionState& operator=(const NqManipulatorActivePositionState&) = default;
    virtual ~NqManipulatorActivePositionState() = default;

    virtual const NqPositionState& positionState() const { return m_PositionState; }

    /// Replaces the state. In a state made for a manipulator, a vector of another size prints a line at print
    /// type 4; missing joints count as 0 and surplus ones are dropped. In others, missing joints are added as
    /// 0, with the same line, when a manipulator asks for them.
    virtual void setPositionState(const NqPositionState& positionState);

    // For the links, which know their tree and their places in it.

    /// DH frame of an entry, in the system frame.
    const NqCoordinateSystemTransformation& linkFrame(const NqKinematicTree& tree, std::size_t entry) {
        update(tree);
        return m_Frames[entry];
    }
    /// Frame at the constant offset of a body from its entry's DH frame, in the system frame.
    const NqCoordinateSystemTransformation& primaryFrame(const NqKinematicTree& tree, std::size_t entry,
                                                         std::size_t body,
                                                         const NqCoordinateSystemTransformation& offset) {
        update(tree);
        return m_PrimaryFrames.get(body, m_Generation.value(), [&] { return m_Frames[entry] * offset; });
    }
    /// DH frames of all entries.
    const std::vector<NqCoordinateSystemTransformation>& linkFrames(const NqKinematicTree& tree) {
        update(tree);
        return m_Frames;
    }
    /// Moments of all entries of which only those of the first order are up to date.
    const NqCompositeMoments& firstMoments(const NqKinematicTree& tree);
    /// Moments of all entries.
    const NqCompositeMoments& compositeMoments(const NqKinematicTree& tree);
    /// Mass properties of an entry and all that hangs from it, in its DH frame.
    const NqRigidBodyMassProperties& compositeMassProperties(const NqKinematicTree& tree, std::size_t entry);

    /// Changes with whatever the results for `tree` depend on.
    std::uint64_t generation(const NqKinematicTree& tree) {
        update(tree);
        return m_Generation.value();
    }

private:
    void update(const NqKinematicTree& tree) {
        if (m_FramesGeneration != m_Generation.value() || m_TreeId != tree.id()) {
            computeFrames(tree);
        }
    }
    void computeFrames(const NqKinematicTree& tree);

    NqPositionState m_PositionState;
    std::optional<std::size_t> m_NumberOfJoints;

    NqCacheGeneration m_Generation;
    std::uint64_t m_TreeId = 0;
    std::uint64_t m_FramesGeneration = 0;
    std::uint64_t m_FirstMomentsGeneration = 0;
    std::uint64_t m_SecondMomentsGeneration = 0;
    std::vector<NqCoordinateSystemTransformation> m_Frames;
    NqStampedCache<NqCoordinateSystemTransformation> m_PrimaryFrames;
    NqCompositeMoments m_Moments;
    NqStampedCache<NqRigidBodyMassProperties> m_Composites;
};
