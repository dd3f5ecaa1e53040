#include <nqControlCore/filter/NqPointMotionFilter.h>

#include <nqControlCore/foundation/math/NqMath.h>
#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>
#include <cmath>

template <>
struct NqPointMotionFilter::Dimension<NqVector> {
    static constexpr const char* badModeMessage =
        "NqPointMotionFilter::calculate3DVelcoity()->bad filtering mode: %d.\n";
    static constexpr bool countsDesiredVelocityTwice = true;
    static double exponent(const NqPointMotionFilter& filter) { return filter.exponent(); }
};

template <>
struct NqPointMotionFilter::Dimension<NqPlanarVector> {
    static constexpr const char* badModeMessage =
        "NqPointMotionFilter::calculate2DVelcoity()->bad filtering mode: %d.\n";
    static constexpr bool countsDesiredVelocityTwice = false;
    static double exponent(const NqPointMotionFilter&) { return 0.5; }
};

namespace {

/// Close to the target the speed never exceeds what reaches it within one step: where the squared speed is
/// below the threshold, the velocity is shortened to the distance over the time step.
template <typename Vector>
void holdToOneStep(double squaredSpeedThreshold, double distance, double timeStep, Vector& velocity) {
    const double squaredSpeed = velocity.magSquared();
    if (squaredSpeedThreshold > squaredSpeed) {
        const double stepSpeed = distance / NqMath::nonZeroPos(timeStep);
        if (squaredSpeed > stepSpeed * stepSpeed) {
            velocity = stepSpeed * velocity.unitVector();
        }
    }
}

} // namespace

const NqToken& NqPointMotionFilter::classToken() {
    return NqControlCore::NqPointMotionFilterToken;
}

NqPointMotionFilter NqPointMotionFilter::nullObject() {
    constexpr double unlimited = 1e300;
    NqPointMotionFilter filter;
    filter.m_Threshold = unlimited;
    filter.m_AccelerationThreshold = unlimited;
    filter.m_DecelerationThreshold = unlimited;
    filter.m_LinearGain = 1.0;
    return filter;
}

void NqPointMotionFilter::setAccelerationAndDecelerationThresholds(double threshold) {
    setAccelerationThreshold(threshold);
    setDecelerationThreshold(threshold);
}

template <typename Vector>
bool NqPointMotionFilter::calculateVelocity(const Vector& actualPosition, const Vector& desiredPosition,
                                            const Vector& desiredVelocity, const Vector& previousVelocity,
                                            double timeStep, Vector& filteredVelocity) const {
    const double h = timeStep;
    const Vector e = desiredPosition - actualPosition;
    if (!filteringActive()) {
        filteredVelocity = e / NqMath::nonZeroPos(h);
        return true;
    }

    const double d = e.mag();
    const double a = speedFactor() * std::min(m_DecelerationThreshold, m_AccelerationThreshold);
    const double vmax = speedFactor() * m_Threshold;
    double squaredSpeedThreshold = 0.0;
    Vector out;

    switch (filteringMode()) {
    case Proportional: {
        double g = a / NqMath::nonZeroPos(vmax);
        if (g > m_LinearGain) {
            g = m_LinearGain;
        }
        if (g * h > 1.0) {
            g = g / (g * h);
        }
        out = g * e;
        out += desiredVelocity;
        limitVelocity(out);
        limitAcceleration(previousVelocity, h, out);
        filteredVelocity = out;
        return true;
    }
    case Trapezoidal:
        out = NqMath::sqrt(a * 2.0 / NqMath::nonZeroPos(d)) * e;
        squaredSpeedThreshold = (a * h) * 4.0 * (a * h);
        break;
    case ThreeHalves: {
        const double n = Dimension<Vector>::exponent(*this);
        const double k = (n + 1.0) * a / NqMath::nonZeroPos(std::pow(vmax, 1.0 - n));
        const double c = 1.0 / NqMath::nonZeroPos(n + 1.0);
        out = std::pow(k / NqMath::nonZeroPos(std::pow(d, n)), c) * e;
        if constexpr (Dimension<Vector>::countsDesiredVelocityTwice) {
            out += desiredVelocity;
        }
        squaredSpeedThreshold = std::pow(k * h, 1.0 / NqMath::nonZeroPos(n));
        break;
    }
    default:
        Nq::Print::instance().write(Nq::PrintFailure, Dimension<Vector>::badModeMessage, filteringMode());
        return false;
    }

    holdToOneStep(squaredSpeedThreshold, d, h, out);
    out += desiredVelocity;
    limitVelocity(out);
    // At creeping speed the change of velocity is deliberately free.
    if (out.magSquared() >= squaredSpeedThreshold) {
        limitAcceleration(previousVelocity, h, out);
    }
    filteredVelocity = out;
    return true;
}

