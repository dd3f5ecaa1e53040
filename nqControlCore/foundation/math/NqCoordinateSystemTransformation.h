#pragma once

#include <nqControlCore/foundation/math/NqGeneralMotion.h>
#include <nqControlCore/foundation/math/NqOrientation.h>
#include <nqControlCore/foundation/math/NqVector.h>

/// A rigid transformation, or the pose of one frame in another: rotation, then translation. Default is the
/// identity.
class NqCoordinateSystemTransformation {
public:
    constexpr NqCoordinateSystemTransformation() = default;
    constexpr NqCoordinateSystemTransformation(const NqVector& translation) : m_Translation(translation) {}
    constexpr NqCoordinateSystemTransformation(const NqOrientation& orientation)
        : m_Orientation(orientation) {}
    constexpr NqCoordinateSystemTransformation(const NqVector& translation, const NqOrientation& orientation)
        : m_Translation(translation), m_Orientation(orientation) {}

    static const NqCoordinateSystemTransformation& identity();

    constexpr const NqVector& translation() const { return m_Translation; }
    constexpr const NqOrientation& orientation() const { return m_Orientation; }
    void setTranslation(const NqVector& translation) { m_Translation = translation; }
    void setTranslationX(double x) { m_Translation.setX(x); }
    void setTranslationY(double y) { m_Translation.setY(y); }
    void setTranslationZ(double z) { m_Translation.setZ(z); }
    void setOrientation(const NqOrientation& orientation) { m_Orientation = orientation; }

    constexpr bool operator==(const NqCoordinateSystemTransformation&) const = default;

    /// Composition: (a * b) applies b first, then a.
    constexpr NqCoordinateSystemTransformation operator*(const NqCoordinateSystemTransformation& b) const {
        return {m_Orientation * b.m_Translation + m_Translation, m_Orientation * b.m_Orientation};
    }
    constexpr NqCoordinateSystemTransformation& operator*=(const NqCoordinateSystemTransformation& b) {
        return *this = *this * b;
    }

    /// The image of a point: rotated, then translated.
    constexpr NqVector operator*(const NqVector& point) const {
        return m_Orientation * point + m_Translation;
    }

    constexpr NqCoordinateSystemTransformation inverse() const {
        const NqOrientation back = m_Orientation.inverse();
        return {back * -m_Translation, back};
    }
    constexpr void invert() { *this = inverse(); }

    /// Moves the frame by a vector that is expressed in the frame itself.
    constexpr void outboardTransformBy(const NqVector& displacement) {
        m_Translation += m_Orientation * displacement;
    }

private:
    NqVector m_Translation;
    NqOrientation m_Orientation;
};

/// The motion seen from the other frame, referred to that frame's origin: with R and p the rotation and
/// translation, angular' = R angular, linear' = R linear + p x (R angular).
constexpr NqGeneralMotion operator*(const NqCoordinateSystemTransformation& transformation,
                                    const NqGeneralMotion& motion) {
    const NqVector angular = transformation.orientation() * motion.angular();
    return {transformation.orientation() * motion.linear() + transformation.translation().cross(angular),
            angular};
}
