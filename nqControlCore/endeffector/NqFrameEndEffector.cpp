#include <nqControlCore/endeffector/NqFrameEndEffector.h>

#include <cmath>
#include <typeinfo>

double NqFrameEndEffector::difference(const NqEndEffectorPlacement& a,
                                      const NqEndEffectorPlacement& b) const {
    const NqCoordinateSystemTransformation relative = a.coordSysXForm().inverse() * b.coordSysXForm();
    double angle = 0.0;
    NqVector axis;
    relative.orientation().getAngleAxis(angle, axis);
    return relative.translation().mag() * linearErrorWeight() + std::fabs(angle) * angularErrorWeight();
}

void NqFrameEndEffector::calculateFilteredVelocityAndError(
    const NqIndividualManipulator& manipulator, const NqEndEffectorPlacement& desiredPlacement,
    const NqXmlRealVector& desiredVelocity, const NqXmlRealVector& previousVelocity, double timeStep,
    NqManipulatorActiveState& state, NqXmlRealVector& filtered, NqXmlRealVector& error) const {
    if (typeid(*this) != typeid(NqFrameEndEffector)) { // a subclass may have others
        NqEndEffector::calculateFilteredVelocityAndError(manipulator, desiredPlacement, desiredVelocity,
                                                         previousVelocity, timeStep, state, filtered, error);
        return;
    }
    constexpr bool matchTimes = true;
    constexpr bool zAxisOnly = false;
    NqGeneralMotion motion, way;
    motionFilter().calculateMotionAndError(
        presentPlacement(manipulator, state), desiredPlacement, generalVelocity(desiredVelocity),
        generalVelocity(previousVelocity), timeStep, motion, way, matchTimes, zAxisOnly);
    convertFromGeneralVelocity(motion, filtered);
    convertFromGeneralVelocity(way, error);
}