template <typename Vector>
void NqPointMotionFilter::shortenToSpeed(Vector& velocity) const {
    const double squaredSpeed = velocity.magSquared();
    const double squaredLimit = m_Threshold * m_Threshold * speedFactor() * speedFactor();
    if (squaredSpeed > squaredLimit) {
        velocity *= NqMath::sqrt(squaredLimit / squaredSpeed);
    }
}

template <typename Vector>
void NqPointMotionFilter::shortenChange(const Vector& previousVelocity, double timeStep,
                                        Vector& velocity) const {
    const Vector change = velocity - previousVelocity;
    const double squaredAcceleration = change.magSquared() / NqMath::nonZeroPos(timeStep * timeStep);
    const double squaredLimit =
        m_AccelerationThreshold * m_AccelerationThreshold * speedFactor() * speedFactor();
    if (squaredAcceleration > squaredLimit) {
        velocity = previousVelocity + NqMath::sqrt(squaredLimit / squaredAcceleration) * change;
    }
}

bool NqPointMotionFilter::calculate3DVelocity(const NqVector& actualPosition, const NqVector& desiredPosition,
                                              const NqVector& desiredVelocity,
                                              const NqVector& previousVelocity, double timeStep,
                                              NqVector& filteredVelocity) const {
    return calculateVelocity(actualPosition, desiredPosition, desiredVelocity, previousVelocity, timeStep,
                             filteredVelocity);
}

bool NqPointMotionFilter::filter3DVelocity(const NqVector& velocity, const NqVector& previousVelocity,
                                           double timeStep, NqVector& filteredVelocity) const {
    NqVector limited = velocity;
    limit3DVelocity(limited);
    limit3DAcceleration(previousVelocity, timeStep, limited);
    filteredVelocity = limited;
    return true;
}

bool NqPointMotionFilter::calculate2DVelocity(const NqPlanarVector& actualPosition,
                                              const NqPlanarVector& desiredPosition,
                                              const NqPlanarVector& desiredVelocity,
                                              const NqPlanarVector& previousVelocity, double timeStep,
                                              NqPlanarVector& filteredVelocity) const {
    return calculateVelocity(actualPosition, desiredPosition, desiredVelocity, previousVelocity, timeStep,
                             filteredVelocity);
}

bool NqPointMotionFilter::filter2DVelocity(const NqPlanarVector& velocity,
                                           const NqPlanarVector& previousVelocity, double timeStep,
                                           NqPlanarVector& filteredVelocity) const {
    NqPlanarVector limited = velocity;
    limit2DVelocity(limited);
    limit2DAcceleration(previousVelocity, timeStep, limited);
    filteredVelocity = limited;
    return true;
}

void NqPointMotionFilter::limit3DVelocity(NqVector& velocity) const {
    shortenToSpeed(velocity);
}

void NqPointMotionFilter::limit2DVelocity(NqPlanarVector& velocity) const {
    shortenToSpeed(velocity);
}

void NqPointMotionFilter::limit3DAcceleration(const NqVector& previousVelocity, const double& timeStep,
                                              NqVector& velocity) const {
    shortenChange(previousVelocity, timeStep, velocity);
}

void NqPointMotionFilter::limit2DAcceleration(const NqPlanarVector& previousVelocity, const double& timeStep,
                                              NqPlanarVector& velocity) const {
    shortenChange(previousVelocity, timeStep, velocity);
}
