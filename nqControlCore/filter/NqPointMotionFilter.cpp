#include <nqControlCore/filter/NqPointMotionFilter.h>

#include <nqControlCore/filter/NqMotionProfile.h>
#include <nqControlCore/foundation/math/NqMath.h>
#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>

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

    const unsigned mode = filteringMode();
    if (mode > ThreeHalves) {
        Nq::Print::instance().write(Nq::PrintFailure, Dimension<Vector>::badModeMessage, mode);
        return false;
    }

    const double d = e.mag();
    const double a = speedFactor() * std::min(m_DecelerationThreshold, m_AccelerationThreshold);
    const double vmax = speedFactor() * m_Threshold;
    Vector out;
    const double slowSquared =
        NqMotionProfile::shape(mode, Dimension<Vector>::exponent(*this), e, d, m_LinearGain, vmax, a, h, out);
    if (mode == ThreeHalves && Dimension<Vector>::countsDesiredVelocityTwice) {
        out += desiredVelocity;
    }
    NqMotionProfile::holdToOneStep(slowSquared, d, h, out);
    out += desiredVelocity;
    limitVelocity(out);
    if (out.magSquared() >= slowSquared) {
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
