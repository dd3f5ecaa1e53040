#pragma once

#include <nqControlCore/foundation/xml/NqToken.h>

/// Names of the elements of the loop's settings, in a namespace of their own.
namespace NqLoop {

extern const NqToken NqAccelerationLimitsToken;
extern const NqToken NqAccelerationTimeToken;
extern const NqToken NqApproachToken;
extern const NqToken NqBaseWeightsToken;
extern const NqToken NqBlockedToken;
extern const NqToken NqControlLoopSettingsToken;
extern const NqToken NqDampingToken;
extern const NqToken NqHeldJointsToken;
extern const NqToken NqHoldToken;
extern const NqToken NqIsBaseFixedToken;
extern const NqToken NqJointWeightsToken;
extern const NqToken NqPostureGainToken;
extern const NqToken NqPostureToken;
extern const NqToken NqSingularityThresholdToken;
extern const NqToken NqSlideToken;
extern const NqToken NqSoftGainToken;
extern const NqToken NqTimeStepToken;
extern const NqToken NqToleranceToken;

} // namespace NqLoop
