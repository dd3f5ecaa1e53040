#include <nqControlLoop/NqControlLoopTokens.h>

namespace NqLoop {

namespace {
const NqToken ns("http://nq.example/namespace/loop#");
} // namespace

const NqToken NqAccelerationLimitsToken = ns + "accelerationLimits";
const NqToken NqAccelerationTimeToken = ns + "accelerationTime";
const NqToken NqApproachToken = ns + "approach";
const NqToken NqBaseWeightsToken = ns + "baseWeights";
const NqToken NqBlockedToken = ns + "blocked";
const NqToken NqControlLoopSettingsToken = ns + "controlLoopSettings";
const NqToken NqDampingToken = ns + "damping";
const NqToken NqHeldJointsToken = ns + "heldJoints";
const NqToken NqHoldToken("hold");
const NqToken NqIsBaseFixedToken = ns + "isBaseFixed";
const NqToken NqJointWeightsToken = ns + "jointWeights";
const NqToken NqPostureGainToken = ns + "postureGain";
const NqToken NqPostureToken = ns + "posture";
const NqToken NqSingularityThresholdToken = ns + "singularityThreshold";
const NqToken NqSlideToken("slide");
const NqToken NqSoftGainToken = ns + "softGain";
const NqToken NqTimeStepToken = ns + "timeStep";
const NqToken NqToleranceToken = ns + "tolerance";

} // namespace NqLoop
