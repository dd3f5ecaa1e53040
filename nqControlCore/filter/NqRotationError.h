#pragma once

#include <nqControlCore/foundation/math/NqOrientation.h>

/// The error between an actual and a desired orientation as a rotation vector in the actual frame: axis times
/// angle. Each operation takes the relative orientation, inverse(actual) * desired.
///
/// Close to the identity, where the scalar part of the quaternion exceeds 0.99 in magnitude, twice the vector
/// part stands in for the rotation vector: they differ by less than 0.4 per cent there, and nothing is
/// divided by a small sine.
class NqRotationError {
public:
    /// The whole rotation, the short way round; with `zAxisOnly` that of the z axes, as zAxis() gives it.
    static NqVector between(const NqOrientation& relative, bool zAxisOnly) {
        return zAxisOnly ? zAxis(relative) : shortWay(relative);
    }

    /// The rotation vector of q or -q, whichever turns less; zero for a half turn, which has no short way.
    static NqVector shortWay(const NqOrientation& relative);

    /// As shortWay(), but away from the identity with the angle of q as it stands: above pi where its scalar
    /// part is negative, about the axis of the short way.
    static NqVector asItStands(const NqOrientation& relative);

    /// The rotation that aligns the z axes, which leaves the rotation about z free. A z axis that points the
    /// other way counts as aligned.
    static NqVector zAxis(const NqOrientation& relative);

private:
    static NqVector rotationVector(const NqOrientation& relative, bool takesMagnitude);
};
