#pragma once

#include <cmath>

/// Scalar functions that are safe in a control loop.
class NqMath {
public:
    static double sqrt(double x) { return std::sqrt(x); }

    /// Arc cosine in [0, pi]; the argument is clamped to [-1, 1]. A NaN passes through.
    static double acos(double x) { return std::acos(x > 1.0 ? 1.0 : (x < -1.0 ? -1.0 : x)); }

    /// A divisor that is never zero: x where x > 1.0e-300, otherwise 1.0e-300 (for negative x, zero and NaN).
    static double nonZeroPos(const double& x) { return x > kSmallestDivisor ? x : kSmallestDivisor; }

private:
    static constexpr double kSmallestDivisor = 1.0e-300;
};
