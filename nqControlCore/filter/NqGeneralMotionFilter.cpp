#include <nqControlCore/filter/NqGeneralMotionFilter.h>

#include <nqControlCore/filter/NqMotionProfile.h>
#include <nqControlCore/filter/NqRotationError.h>
#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>

namespace {

/// One part of a motion on its way to the target: its limit of speed and its gain, and the square of the time
/// that it needs at the limit.
struct Part {
    double speedLimit;
    double gain;
    double squaredTime;

    Part(const NqVector& error, double limit, double highestGain)
        : speedLimit(limit), gain(highestGain),
          squaredTime(error.magSquared() / NqMath::nonZeroPos(limit * limit)) {}

    /// Slows the part down to the time of a later one.
    void matchTo(const Part& later) {
        const double f = NqMath::sqrt(squaredTime / NqMath::nonZeroPos(later.squaredTime));
        speedLimit *= f;
        gain *= f;
    }
};

/// Makes both parts arrive together. Times whose squares are within 1e-6 s^2 count as equal.
void matchTimesOf(Part& linear, Part& angular) {
    constexpr double tolerance = 1e-6;
    if (linear.squaredTime > angular.squaredTime + tolerance) {
        angular.matchTo(linear);
    } else if (angular.squaredTime > linear.squaredTime + tolerance) {
        linear.matchTo(angular);
    }
}

} // namespace

const NqToken& NqGeneralMotionFilter::classToken() {
    return NqControlCore::NqGeneralMotionFilterToken;
}

NqGeneralMotionFilter NqGeneralMotionFilter::nullObject() {
    NqGeneralMotionFilter filter;
    filter.m_LinearGain = 1.0;
    filter.m_AngularGain = 1.0;
    filter.m_AngularWeight = 1.0;
    filter.m_Threshold = 1e300;
    return filter;
}

bool NqGeneralMotionFilter::calculateGeneralMotion(const NqCoordinateSystemTransformation& actualPlacement,
                                                   const NqCoordinateSystemTransformation& desiredPlacement,
                                                   const NqGeneralMotion& desiredVelocity,
                                                   const NqGeneralMotion& previousVelocity, double timeStep,
                                                   NqGeneralMotion& filteredVelocity, bool matchTimes,
                                                   bool zAxisOnly, bool applyProfile) const {
    if (!isModeKnown()) {
        return false;
    }
    const PlacementError error = errorBetween(actualPlacement, desiredPlacement, zAxisOnly);
    NqGeneralMotion motion(error.linear, error.angular);
    if (applyProfile || !filteringActive()) {
        motion = approach(error, desiredVelocity, previousVelocity, timeStep, matchTimes);
    }
    filteredVelocity = ofOrigin(actualPlacement.orientation(), motion);
    return true;
}

bool NqGeneralMotionFilter::calculateMotionAndError(const NqCoordinateSystemTransformation& actualPlacement,
                                                    const NqCoordinateSystemTransformation& desiredPlacement,
                                                    const NqGeneralMotion& desiredVelocity,
                                                    const NqGeneralMotion& previousVelocity, double timeStep,
                                                    NqGeneralMotion& filteredVelocity, NqGeneralMotion& error,
                                                    bool matchTimes, bool zAxisOnly) const {
    if (!isModeKnown()) {
        return false;
    }
    const PlacementError bare = errorBetween(actualPlacement, desiredPlacement, zAxisOnly);
    const NqOrientation& actual = actualPlacement.orientation();
    filteredVelocity =
        ofOrigin(actual, approach(bare, desiredVelocity, previousVelocity, timeStep, matchTimes));
    error = ofOrigin(actual, NqGeneralMotion(bare.linear, bare.angular));
    return true;
}

bool NqGeneralMotionFilter::isModeKnown() const {
    if (filteringMode() > ThreeHalves) {
        Nq::Print::instance().write(
            Nq::PrintFailure, "NqGeneralMotionFilter::calculateGeneralMotion()->bad filtering mode: %d.\n",
            filteringMode());
        return false;
    }
    return true;
}

[[gnu::always_inline]] inline NqGeneralMotionFilter::PlacementError
NqGeneralMotionFilter::errorBetween(const NqCoordinateSystemTransformation& actualPlacement,
                                    const NqCoordinateSystemTransformation& desiredPlacement,
                                    bool zAxisOnly) const {
    const NqVector& o = m_Offset.value();
    // inverse(actual) * desired, in parts: as a whole it would go through memory.
    const NqOrientation toActual = actualPlacement.orientation().inverse();
    const NqVector origin = toActual * -actualPlacement.translation();
    const NqVector translation = toActual * desiredPlacement.translation() + origin;
    const NqOrientation rotation = toActual * desiredPlacement.orientation();
    return {toActual, rotation * o + translation - o, NqRotationError::between(rotation, zAxisOnly)};
}

