#pragma once

#include <nqControlCore/filter/NqBaseMotionFilter.h>
#include <nqControlCore/foundation/math/NqMath.h>

#include <cmath>

/// What the motion filters have in common: the shapes of the approach to a target, and the limits of speed
/// and of its change.
///
/// With e the error, d its length, h the time step, a the deceleration and vmax the limit of speed, the
/// approach velocity is
///
///     proportional:  g e,  g = a / vmax, at most a given gain and at most 1 / h
///     trapezoidal:   e / d sqrt(2 a d), the speed from which the deceleration a stops at the target
///     three halves:  (k / d^n)^(1 / (n + 1)) e,  k = (n + 1) a / vmax^(1 - n),  n the exponent
///
/// The last two have a squared speed below which they are slow: there a step never passes the target, and
/// the change of velocity is deliberately free.
class NqMotionProfile {
public:
    // Gains, 1/s, by which the error becomes the approach velocity.

    static double proportionalGain(double a, double vmax, double highestGain, double h) {
        double g = a / NqMath::nonZeroPos(vmax);
        if (g > highestGain) {
            g = highestGain;
        }
        return gainWithinStep(g, h);
    }

    /// A gain, brought down to 1 / h where it is above it.
    static double gainWithinStep(double g, double h) { return g * h > 1.0 ? g / (g * h) : g; }

    static double trapezoidalGain(double a, double d, double h) {
        return gainOrOneStep(NqMath::sqrt(a * 2.0 / NqMath::nonZeroPos(d)), h);
    }

    static double threeHalvesGain(double n, double k, double d, double h) {
        const double c = 1.0 / NqMath::nonZeroPos(n + 1.0);
        return gainOrOneStep(std::pow(k / NqMath::nonZeroPos(std::pow(d, n)), c), h);
    }

    /// A gain that overflowed, as one at the target can for an enormous acceleration or for a limit of speed
    /// of 0, becomes that of one step.
    static double gainOrOneStep(double g, double h) {
        return std::isinf(g) ? 1.0 / NqMath::nonZeroPos(h) : g;
    }

    /// k of three-halves mode.
    static double threeHalvesScale(double n, double a, double vmax) {
        return (n + 1.0) * a / NqMath::nonZeroPos(std::pow(vmax, 1.0 - n));
    }

    // Squared speeds below which a mode counts as slow.

    static double trapezoidalSlowSquared(double a, double h) { return (a * h) * 4.0 * (a * h); }

    static double threeHalvesSlowSquared(double n, double k, double h) {
        return std::pow(k * h, 1.0 / NqMath::nonZeroPos(n));
    }

    /// Where a velocity is slow, shortens it to what reaches the target within one step.
    template <typename Vector>
    static void holdToOneStep(double slowSquared, double distance, double h, Vector& velocity) {
        const double squaredSpeed = velocity.magSquared();
        if (slowSquared > squaredSpeed) {
            const double stepSpeed = distance / NqMath::nonZeroPos(h);
            if (squaredSpeed > stepSpeed * stepSpeed) {
                velocity = stepSpeed * velocity.unitVector();
            }
        }
    }

    /// The approach velocity for an error of length d, before anything holds it; untouched in a mode above 2.
    /// Returns the squared speed below which it is slow, 0 where no speed is.
    template <typename Vector>
    static double shape(unsigned mode, double n, const Vector& error, double d, double highestGain,
                        double vmax, double a, double h, Vector& velocity) {
        if (mode == NqBaseMotionFilter::Proportional) {
            velocity = proportionalGain(a, vmax, highestGain, h) * error;
        } else if (mode == NqBaseMotionFilter::Trapezoidal) {
            velocity = trapezoidalGain(a, d, h) * error;
            return trapezoidalSlowSquared(a, h);
        } else if (mode == NqBaseMotionFilter::ThreeHalves) {
            const double k = threeHalvesScale(n, a, vmax);
            velocity = threeHalvesGain(n, k, d, h) * error;
            return threeHalvesSlowSquared(n, k, h);
        }
        return 0.0;
    }

    /// The approach velocity in the filter's mode, without feed-forward or limits; otherwise as shape().
    template <typename Vector>
    static double approach(const NqBaseMotionFilter& filter, const Vector& error, double highestGain,
                           double vmax, double a, double h, Vector& velocity) {
        const double d = error.mag();
        const double slowSquared =
            shape(filter.filteringMode(), filter.exponent(), error, d, highestGain, vmax, a, h, velocity);
        holdToOneStep(slowSquared, d, h, velocity);
        return slowSquared;
    }

    /// Shortens a velocity to a limit of speed.
    template <typename Vector>
    static void limitSpeed(double limit, Vector& velocity) {
        const double f = factorTo(limit * limit, velocity.magSquared());
        if (1.0 > f) {
            velocity *= f;
        }
    }

    /// Shortens the change from the previous velocity to a limit of acceleration, except for a velocity that
    /// is slow in its mode, or of a mode above 2.
    template <typename Vector>
    static void limitChange(const NqBaseMotionFilter& filter, const Vector& previousVelocity, double limit,
                            double slowSquared, double h, Vector& velocity) {
        const unsigned mode = filter.filteringMode();
        const bool isLimited =
            mode == NqBaseMotionFilter::Proportional ||
            (mode <= NqBaseMotionFilter::ThreeHalves && velocity.magSquared() >= slowSquared);
        if (!isLimited) {
            return;
        }
        const Vector change = velocity - previousVelocity;
        const double f = factorTo(limit * limit, change.magSquared() / NqMath::nonZeroPos(h * h));
        if (1.0 > f) {
            velocity = previousVelocity + f * change;
        }
    }

    /// The factor that shortens a vector to a limit, both given squared: 1 for a vector within it.
    static double factorTo(double squaredLimit, double squaredMagnitude) {
        return squaredMagnitude > squaredLimit ? NqMath::sqrt(squaredLimit / squaredMagnitude) : 1.0;
    }
};
