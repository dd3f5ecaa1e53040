#pragma once

#include "NqArmSketch.h"

#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>

/// Makes stick figures of a manipulator.
class NqArmSketcher {
public:
    NqArmSketcher(const NqIndividualManipulator& manipulator, const NqEndEffectorVector& endEffectors)
        : m_Manipulator(manipulator), m_EndEffectors(endEffectors), m_State(manipulator) {}

    /// A sketch that knows the joints' connections, without postures yet.
    NqArmSketch frame();

    /// The arm at joint positions.
    NqArmSketch::Posture posture(const std::string& label, const std::vector<double>& positions);

private:
    const NqIndividualManipulator& m_Manipulator;
    const NqEndEffectorVector& m_EndEffectors;
    NqManipulatorActiveState m_State;
};
