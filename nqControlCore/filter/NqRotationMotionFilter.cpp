#include <nqControlCore/filter/NqRotationMotionFilter.h>

#include <nqControlCore/filter/NqMotionProfile.h>
#include <nqControlCore/filter/NqRotationError.h>
#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>

const NqToken& NqRotationMotionFilter::classToken() {
    return NqControlCore::NqGeneralMotionFilterToken;
}

NqRotationMotionFilter NqRotationMotionFilter::nullObject() {
    NqRotationMotionFilter filter;
    filter.m_AngularGain = 1.0;
    return filter;
}

bool NqRotationMotionFilter::calculateRotationMotion(const NqOrientation& actualOrientation,
                                                     const NqOrientation& desiredOrientation,
                                                     const NqVector& desiredVelocity,
                                                     const NqVector& previousVelocity, double timeStep,
                                                     NqVector& filteredVelocity, bool zAxisOnly,
                                                     bool applyProfile) const {
    if (filteringMode() > ThreeHalves) {
        Nq::Print::instance().write(
            Nq::PrintFailure, "NqGeneralMotionFilter::calculateRotationMotion()->bad filtering mode: %d.\n",
            filteringMode());
        return false;
    }
    const double h = timeStep;
    const NqOrientation toActual = actualOrientation.inverse();
    const NqVector e = NqRotationError::between(toActual * desiredOrientation, zAxisOnly);
    if (!filteringActive()) {
        filteredVelocity = actualOrientation * (e / NqMath::nonZeroPos(h));
        return true;
    }

    NqVector v = e;
    if (applyProfile) {
        const double a =
            speedFactor() * std::min(m_AngularDecelerationThreshold, m_AngularAccelerationThreshold);
        const double vmax = speedFactor() * m_AngularVelocityThreshold;
        const double slowSquared = applyFilter(e, m_AngularGain, vmax, a, h, v);
        v += toActual * desiredVelocity;
        imposeVelocityThresholds(vmax, v);
        imposeAccelerationThresholds(toActual * previousVelocity,
                                     speedFactor() * m_AngularAccelerationThreshold, slowSquared, h, v);
    }
    filteredVelocity = actualOrientation * v;
    return true;
}

bool NqRotationMotionFilter::filterVelocity(const NqVector& velocity, const NqVector& previousVelocity,
                                            double timeStep, NqVector& filteredVelocity) const {
    NqVector limited = velocity;
    imposeVelocityThresholds(m_AngularVelocityThreshold * speedFactor(), limited);
    imposeAccelerationThresholds(previousVelocity, m_AngularAccelerationThreshold * speedFactor(), 0.0,
                                 timeStep, limited);
    filteredVelocity = limited;
    return true;
}

double NqRotationMotionFilter::applyFilter(const NqVector& error, double gain, double velocityLimit,
                                           double accelerationLimit, double timeStep,
                                           NqVector& result) const {
    return NqMotionProfile::approach(*this, error, gain, velocityLimit, accelerationLimit, timeStep, result);
}

void NqRotationMotionFilter::imposeVelocityThresholds(double limit, NqVector& velocity) const {
    NqMotionProfile::limitSpeed(limit, velocity);
}

void NqRotationMotionFilter::imposeAccelerationThresholds(const NqVector& previousVelocity, double limit,
                                                          double slowSquared, double timeStep,
                                                          NqVector& velocity) const {
    NqMotionProfile::limitChange(*this, previousVelocity, limit, slowSquared, timeStep, velocity);
}
