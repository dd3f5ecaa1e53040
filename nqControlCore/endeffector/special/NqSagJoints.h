#pragma once

#include <nqControlCore/endeffector/NqEditableLists.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActivePositionState.h>

#include <array>
#include <span>
#include <vector>

class NqIndividualManipulator;
class NqManipulatorActiveState;

/// Joints that give way, and the springs in them, in the order of joint indices; looked up once and
/// remembered. Of more than three, the first three have rows and springs.
class NqSagJoints {
public:
    static constexpr unsigned theMost = 3;

    /// Takes the joints of those labels, unless some manipulator's were taken before. Labels that are unknown
    /// or of the base are left out in silence.
    void lookUp(const NqIndividualManipulator& manipulator, const NqLabelVector& labels);
    void clear();

    /// Whether that joint is one of them, be it one of the first or not.
    bool contains(unsigned joint) const { return joint < m_Flags.size() && m_Flags[joint]; }

    /// Indices of the first ones, as far as the manipulator has them: those that were taken may be another
    /// one's.
    std::span<const unsigned> first(const NqIndividualManipulator& manipulator) const;

    struct Spring {
        unsigned joint = 0;
        double stiffness = 0.0;
        NqVector axis; ///< of the joint in the system, with it and those before it at 0
    };
    /// The springs of the first ones, as many as there are stiffnesses. They hold until the next such call.
    std::span<const Spring> springs(const NqIndividualManipulator& manipulator,
                                    NqManipulatorActiveState& state, const NqXmlRealVector& stiffness);

private:
    std::vector<bool> m_Flags; ///< one for each joint
    std::array<unsigned, theMost> m_First{};
    unsigned m_Count = 0; ///< of the first ones
    std::array<Spring, theMost> m_Springs;
    NqPositionState m_UnsaggedPositions;
    NqManipulatorActivePositionState m_UnsaggedState;
};
