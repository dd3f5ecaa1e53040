#pragma once

#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>

#include <vector>

/// Second moment of a mass distribution, as the inertia tensor about the origin of the frame that it is given
/// in: the sum over all mass of dm (|p|^2 1 - p p^T). The products of inertia stand as they are in that
/// matrix, so ixy() is the negative of the integral of x y dm.
class NqSecondMoment {
public:
    constexpr NqSecondMoment() = default;
    constexpr NqSecondMoment(double ixx, double ixy, double ixz, double iyy, double iyz, double izz)
        : m_Elements{ixx, ixy, ixz, iyy, iyz, izz} {}

    /// Of a point mass at `position`.
    static constexpr NqSecondMoment ofPointMass(double mass, const NqVector& position) {
        return ofMoments(mass * position, position);
    }

    /// The symmetric form (a.b) 1 - (a b^T + b a^T) / 2.
    static constexpr NqSecondMoment ofMoments(const NqVector& a, const NqVector& b) {
        return {a[1] * b[1] + a[2] * b[2],          -0.5 * (a[0] * b[1] + a[1] * b[0]),
                -0.5 * (a[0] * b[2] + a[2] * b[0]), a[0] * b[0] + a[2] * b[2],
                -0.5 * (a[1] * b[2] + a[2] * b[1]), a[0] * b[0] + a[1] * b[1]};
    }

    constexpr double ixx() const { return m_Elements[0]; }
    constexpr double ixy() const { return m_Elements[1]; }
    constexpr double ixz() const { return m_Elements[2]; }
    constexpr double iyy() const { return m_Elements[3]; }
    constexpr double iyz() const { return m_Elements[4]; }
    constexpr double izz() const { return m_Elements[5]; }

    /// An element of the matrix; the indices are not checked.
    constexpr double operator()(unsigned row, unsigned column) const {
        const unsigned first = row < column ? row : column;
        return m_Elements[row + column + (first == 0 ? 0 : 1)];
    }

    constexpr NqVector operator*(const NqVector& v) const {
        return {ixx() * v[0] + ixy() * v[1] + ixz() * v[2], ixy() * v[0] + iyy() * v[1] + iyz() * v[2],
                ixz() * v[0] + iyz() * v[1] + izz() * v[2]};
    }
    constexpr NqSecondMoment& operator+=(const NqSecondMoment& other) {
        for (unsigned i = 0; i < 6; ++i) {
            m_Elements[i] += other.m_Elements[i];
        }
        return *this;
    }
    constexpr bool operator==(const NqSecondMoment&) const = default;

    /// Rotates the mass distribution: R I R^T.
    constexpr NqSecondMoment& transformBy(const NqOrientation& orientation) {
        double q[4] = {};
        orientation.getQuaternion(q[0], q[1], q[2], q[3]);
        const NqSecondMoment original = *this;
        rotate(q, original.m_Elements, m_Elements);
        return *this;
    }

    /// result[i] = R[i] I[i] R[i]^T, with the rotations of `frames`; the same bits as one by one, but sooner.
    static void rotateAll(const std::vector<NqSecondMoment>& moments,
                          const std::vector<NqCoordinateSystemTransformation>& frames,
                          std::vector<NqSecondMoment>& result);

private:
    /// With quaternions q, scalar first. A number may be several that are worked on side by side.
    template <typename Number>
    static constexpr void rotate(const Number (&q)[4], const Number (&elements)[6], Number (&result)[6]) {
        const Number &s = q[0], &x = q[1], &y = q[2], &z = q[3];
        // The columns a, b, c of R; the last is the image of z, and the middle one their cross product.
        const Number a0 = 1.0 - 2.0 * (y * y + z * z), a1 = 2.0 * (x * y + s * z), a2 = 2.0 * (x * z - s * y);
        const Number c0 = 2.0 * (x * z + s * y), c1 = 2.0 * (y * z - s * x), c2 = 1.0 - 2.0 * (x * x + y * y);
        const Number b0 = c1 * a2 - c2 * a1, b1 = c2 * a0 - c0 * a2, b2 = c0 * a1 - c1 * a0;
        const Number &xx = elements[0], &xy = elements[1], &xz = elements[2];
        const Number &yy = elements[3], &yz = elements[4], &zz = elements[5];
        // Rows of R I.
        const Number u0 = xx * a0 + xy * b0 + xz * c0, u1 = xy * a0 + yy * b0 + yz * c0,
                     u2 = xz * a0 + yz * b0 + zz * c0;
        const Number v0 = xx * a1 + xy * b1 + xz * c1, v1 = xy * a1 + yy * b1 + yz * c1,
                     v2 = xz * a1 + yz * b1 + zz * c1;
        const Number w0 = xx * a2 + xy * b2 + xz * c2, w1 = xy * a2 + yy * b2 + yz * c2,
                     w2 = xz * a2 + yz * b2 + zz * c2;
        result[0] = u0 * a0 + u1 * b0 + u2 * c0;
        result[1] = u0 * a1 + u1 * b1 + u2 * c1;
        result[2] = u0 * a2 + u1 * b2 + u2 * c2;
        result[3] = v0 * a1 + v1 * b1 + v2 * c1;
        result[4] = v0 * a2 + v1 * b2 + v2 * c2;
        result[5] = w0 * a2 + w1 * b2 + w2 * c2;
    }

    double m_Elements[6] = {}; ///< the upper triangle, by rows
};
