#pragma once

#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>

class NqEndEffectorPlacement;
class NqIndividualManipulator;
class NqManipulatorActiveState;

/// What an end-effector is asked for a velocity towards a target with: the target, in the system frame, the
/// velocity that is wanted with it, that of the step before, and the length of a step, in s.
struct NqTargetRequest {
    const NqIndividualManipulator& manipulator;
    const NqEndEffectorPlacement& desiredPlacement;
    const NqXmlRealVector& desiredVelocity;
    const NqXmlRealVector& previousVelocity;
    double timeStep;
    NqManipulatorActiveState& state;
};
