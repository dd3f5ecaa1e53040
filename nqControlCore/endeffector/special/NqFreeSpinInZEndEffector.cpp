#include <nqControlCore/endeffector/special/NqFreeSpinInZEndEffector.h>

#include <algorithm>

void NqFreeSpinInZEndEffector::insertCommand(const NqTargetRequest& request,
                                             NqXmlRealVector& filtered) const {
    NqCoordinateSystemTransformation frame;
    if (!isRightSize(std::min(request.desiredVelocity.size(), request.previousVelocity.size()) >= doc()) ||
        !calculateFrameInSystem(request.manipulator, request.state, frame)) {
        return;
    }
    NqGeneralMotion desired;
    NqGeneralMotion previous;
    NqGeneralMotion out;
    convertToGeneralVelocity(request.desiredVelocity, frame.orientation(), desired);
    convertToGeneralVelocity(request.previousVelocity, frame.orientation(), previous);
    filterFrameEndEffectorVelocity(request.manipulator, request.desiredPlacement.coordSysXForm(), desired,
                                   previous, request.timeStep, request.state, out);
    putRows(out, frame.orientation(), filtered);
}

double NqFreeSpinInZEndEffector::difference(const NqEndEffectorPlacement& a,
                                            const NqEndEffectorPlacement& b) const {
    const NqCoordinateSystemTransformation& from = a;
    const NqCoordinateSystemTransformation& to = b;
    const double angle = NqMath::acos(from.orientation().zAxis().dot(to.orientation().zAxis()));
    return linearErrorWeight() * (to.translation() - from.translation()).mag() + angularErrorWeight() * angle;
}

void NqFreeSpinInZEndEffector::calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                                         const NqEndEffectorPlacement& desiredPlacement,
                                                         NqManipulatorActiveState& state,
                                                         NqXmlRealVector& error) const {
    NqCoordinateSystemTransformation frame;
    if (!calculateFrameInSystem(manipulator, state, frame)) {
        return;
    }
    constexpr bool matchTimes = true;
    constexpr bool zAxisOnly = true;
    constexpr bool applyProfile = false;
    NqGeneralMotion motion;
    motionFilter().calculateGeneralMotion(frame, desiredPlacement, {}, {}, 1.0, motion, matchTimes, zAxisOnly,
                                          applyProfile);
    putRows(motion, frame.orientation(), error);
}

void NqFreeSpinInZEndEffector::filterFrameEndEffectorVelocity(
    const NqIndividualManipulator& manipulator, const NqCoordinateSystemTransformation& desiredFrame,
    const NqGeneralMotion& desiredVelocity, const NqGeneralMotion& previousVelocity, double timeStep,
    NqManipulatorActiveState& state, NqGeneralMotion& filtered) const {
    constexpr bool matchTimes = true;
    constexpr bool zAxisOnly = true;
    constexpr bool applyProfile = true;
    motionFilter().calculateGeneralMotion(presentPlacement(manipulator, state), desiredFrame, desiredVelocity,
                                          previousVelocity, timeStep, filtered, matchTimes, zAxisOnly,
                                          applyProfile);
}

void NqFreeSpinInZEndEffector::convertToGeneralVelocity(const NqXmlRealVector& velocity,
                                                        const NqOrientation& orientation,
                                                        NqGeneralMotion& motion) const {
    motion = systemMotion(velocity, orientation);
}
