#include <nqControlCore/foundation/math/NqOrientation.h>

#include <nqControlCore/foundation/math/NqMath.h>

#include <limits>

namespace {

// A quaternion whose length is 1 to rounding is kept as it is, so that what is written reads back to the same
// bits.
constexpr double kUnitLengthTolerance = 16.0 * std::numeric_limits<double>::epsilon();

} // namespace

NqOrientation NqOrientation::fromZTo(const NqVector& unit) {
    // Of the two forms of the quaternion each is exact to rounding on its half of the sphere.
    NqOrientation rotation;
    const double sine = std::hypot(unit[0], unit[1]);
    if (unit[2] >= 0.0) {
        rotation.setFromQuaternion(1.0 + unit[2], -unit[1], unit[0], 0.0);
    } else if (sine > 0.0) {
        rotation.setFromQuaternion(sine / (1.0 - unit[2]), -unit[1] / sine, unit[0] / sine, 0.0);
    } else {
        rotation.setFromQuaternion(0.0, 1.0, 0.0, 0.0);
    }
    return rotation;
}

void NqOrientation::setFromAngleAxis(double angle, const NqVector& axis) {
    const NqVector scaled = axis * NqMath::scaleForSquares(axis.x(), axis.y(), axis.z());
    const double length = scaled.mag();
    if (length == 0.0) {
        *this = NqOrientation();
        return;
    }
    const NqVector u = (std::sin(0.5 * angle) / length) * scaled;
    *this = NqOrientation(std::cos(0.5 * angle), u[0], u[1], u[2]);
}

void NqOrientation::getAngleAxis(double& angle, NqVector& axis) const {
    // Of q and -q the one with the scalar not negative has its angle in [0, pi].
    const NqVector u = m_Scalar < 0.0 ? NqVector(-m_X, -m_Y, -m_Z) : NqVector(m_X, m_Y, m_Z);
    angle = 2.0 * std::atan2(u.mag(), std::fabs(m_Scalar));
    axis = u.unitVector();
}

void NqOrientation::setFromQuaternion(double q0, double q1, double q2, double q3) {
    const double scale = NqMath::scaleForSquares(q0, q1, q2, q3);
    q0 *= scale;
    q1 *= scale;
    q2 *= scale;
    q3 *= scale;
    const double squared = q0 * q0 + q1 * q1 + q2 * q2 + q3 * q3;
    if (squared == 0.0) {
        *this = NqOrientation();
    } else if (std::fabs(squared - 1.0) <= kUnitLengthTolerance) {
        *this = NqOrientation(q0, q1, q2, q3);
    } else {
        const double length = std::sqrt(squared);
        *this = NqOrientation(q0 / length, q1 / length, q2 / length, q3 / length);
    }
}

void NqOrientation::getDcmColumns(NqVector& x, NqVector& y, NqVector& z) const {
    x = xAxis();
    y = NqVector(2.0 * (m_X * m_Y - m_Scalar * m_Z), 1.0 - 2.0 * (m_X * m_X + m_Z * m_Z),
                 2.0 * (m_Y * m_Z + m_Scalar * m_X));
    z = zAxis();
}

void NqOrientation::getDcmRows(NqVector& first, NqVector& second, NqVector& third) const {
    inverse().getDcmColumns(first, second, third);
}

void NqOrientation::setFromDcmColumns(const NqVector& x, const NqVector& y, const NqVector& z) {
    // The largest of the four squared components is at least a quarter: dividing by it is well-conditioned.
    const double trace = x[0] + y[1] + z[2];
    if (trace >= x[0] && trace >= y[1] && trace >= z[2]) {
        setFromQuaternion(1.0 + trace, y[2] - z[1], z[0] - x[2], x[1] - y[0]);
    } else if (x[0] >= y[1] && x[0] >= z[2]) {
        setFromQuaternion(y[2] - z[1], 1.0 + x[0] - y[1] - z[2], y[0] + x[1], z[0] + x[2]);
    } else if (y[1] >= z[2]) {
        setFromQuaternion(z[0] - x[2], y[0] + x[1], 1.0 - x[0] + y[1] - z[2], z[1] + y[2]);
    } else {
        setFromQuaternion(x[1] - y[0], z[0] + x[2], z[1] + y[2], 1.0 - x[0] - y[1] + z[2]);
    }
}
