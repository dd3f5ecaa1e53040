#pragma once

#include "NqArmSketch.h"

#include <nqControlLoop/NqTargetKind.h>

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>

/// Makes stick figures of a manipulator.
class NqArmSketcher {
public:
    /// Both must outlive the sketcher.
    NqArmSketcher(const NqIndividualManipulator& manipulator, const std::vector<NqTargetKind>& kinds)
        : m_Manipulator(manipulator), m_Kinds(kinds), m_State(manipulator) {}

    /// A sketch that knows the joints' connections, without postures yet.
    NqArmSketch frame();

    /// The arm at joint positions, its base somewhere.
    NqArmSketch::Posture posture(const std::string& label, const std::vector<double>& positions,
                                 const NqCoordinateSystemTransformation& base = {});

private:
    const NqIndividualManipulator& m_Manipulator;
    const std::vector<NqTargetKind>& m_Kinds; ///< of the end-effectors
    NqManipulatorActiveState m_State;
};
