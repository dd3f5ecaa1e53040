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
    if (filteringMode() > ThreeHalves) {
        Nq::Print::instance().write(
            Nq::PrintFailure, "NqGeneralMotionFilter::calculateGeneralMotion()->bad filtering mode: %d.\n",
            filteringMode());
        return false;
    }
    const double h = timeStep;
    const NqVector& o = m_Offset.value();
    const NqCoordinateSystemTransformation toActual = actualPlacement.inverse();
    const NqCoordinateSystemTransformation relative = toActual * desiredPlacement;
    const NqVector angularError = NqRotationError::between(relative.orientation(), zAxisOnly);
    const NqVector linearError = relative * o - o;

    NqVector linear = linearError;
    NqVector angular = angularError;
    if (!filteringActive()) {
        linear = linearError / NqMath::nonZeroPos(h);
        angular = angularError / NqMath::nonZeroPos(h);
    } else if (applyProfile) {
        const double factor = speedFactor();
        Part linearPart(linearError, factor * m_LinearVelocityThreshold, m_LinearGain);
        Part angularPart(angularError, factor * m_AngularVelocityThreshold, m_AngularGain);
        if (matchTimes) {
            matchTimesOf(linearPart, angularPart);
        }
        const double linearDeceleration =
            factor * std::min(m_LinearDecelerationThreshold, m_LinearAccelerationThreshold);
        const double angularDeceleration =
            factor * std::min(m_AngularDecelerationThreshold, m_AngularAccelerationThreshold);
        const double linearSlowSquared =
            applyFilter(linearError, linearPart.gain, linearPart.speedLimit, linearDeceleration, h, linear);
        const double angularSlowSquared = applyFilter(angularError, angularPart.gain, angularPart.speedLimit,
                                                      angularDeceleration, h, angular);

        // Velocities of the offset point, in the actual frame.
        NqGeneralMotion desired = desiredVelocity;
        desired.transformBy(toActual.orientation()).transformBy(o);
        NqGeneralMotion previous = previousVelocity;
        previous.transformBy(toActual.orientation()).transformBy(o);

        linear += desired.linear();
        angular += desired.angular();
        imposeVelocityThresholds(linearPart.speedLimit, angularPart.speedLimit, linear, angular);
        imposeAccelerationThresholds(previous, factor * m_LinearAccelerationThreshold,
                                     factor * m_AngularAccelerationThreshold, linearSlowSquared,
                                     angularSlowSquared, h, linear, angular);
    }
    filteredVelocity = actualPlacement.orientation() * NqGeneralMotion(linear - angular.cross(o), angular);
    return true;
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
