#pragma once

#include <nqControlCore/foundation/math/NqOrientation.h>
#include <nqControlCore/foundation/math/NqVector.h>

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
        const NqVector x = orientation.xAxis(), z = orientation.zAxis(), y = z.cross(x);
        // The columns of R I.
        const NqVector a = ixx() * x + ixy() * y + ixz() * z;
        const NqVector b = ixy() * x + iyy() * y + iyz() * z;
        const NqVector c = ixz() * x + iyz() * y + izz() * z;
        const auto element = [&](unsigned row, unsigned column) {
            return a[row] * x[column] + b[row] * y[column] + c[row] * z[column];
        };
        return *this = {element(0, 0), element(0, 1), element(0, 2),
                        element(1, 1), element(1, 2), element(2, 2)};
    }

private:
    double m_Elements[6] = {}; ///< the upper triangle, by rows
};
