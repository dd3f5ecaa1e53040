#pragma once

#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>

/// The robot whose links bear the names that the files of tests/golden use. Without any joint if it can't be
/// read.
const NqIndividualManipulator& nqNamedRobot();

/// One end-effector of each type, as its file says but without an external offset. Fewer if one can't be
/// read.
const NqEndEffectorVector& nqNamedEndEffectors();
