#pragma once

#include <nqControlCore/foundation/math/NqOrientation.h>
#include <nqControlCore/foundation/math/NqVector.h>

/// A spatial motion (velocity, acceleration, small displacement): the linear part of a reference point, then
/// the angular part. Index 0 to 2 runs over the linear, 3 to 5 over the angular part; it is not checked.
class NqGeneralMotion {
public:
    constexpr NqGeneralMotion() = default;
    constexpr NqGeneralMotion(const NqVector& linear, const NqVector& angular)
        : m_Linear(linear), m_Angular(angular) {}

    constexpr const NqVector& linear() const { return m_Linear; }
    constexpr const NqVector& angular() const { return m_Angular; }
    void setLinear(const NqVector& linear) { m_Linear = linear; }
    void setAngular(const NqVector& angular) { m_Angular = angular; }

    constexpr const double& operator[](unsigned index) const {
        return index < 3 ? m_Linear[index] : m_Angular[index - 3];
    }
    constexpr bool operator==(const NqGeneralMotion&) const = default;

    /// Moves the reference point by `displacement`: linear += angular x displacement.
    constexpr NqGeneralMotion& transformBy(const NqVector& displacement) {
        m_Linear += m_Angular.cross(displacement);
        return *this;
    }

    /// Rotates both parts.
    constexpr NqGeneralMotion& transformBy(const NqOrientation& orientation) {
        m_Linear = orientation * m_Linear;
        m_Angular = orientation * m_Angular;
        return *this;
    }

private:
    NqVector m_Linear;
    NqVector m_Angular;
};

/// The motion with both parts rotated.
constexpr NqGeneralMotion operator*(const NqOrientation& orientation, const NqGeneralMotion& motion) {
    return {orientation * motion.linear(), orientation * motion.angular()};
}