/// The motion of the offset point, in the actual frame, that takes the error away: by the profile and under
/// the limits, or all in one step where filtering is switched off.
[[gnu::always_inline]] inline NqGeneralMotion
NqGeneralMotionFilter::approach(const PlacementError& error, const NqGeneralMotion& desiredVelocity,
                                const NqGeneralMotion& previousVelocity, double timeStep,
                                bool matchTimes) const {
    const double h = timeStep;
    if (!filteringActive()) {
        return {error.linear / NqMath::nonZeroPos(h), error.angular / NqMath::nonZeroPos(h)};
    }
    const double factor = speedFactor();
    Part linearPart(error.linear, factor * m_LinearVelocityThreshold, m_LinearGain);
    Part angularPart(error.angular, factor * m_AngularVelocityThreshold, m_AngularGain);
    if (matchTimes) {
        matchTimesOf(linearPart, angularPart);
    }
    const double linearDeceleration =
        factor * std::min(m_LinearDecelerationThreshold, m_LinearAccelerationThreshold);
    const double angularDeceleration =
        factor * std::min(m_AngularDecelerationThreshold, m_AngularAccelerationThreshold);
    NqVector linear = error.linear; // which a shape of a subclass may leave, or take for the error
    NqVector angular = error.angular;
    const double linearSlowSquared =
        applyFilter(error.linear, linearPart.gain, linearPart.speedLimit, linearDeceleration, h, linear);
    const double angularSlowSquared =
        applyFilter(error.angular, angularPart.gain, angularPart.speedLimit, angularDeceleration, h, angular);

    NqGeneralMotion desired = desiredVelocity;
    desired.transformBy(error.toActual).transformBy(m_Offset.value());
    NqGeneralMotion previous = previousVelocity;
    previous.transformBy(error.toActual).transformBy(m_Offset.value());

    linear += desired.linear();
    angular += desired.angular();
    imposeVelocityThresholds(linearPart.speedLimit, angularPart.speedLimit, linear, angular);
    imposeAccelerationThresholds(previous, factor * m_LinearAccelerationThreshold,
                                 factor * m_AngularAccelerationThreshold, linearSlowSquared,
                                 angularSlowSquared, h, linear, angular);
    return {linear, angular};
}

/// The motion of the actual frame's origin, in the frame that the placements are in, for one of the offset
/// point in the actual frame.
[[gnu::always_inline]] inline NqGeneralMotion
NqGeneralMotionFilter::ofOrigin(const NqOrientation& actual, const NqGeneralMotion& ofOffset) const {
    const NqVector& angular = ofOffset.angular();
    return actual * NqGeneralMotion(ofOffset.linear() - angular.cross(m_Offset.value()), angular);
}

bool NqGeneralMotionFilter::filterVelocity(const NqGeneralMotion& velocity,
                                           const NqGeneralMotion& previousVelocity, double timeStep,
                                           NqGeneralMotion& filteredVelocity) const {
    const NqVector& o = m_Offset.value();
    const double factor = speedFactor();
    NqGeneralMotion v = velocity;
    v.transformBy(o);
    NqGeneralMotion previous = previousVelocity;
    previous.transformBy(o);

    NqVector linear = v.linear();
    NqVector angular = v.angular();
    imposeVelocityThresholds(m_LinearVelocityThreshold * factor, m_AngularVelocityThreshold * factor, linear,
                             angular);
    imposeAccelerationThresholds(previous, factor * m_LinearAccelerationThreshold,
                                 factor * m_AngularAccelerationThreshold, 0.0, 0.0, timeStep, linear,
                                 angular);
    filteredVelocity = NqGeneralMotion(linear - angular.cross(o), angular);
    return true;
}

double NqGeneralMotionFilter::applyFilter(const NqVector& error, double gain, double velocityLimit,
                                          double accelerationLimit, double timeStep, NqVector& result) const {
    return NqMotionProfile::approach(*this, error, gain, velocityLimit, accelerationLimit, timeStep, result);
}

void NqGeneralMotionFilter::imposeVelocityThresholds(double linearLimit, double angularLimit,
                                                     NqVector& linear, NqVector& angular) const {
    NqMotionProfile::limitSpeed(linearLimit, linear);
    NqMotionProfile::limitSpeed(angularLimit, angular);
}

void NqGeneralMotionFilter::imposeAccelerationThresholds(const NqGeneralMotion& previousVelocity,
                                                         double linearLimit, double angularLimit,
                                                         double linearSlowSquared, double angularSlowSquared,
                                                         double timeStep, NqVector& linear,
                                                         NqVector& angular) const {
    NqMotionProfile::limitChange(*this, previousVelocity.linear(), linearLimit, linearSlowSquared, timeStep,
                                 linear);
    NqMotionProfile::limitChange(*this, previousVelocity.angular(), angularLimit, angularSlowSquared,
                                 timeStep, angular);
}
