#include <nqControlCore/filter/NqScalarMotionFilter.h>

#include <nqControlCore/filter/NqMotionProfile.h>
#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>
#include <cmath>

const NqToken& NqScalarMotionFilter::classToken() {
    return NqControlCore::NqScalarMotionFilterToken;
}

NqScalarMotionFilter NqScalarMotionFilter::nullObject() {
    constexpr double unlimited = 1e300;
    NqScalarMotionFilter filter;
    filter.m_Threshold = unlimited;
    filter.m_AccelerationThreshold = unlimited;
    filter.m_Gain = 1.0;
    return filter;
}

bool NqScalarMotionFilter::calculateVelocity(double actualValue, double desiredValue, double desiredVelocity,
                                             double previousVelocity, double timeStep,
                                             double& filteredVelocity) const {
    const double h = timeStep;
    const double e = desiredValue - actualValue;
    if (!filteringActive()) {
        filteredVelocity = e / NqMath::nonZeroPos(h);
        return true;
    }
    if (filteringMode() > ThreeHalves) {
        Nq::Print::instance().write(
            Nq::PrintFailure, "NqScalarMotionFilter::calculateGeneralMotion()->bad filtering mode: %d.\n",
            filteringMode());
        return false;
    }
    const double a = speedFactor() * std::min(m_DecelerationThreshold, m_AccelerationThreshold);
    const double vmax = speedFactor() * m_Threshold;
    const double speedThreshold = applyFilter(e, m_Gain, vmax, a, h, filteredVelocity);
    filteredVelocity += desiredVelocity;
    imposeVelocityThreshold(filteredVelocity);
    imposeAccelerationThreshold(previousVelocity, speedThreshold, h, filteredVelocity);
    return true;
}

bool NqScalarMotionFilter::filterVelocity(double velocity, double previousVelocity, double timeStep,
                                          double& filteredVelocity) const {
    filteredVelocity = velocity;
    imposeVelocityThreshold(filteredVelocity);
    imposeAccelerationThreshold(previousVelocity, 0.0, timeStep, filteredVelocity);
    return true;
}

double NqScalarMotionFilter::applyFilter(double error, double gain, double velocityLimit,
                                         double accelerationLimit, double timeStep, double& result) const {
    const double h = timeStep;
    const double a = accelerationLimit;
    const double d = std::fabs(error);
    const double stepSpeed = error / NqMath::nonZeroPos(h);

    switch (filteringMode()) {
    case Proportional:
        result = NqMotionProfile::proportionalGain(a, velocityLimit, gain, h) * error;
        return 0.0;
    case Trapezoidal:
        result = NqMotionProfile::trapezoidalGain(a, d, h) * error;
        if (a * h * 2.0 > std::fabs(result) && std::fabs(result) > std::fabs(stepSpeed)) {
            result = stepSpeed;
        }
        return a * h;
    case ThreeHalves: {
        constexpr double n = 0.5;
        const double k = NqMotionProfile::threeHalvesScale(n, a, velocityLimit);
        result = NqMotionProfile::threeHalvesGain(n, k, d, h) * error;
        const double slowSquared = NqMotionProfile::threeHalvesSlowSquared(n, k, h);
        const double squaredSpeed = result * result;
        if (slowSquared > squaredSpeed && squaredSpeed > stepSpeed * stepSpeed) {
            result = stepSpeed;
        }
        return slowSquared;
    }
    default:
        return 0.0;
    }
}

void NqScalarMotionFilter::imposeVelocityThreshold(double& velocity) const {
    const double limit = m_Threshold * speedFactor();
    if (std::fabs(velocity) > limit) {
        velocity = (limit / std::fabs(velocity)) * velocity;
    }
}

void NqScalarMotionFilter::imposeAccelerationThreshold(double previousVelocity, double speedThreshold,
                                                       double timeStep, double& velocity) const {
    const bool isLimited = filteringMode() == Proportional ||
                           (filteringMode() <= ThreeHalves && std::fabs(velocity) >= speedThreshold * 2.0);
    const double change = velocity - previousVelocity;
    const double acceleration = std::fabs(change) / NqMath::nonZeroPos(timeStep);
    const double limit = m_AccelerationThreshold * speedFactor();
    if (isLimited && acceleration > limit) {
        velocity = (limit / acceleration) * change + previousVelocity;
    }
}
