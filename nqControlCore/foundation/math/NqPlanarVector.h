#pragma once

#include <nqControlCore/foundation/math/NqMath.h>
#include <nqControlCore/foundation/math/NqVector.h>

/// A vector in the plane: x, y, by index 0 and 1 or by name. The index is not checked.
class NqPlanarVector {
public:
    constexpr NqPlanarVector() = default;
    constexpr NqPlanarVector(const double& x, const double& y) : m_Components{x, y} {}

    constexpr double& operator[](unsigned index) { return m_Components[index]; }
    constexpr const double& operator[](unsigned index) const { return m_Components[index]; }
    constexpr const double& x() const { return m_Components[0]; }
    constexpr const double& y() const { return m_Components[1]; }
    void setX(double value) { m_Components[0] = value; }
    void setY(double value) { m_Components[1] = value; }

    /// Keeps x and y of a vector in space.
    void setToProjectionOf(const NqVector& v) { *this = NqPlanarVector(v.x(), v.y()); }

    constexpr NqPlanarVector& operator+=(const NqPlanarVector& v) {
        m_Components[0] += v[0];
        m_Components[1] += v[1];
        return *this;
    }
    constexpr NqPlanarVector& operator*=(double scale) {
        m_Components[0] *= scale;
        m_Components[1] *= scale;
        return *this;
    }
    constexpr NqPlanarVector operator+(const NqPlanarVector& v) const { return {x() + v[0], y() + v[1]}; }
    constexpr NqPlanarVector operator-(const NqPlanarVector& v) const { return {x() - v[0], y() - v[1]}; }
    constexpr NqPlanarVector operator/(double divisor) const { return {x() / divisor, y() / divisor}; }
    constexpr bool operator==(const NqPlanarVector&) const = default;

    constexpr double magSquared() const { return x() * x() + y() * y(); }
    double mag() const { return std::sqrt(magSquared()); }

    /// This vector at length 1, however short or long it is; the x axis for the zero vector.
    NqPlanarVector unitVector() const {
        const double scale = NqMath::scaleForSquares(x(), y());
        const NqPlanarVector scaled(x() * scale, y() * scale);
        const double length = scaled.mag();
        return length == 0.0 ? NqPlanarVector(1.0, 0.0) : scaled / length;
    }

private:
    double m_Components[2] = {0.0, 0.0};
};

constexpr NqPlanarVector operator*(double scale, const NqPlanarVector& v) {
    return {scale * v[0], scale * v[1]};
}
