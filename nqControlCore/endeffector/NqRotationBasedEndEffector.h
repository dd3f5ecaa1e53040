#pragma once

#include <nqControlCore/endeffector/NqFilteredEndEffector.h>

/// Base of the end-effectors that constrain a rotation.
class NqRotationBasedEndEffector : public NqFilteredEndEffector<NqRotationMotionFilter> {};
