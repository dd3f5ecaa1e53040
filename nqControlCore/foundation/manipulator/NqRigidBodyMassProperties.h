#pragma once

#include <nqControlCore/foundation/manipulator/NqSecondMoment.h>
#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/math/NqNonNegReal.h>

/// Mass (kg), first moment (kg m: mass times centre of mass) and second moment (kg m^2) of a rigid body, or
/// of several that move as one, about the origin of a frame and in its axes. Default is no mass.
class NqRigidBodyMassProperties {
public:
    constexpr NqRigidBodyMassProperties() = default;
    constexpr NqRigidBodyMassProperties(const NqNonNegReal& mass, const NqVector& firstMoment,
                                        const NqSecondMoment& secondMoment)
        : m_Mass(mass), m_FirstMoment(firstMoment), m_SecondMoment(secondMoment) {}

    /// Of a body with its centre of mass at the origin of `frame` and the inertia tensor `central` about it,
    /// in the axes of `frame`; the result is in the frame that `frame` is given in.
    static constexpr NqRigidBodyMassProperties fromCentral(const NqNonNegReal& mass,
                                                           const NqCoordinateSystemTransformation& frame,
                                                           const NqSecondMoment& central) {
        return NqRigidBodyMassProperties(mass, NqVector(), central).transformBy(frame);
    }

    constexpr const NqNonNegReal& mass() const { return m_Mass; }
    constexpr const NqVector& firstMoment() const { return m_FirstMoment; }
    constexpr const NqSecondMoment& secondMoment() const { return m_SecondMoment; }

    /// First moment over mass; the origin where there is no mass.
    constexpr NqVector centerOfMass() const { return m_Mass > 0.0 ? m_FirstMoment / m_Mass : NqVector(); }

    /// Adds a body given in the same frame.
    constexpr NqRigidBodyMassProperties& operator+=(const NqRigidBodyMassProperties& other) {
        m_Mass = m_Mass + other.m_Mass;
        m_FirstMoment += other.m_FirstMoment;
        m_SecondMoment += other.m_SecondMoment;
        return *this;
    }
    constexpr bool operator==(const NqRigidBodyMassProperties& other) const {
        return double(m_Mass) == double(other.m_Mass) && m_FirstMoment == other.m_FirstMoment &&
               m_SecondMoment == other.m_SecondMoment;
    }

    /// Rotates the body about the origin.
    constexpr NqRigidBodyMassProperties& transformBy(const NqOrientation& orientation) {
        m_FirstMoment = orientation * m_FirstMoment;
        m_SecondMoment.transformBy(orientation);
        return *this;
    }

    /// From the frame whose pose is `frame` into the one that the pose is given in. With r the rotated first
    /// moment and t the translation, r' = r + m t and I' = R I R^T + the inertia of 2 r (x) t + m t (x) t.
    constexpr NqRigidBodyMassProperties& transformBy(const NqCoordinateSystemTransformation& frame) {
        transformBy(frame.orientation());
        const NqVector& t = frame.translation();
        const NqVector shift = m_Mass * t;
        m_SecondMoment += NqSecondMoment::ofMoments(2.0 * m_FirstMoment + shift, t);
        m_FirstMoment += shift;
        return *this;
    }

private:
    NqNonNegReal m_Mass;
    NqVector m_FirstMoment;
    NqSecondMoment m_SecondMoment;
};
