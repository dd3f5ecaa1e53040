#pragma once

/// A real that is not negative. Negative values and NaN are taken as zero.
class NqNonNegReal {
public:
    constexpr NqNonNegReal() = default;
    constexpr NqNonNegReal(double value) : m_Value(value > 0.0 ? value : 0.0) {}

    constexpr operator double() const { return m_Value; }

private:
    double m_Value = 0.0;
};
