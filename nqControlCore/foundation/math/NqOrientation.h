#pragma once

#include <nqControlCore/foundation/math/NqVector.h>

/// A rotation, held as a unit quaternion (scalar first). Default is the identity.
///
/// The quaternion keeps its sign through products, the inverse and setFromAngleAxis, so q and -q stay apart
/// although they are the same rotation; operator== compares the numbers.
class NqOrientation {
public:
    constexpr NqOrientation() = default;

    /// The rotation by `angle` (radians) about `axis`; see setFromAngleAxis.
    NqOrientation(double angle, const NqVector& axis) { setFromAngleAxis(angle, axis); }

    /// The rotation by `angle` (radians) about the z axis.
    static NqOrientation aboutZ(double angle) { return NqOrientation().turnedAboutZ(angle); }

    /// The smallest rotation that takes the z axis to a unit vector; about x by half a turn for -z.
    static NqOrientation fromZTo(const NqVector& unit);

    /// Composition: (a * b) applies b first, then a.
    constexpr NqOrientation operator*(const NqOrientation& b) const {
        return {m_Scalar * b.m_Scalar - m_X * b.m_X - m_Y * b.m_Y - m_Z * b.m_Z,
                m_Scalar * b.m_X + m_X * b.m_Scalar + m_Y * b.m_Z - m_Z * b.m_Y,
                m_Scalar * b.m_Y - m_X * b.m_Z + m_Y * b.m_Scalar + m_Z * b.m_X,
                m_Scalar * b.m_Z + m_X * b.m_Y - m_Y * b.m_X + m_Z * b.m_Scalar};
    }

    /// The rotated vector: v + 2 s (u x v) + 2 u x (u x v), with s the scalar and u the vector part.
    constexpr NqVector operator*(const NqVector& v) const {
        const NqVector u(m_X, m_Y, m_Z);
        const NqVector t = 2.0 * u.cross(v);
        return v + m_Scalar * t + u.cross(t);
    }

    /// The rotated vector, into `result`.
    constexpr void transform(const NqVector& v, NqVector& result) const { result = *this * v; }

    /// This rotation after one by `angle` (radians) about the z axis: the product with that rotation.
    NqOrientation turnedAboutZ(double angle) const {
        const double c = std::cos(0.5 * angle);
        const double s = std::sin(0.5 * angle);
        return {m_Scalar * c - m_Z * s, m_X * c + m_Y * s, m_Y * c - m_X * s, m_Z * c + m_Scalar * s};
    }

    constexpr NqOrientation inverse() const { return {m_Scalar, -m_X, -m_Y, -m_Z}; }

    constexpr bool operator==(const NqOrientation&) const = default;

    /// Rotation by `angle` (radians) about `axis`, which need not have length 1; a zero axis gives the
    /// identity.
    void setFromAngleAxis(double angle, const NqVector& axis);

    /// The angle in [0, pi] and the unit axis of this rotation; the x axis at the identity.
    void getAngleAxis(double& angle, NqVector& axis) const;

    /// The quaternion, scalar first.
    constexpr void getQuaternion(double& q0, double& q1, double& q2, double& q3) const {
        q0 = m_Scalar;
        q1 = m_X;
        q2 = m_Y;
        q3 = m_Z;
    }

    /// Sets from a quaternion, scalar first, and normalises it; one of length 1 to rounding keeps its bits,
    /// and four zeros give the identity.
    void setFromQuaternion(double q0, double q1, double q2, double q3);

    /// Columns of the direction cosine matrix: the images of the unit x, y and z vectors.
    void getDcmColumns(NqVector& x, NqVector& y, NqVector& z) const;

    /// Rows of the direction cosine matrix.
    void getDcmRows(NqVector& first, NqVector& second, NqVector& third) const;

    /// Sets from the columns of a direction cosine matrix, expected orthonormal and right-handed.
    /// Method of Shepperd, "Quaternion from rotation matrix", J. Guidance and Control 1(3), 1978.
    void setFromDcmColumns(const NqVector& x, const NqVector& y, const NqVector& z);

    /// The image of the unit x vector.
    constexpr NqVector xAxis() const {
        return {1.0 - 2.0 * (m_Y * m_Y + m_Z * m_Z), 2.0 * (m_X * m_Y + m_Scalar * m_Z),
                2.0 * (m_X * m_Z - m_Scalar * m_Y)};
    }

    /// The image of the unit z vector.
    constexpr NqVector zAxis() const {
        return {2.0 * (m_X * m_Z + m_Scalar * m_Y), 2.0 * (m_Y * m_Z - m_Scalar * m_X),
                1.0 - 2.0 * (m_X * m_X + m_Y * m_Y)};
    }

private:
    constexpr NqOrientation(double q0, double q1, double q2, double q3)
        : m_Scalar(q0), m_X(q1), m_Y(q2), m_Z(q3) {}

    double m_Scalar = 1.0;
    double m_X = 0.0;
    double m_Y = 0.0;
    double m_Z = 0.0;
};
