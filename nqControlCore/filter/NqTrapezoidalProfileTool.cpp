#include <nqControlCore/filter/NqTrapezoidalProfileTool.h>

#include <nqControlCore/foundation/math/NqMath.h>

#include <cmath>
#include <initializer_list>

namespace {

/// Tolerance of the goal time against the minimum (s), and of the discriminant against 0.
constexpr double kTolerance = 1e-6;

/// The sign of the initial velocity in the equation of the cruise speed: 1 at rest and towards the target, -1
/// away from it and over no distance, 0 where the product underflows.
double relativeSign(double initialVelocity, double distance) {
    if (initialVelocity == 0.0) {
        return 1.0;
    }
    if (distance == 0.0) {
        return -1.0;
    }
    const double product = initialVelocity * distance;
    if (product > 0.0) {
        return 1.0;
    }
    return product == 0.0 ? 0.0 : -1.0;
}

} // namespace

NqTrapezoidalProfileTool::NqTrapezoidalProfileTool() = default;

bool NqTrapezoidalProfileTool::setParameters(double acceleration, double maxVelocity,
                                             double initialVelocity) {
    if (acceleration <= 0.0 || maxVelocity <= 0.0) {
        return false;
    }
    m_Acceleration = acceleration;
    m_MaxVelocity = maxVelocity;
    m_InitialVelocity = initialVelocity;
    updateScaledAcceleration();
    return true;
}

void NqTrapezoidalProfileTool::setAcceleration(double acceleration) {
    if (acceleration > 0.0) {
        m_Acceleration = acceleration;
        updateScaledAcceleration();
    }
}

void NqTrapezoidalProfileTool::setMaxVelocity(double maxVelocity) {
    if (maxVelocity > 0.0) {
        m_MaxVelocity = maxVelocity;
    }
}

void NqTrapezoidalProfileTool::setSpeedFactor(double factor) {
    if (factor > 0.0) {
        m_SpeedFactor = factor;
        updateScaledAcceleration();
    }
}

bool NqTrapezoidalProfileTool::computeMinimumTime(double distance, double& time) const {
    const double a = m_SpeedFactor * m_Acceleration;
    const double m = m_SpeedFactor * m_MaxVelocity;
    const double v = m_InitialVelocity;
    const double D = std::abs(distance);
    const double s = v * v * 0.5 / a;

    if (v * distance >= 0.0) {
        const double r = m * m / a - s; // covered by a profile that just touches m
        if (s >= D) {
            time = 2.0 * NqMath::sqrt((s - D) / a) + std::abs(v / a);
        } else if (r >= D) {
            time = (2.0 * NqMath::sqrt((s + D) * a) - std::abs(v)) / a;
        } else {
            time = (2.0 * m - std::abs(v)) / a + (D - r) / m;
        }
        return true;
    }

    const double w = s + D;
    const double timeToStop = std::abs(v / a);
    if (m * m / a >= w) {
        time = 2.0 * NqMath::sqrt(w / a) + timeToStop;
    } else {
        time = (2.0 * m - std::abs(v)) / a + timeToStop + (w - m * m / a) / m;
    }
    return true;
}

bool NqTrapezoidalProfileTool::computeProfileVelocity(double distance, double time, double& velocity) const {
    double minimumTime = 0.0;
    computeMinimumTime(distance, minimumTime);
    if (minimumTime - time > kTolerance) {
        return false;
    }

    const double a = m_SpeedFactor * m_Acceleration;
    const double m = m_SpeedFactor * m_MaxVelocity;
    const double v = m_InitialVelocity;
    const double D = std::abs(distance);
    const double p = std::abs(v) * relativeSign(v, distance) + a * time;
    double discriminant = p * p - 4.0 * (D * a + v * 0.5 * v);
    if (std::abs(discriminant) < kTolerance) {
        discriminant = 0.0;
    } else if (discriminant < 0.0) {
        return false;
    }

    const double q = NqMath::sqrt(discriminant);
    const bool isNegative = distance < 0.0 || (distance == 0.0 && v > 0.0);
    for (const double root : {(p - q) * 0.5, (q + p) * 0.5}) {
        const double cruise = isNegative ? -root : root;
        const double stopTime = std::abs(cruise) / a;
        const double changeTime = std::abs(cruise - v) / a;
        const double timeBeforeStop = time - stopTime;
        if (std::abs(cruise) <= m && timeBeforeStop >= changeTime && changeTime >= 0.0 &&
            timeBeforeStop >= 0.0) {
            velocity = cruise;
            return true;
        }
    }
    return false;
}
