#pragma once

#include <nqControlCore/endeffector/NqAxisRotateEndEffector.h>
#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/endeffector/NqLinearConstraintEndEffector.h>
#include <nqControlCore/endeffector/NqOrientationEndEffector.h>
#include <nqControlCore/endeffector/NqPointDistanceEndEffector.h>
#include <nqControlCore/endeffector/NqPointEndEffector.h>
#include <nqControlCore/endeffector/special/NqAccelerometerEndEffector.h>
#include <nqControlCore/endeffector/special/NqCenterOfMassEndEffector.h>
#include <nqControlCore/endeffector/special/NqCoordinatedJointEndEffector.h>
#include <nqControlCore/endeffector/special/NqDirectionalFrameEndEffector.h>
#include <nqControlCore/endeffector/special/NqFreeSpinInZEndEffector.h>
#include <nqControlCore/endeffector/special/NqLookAtEndEffector.h>
#include <nqControlCore/endeffector/special/NqOneDofGripperEndEffector.h>
#include <nqControlCore/endeffector/special/NqPlanarEndEffector.h>
#include <nqControlCore/endeffector/special/NqProjectedCenterOfMassEndEffector.h>
#include <nqControlCore/endeffector/special/NqRCMEndEffector.h>
#include <nqControlCore/endeffector/special/NqSagEndEffector.h>
#include <nqControlCore/endeffector/special/NqSewAngleEndEffector.h>
#include <nqControlCore/endeffector/special/NqSlideXSpinZEndEffector.h>
#include <nqControlCore/endeffector/special/NqSlidingEndEffector.h>
#include <nqControlCore/endeffector/special/NqSpatialMomentumEndEffector.h>
#include <nqControlCore/endeffector/special/NqXEndEffector.h>
#include <nqControlCore/endeffector/special/NqXyEndEffector.h>

/// A list of types, to be run through at compile time.
template <typename... Types>
struct NqTypeList {
    /// Calls `action.template operator()<Type>()` for each type, in order.
    template <typename Action>
    static void forEach(Action action) {
        (action.template operator()<Types>(), ...);
    }
};

/// All end-effector types that a file can hold, in the order of their registration. This is the one list:
/// both collections and the tests run over it.
using NqEndEffectorTypes =
    NqTypeList<NqPointEndEffector, NqFrameEndEffector, NqRCMEndEffector, NqXyEndEffector,
               NqLinearConstraintEndEffector, NqSlidingEndEffector, NqSlideXSpinZEndEffector,
               NqFreeSpinInZEndEffector, NqPlanarEndEffector, NqSagEndEffector, NqCenterOfMassEndEffector,
               NqProjectedCenterOfMassEndEffector, NqOrientationEndEffector, NqSpatialMomentumEndEffector,
               NqLookAtEndEffector, NqSewAngleEndEffector, NqPointDistanceEndEffector,
               NqAxisRotateEndEffector, NqCoordinatedJointEndEffector, NqXEndEffector,
               NqOneDofGripperEndEffector, NqDirectionalFrameEndEffector, NqAccelerometerEndEffector>;

class NqXmlBaseVariableCompoundType;

/// Registers the creators of all these types with a container.
void nqRegisterEndEffectorTypes(NqXmlBaseVariableCompoundType& container);

/// A new end-effector of the class that the container has registered under that element name, owned by the
/// caller; null where there is none, or it makes something else.
NqEndEffector* nqEndEffectorFromToken(const NqXmlBaseVariableCompoundType& container, const NqToken& token);
