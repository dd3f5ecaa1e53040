#pragma once

#include <nqControlCore/foundation/xml/NqToken.h>

/// Names of the elements of the manipulator's states. They are unqualified: in a file they stand in the
/// namespace of the object that holds the state.
namespace NqManipulator {

inline constexpr NqToken NqAccelerationStateToken("accelerationState");
inline constexpr NqToken NqBaseFrameToken("baseFrame");
inline constexpr NqToken NqBaseMotionToken("baseMotion");
inline constexpr NqToken NqJointAccelerationsToken("jointAccelerations");
inline constexpr NqToken NqJointPositionsToken("jointPositions");
inline constexpr NqToken NqJointVelocitiesToken("jointVelocities");
inline constexpr NqToken NqPositionStateToken("positionState");
inline constexpr NqToken NqVelocityStateToken("velocityState");

} // namespace NqManipulator
