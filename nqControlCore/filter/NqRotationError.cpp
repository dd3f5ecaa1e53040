#include <nqControlCore/filter/NqRotationError.h>

#include <nqControlCore/foundation/math/NqMath.h>

#include <cmath>

namespace {

/// Whether a cosine belongs to an angle so small, from 0 or from the half turn, that the chord will do.
bool isNearlyOne(double cosine) {
    return cosine > 0.99 || cosine < -0.99;
}

/// Angle over sine of the angle whose cosine is given.
double arcOverSine(double cosine) {
    const double angle = NqMath::acos(cosine);
    return angle / std::sin(angle);
}

} // namespace

NqVector NqRotationError::shortWay(const NqOrientation& relative) {
    return rotationVector(relative, true);
}

NqVector NqRotationError::asItStands(const NqOrientation& relative) {
    return rotationVector(relative, false);
}

NqVector NqRotationError::rotationVector(const NqOrientation& relative, bool takesMagnitude) {
    double q0 = 0.0;
    NqVector q;
    relative.getQuaternion(q0, q[0], q[1], q[2]);
    const double sign = q0 > 0.0 ? 1.0 : (q0 == 0.0 ? 0.0 : -1.0);
    if (isNearlyOne(q0)) {
        return (sign * 2.0) * q;
    }
    return arcOverSine(takesMagnitude ? std::fabs(q0) : q0) * (sign * 2.0) * q;
}

NqVector NqRotationError::zAxis(const NqOrientation& relative) {
    const NqVector z = relative.zAxis();
    const NqVector turn(-z.y(), z.x(), 0.0);
    if (isNearlyOne(z.z())) {
        return turn;
    }
    return arcOverSine(std::fabs(z.z())) * turn;
}
