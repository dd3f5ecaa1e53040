#pragma once

#include <nqControlCore/foundation/math/NqMath.h>

#include <cmath>

/// A vector in three dimensions: x, y, z, by index 0 to 2 or by name. The index is not checked.
class NqVector {
public:
    constexpr NqVector() = default;
    constexpr NqVector(const double& x, const double& y, const double& z) : m_Components{x, y, z} {}

    /// The unit vector along an axis, scaled.
    static constexpr NqVector xVector(const double& scale) { return {scale, 0.0, 0.0}; }
    static constexpr NqVector yVector(const double& scale) { return {0.0, scale, 0.0}; }
    static constexpr NqVector zVector(const double& scale) { return {0.0, 0.0, scale}; }

    constexpr double& operator[](unsigned index) { return m_Components[index]; }
    constexpr const double& operator[](unsigned index) const { return m_Components[index]; }

    constexpr double& x() { return m_Components[0]; }
    constexpr double& y() { return m_Components[1]; }
    constexpr double& z() { return m_Components[2]; }
    constexpr const double& x() const { return m_Components[0]; }
    constexpr const double& y() const { return m_Components[1]; }
    constexpr const double& z() const { return m_Components[2]; }
    void setX(double value) { m_Components[0] = value; }
    void setY(double value) { m_Components[1] = value; }
    void setZ(double value) { m_Components[2] = value; }

    constexpr NqVector& operator+=(const NqVector& v) {
        m_Components[0] += v[0];
        m_Components[1] += v[1];
        m_Components[2] += v[2];
        return *this;
    }
    constexpr NqVector& operator-=(const NqVector& v) {
        m_Components[0] -= v[0];
        m_Components[1] -= v[1];
        m_Components[2] -= v[2];
        return *this;
    }
    constexpr NqVector& operator*=(double scale) {
        m_Components[0] *= scale;
        m_Components[1] *= scale;
        m_Components[2] *= scale;
        return *this;
    }

    constexpr NqVector operator+(const NqVector& v) const { return {x() + v[0], y() + v[1], z() + v[2]}; }
    constexpr NqVector operator-(const NqVector& v) const { return {x() - v[0], y() - v[1], z() - v[2]}; }
    constexpr NqVector operator-() const { return {-x(), -y(), -z()}; }
    constexpr NqVector operator*(double scale) const { return {x() * scale, y() * scale, z() * scale}; }
    constexpr NqVector operator/(const double& divisor) const {
        return {x() / divisor, y() / divisor, z() / divisor};
    }
    constexpr bool operator==(const NqVector&) const = default;

    constexpr NqVector cross(const NqVector& v) const {
        return {y() * v[2] - z() * v[1], z() * v[0] - x() * v[2], x() * v[1] - y() * v[0]};
    }
    constexpr double dot(const NqVector& v) const { return x() * v[0] + y() * v[1] + z() * v[2]; }
    constexpr double magSquared() const { return dot(*this); }
    double mag() const { return std::sqrt(magSquared()); }

    /// This vector at length 1, however short or long it is; the x axis for the zero vector.
    NqVector unitVector() const {
        const NqVector scaled = *this * NqMath::scaleForSquares(x(), y(), z());
        const double length = scaled.mag();
        return length == 0.0 ? xVector(1.0) : scaled / length;
    }
    /// Brings this vector to length 1, as unitVector() does.
    NqVector& normalize() { return *this = unitVector(); }

private:
    double m_Components[3] = {0.0, 0.0, 0.0};
};

constexpr NqVector operator*(double scale, const NqVector& v) {
    return v * scale;
}
