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
        : m_Columns{{ixx, ixy, ixz}, {ixy, iyy, iyz}, {ixz, iyz, izz}} {}

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

    constexpr double ixx() const { return m_Columns[0][0]; }
    constexpr double ixy() const { return m_Columns[0][1]; }
    constexpr double ixz() const { return m_Columns[0][2]; }
    constexpr double iyy() const { return m_Columns[1][1]; }
    constexpr double iyz() const { return m_Columns[1][2]; }
    constexpr double izz() const { return m_Columns[2][2]; }

    /// An element of the matrix; the indices are not checked.
    constexpr double operator()(unsigned row, unsigned column) const { return m_Columns[column][row]; }

    constexpr NqVector operator*(const NqVector& v) const {
        return {m_Columns[0].dot(v), m_Columns[1].dot(v), m_Columns[2].dot(v)};
    }
    constexpr NqSecondMoment& operator+=(const NqSecondMoment& other) {
        for (unsigned i = 0; i < 3; ++i) {
            m_Columns[i] += other.m_Columns[i];
        }
        return *this;
    }
    constexpr bool operator==(const NqSecondMoment&) const = default;

    /// Rotates the mass distribution: R I R^T.
    constexpr NqSecondMoment& transformBy(const NqOrientation& orientation) {
        for (int pass = 0; pass < 2; ++pass) {
            const NqVector a = orientation * m_Columns[0];
            const NqVector b = orientation * m_Columns[1];
            const NqVector c = orientation * m_Columns[2];
            *this = NqSecondMoment({a[0], b[0], c[0]}, {a[1], b[1], c[1]}, {a[2], b[2], c[2]});
        }
        return *this;
    }

private:
    constexpr NqSecondMoment(const NqVector& first, const NqVector& second, const NqVector& third)
        : m_Columns{first, second, third} {}

    NqVector m_Columns[3];
};
