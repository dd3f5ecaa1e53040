#pragma once

#include <nqControlCore/foundation/xml/NqToken.h>

/// Names of the elements of the manipulator's states. They are unqualified: in a file they stand in the
/// namespace of the object that holds the state.
namespace NqManipulator {

extern const NqToken NqAccelerationStateToken;
extern const NqToken NqBaseFrameToken;
extern const NqToken NqBaseMotionToken;
extern const NqToken NqJointAccelerationsToken;
extern const NqToken NqJointPositionsToken;
extern const NqToken NqJointVelocitiesToken;
extern const NqToken NqPositionStateToken;
extern const NqToken NqVelocityStateToken;

} // namespace NqManipulator
