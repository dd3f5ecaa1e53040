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

    /// A power of two, so that it costs no bit, by which to multiply numbers before their squares are summed:
    /// the sum then neither overflows nor vanishes. 1.0 for ordinary numbers, zeros and what isn't finite.
    template <typename... Numbers>
    static double scaleForSquares(Numbers... numbers) {
        const double sum = (... + (numbers * numbers));
        if (sum >= 1.0e-280 && sum <= 1.0e280) {
            return 1.0;
        }
        double largest = 0.0;
        ((largest = std::fabs(numbers) > largest ? std::fabs(numbers) : largest), ...);
        if (largest == 0.0 || !std::isfinite(largest)) {
            return 1.0;
        }
        const int exponent = -std::ilogb(largest);
        return std::ldexp(1.0, exponent < kLargestExponent ? exponent : kLargestExponent);
    }

private:
    static constexpr int kLargestExponent = 1023; // of a double
    static constexpr double kSmallestDivisor = 1.0e-300;
};
