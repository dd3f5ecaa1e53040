#include <nqControlCore/endeffector/special/NqCenterOfMassBasedEndEffector.h>

void NqCenterOfMassBasedEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                                        NqManipulatorActiveState& state,
                                                        NqEndEffectorPlacement& placement) const {
    NqVector point;
    calculatePointPlacement(manipulator, state, point);
    placement.setCoordSysXForm(point);
}

void NqCenterOfMassBasedEndEffector::calculatePointPlacement(const NqIndividualManipulator& manipulator,
                                                             NqManipulatorActiveState& state,
                                                             NqVector& point) const {
    point = manipulator.centerOfMass(state.activePositionState());
}

NqVector NqCenterOfMassBasedEndEffector::firstMomentRate(const NqManipulatorLink& link,
                                                         NqManipulatorActiveState& state) const {
    NqManipulatorActivePositionState& p = state.activePositionState();
    const NqGeneralMotion motion = link.unitRateMotion(link.linkFrameInSystem(p).translation(), p);
    return motion.linear() + motion.angular().cross(link.compositeFirstMoment(p));
}

NqVector NqCenterOfMassBasedEndEffector::centerOfMassVelocity(const NqIndividualManipulator& manipulator,
                                                              NqManipulatorActiveState& state) {
    const double mass = manipulator.compositeMass();
    return mass != 0.0 ? (1.0 / mass) * manipulator.linearMomentum(state) : NqVector();
}
