#include <nqControlCore/foundation/manipulator/NqManipulatorTokens.h>

namespace NqManipulator {

const NqToken NqAccelerationStateToken("accelerationState");
const NqToken NqBaseFrameToken("baseFrame");
const NqToken NqBaseMotionToken("baseMotion");
const NqToken NqJointAccelerationsToken("jointAccelerations");
const NqToken NqJointPositionsToken("jointPositions");
const NqToken NqJointVelocitiesToken("jointVelocities");
const NqToken NqPositionStateToken("positionState");
const NqToken NqVelocityStateToken("velocityState");

} // namespace NqManipulator
