#pragma once

#include <nqControlCore/foundation/math/NqOrientation.h>
#include <nqControlCore/foundation/math/NqVector.h>

/// A 3 by 3 matrix, by rows. The row index is not checked.
class NqSpatialMatrix {
public:
    constexpr NqSpatialMatrix() = default;
    constexpr NqSpatialMatrix(const NqVector& first, const NqVector& second, const NqVector& third)
        : m_Rows{first, second, third} {}

    NqVector& operator[](unsigned row) { return m_Rows[row]; }
    const NqVector& operator[](unsigned row) const { return m_Rows[row]; }

    NqVector operator*(const NqVector& v) const {
        return {m_Rows[0].dot(v), m_Rows[1].dot(v), m_Rows[2].dot(v)};
    }
    NqSpatialMatrix operator*(const NqSpatialMatrix& right) const;
    NqSpatialMatrix operator+(const NqSpatialMatrix& right) const;
    bool operator==(const NqSpatialMatrix&) const = default;

    NqSpatialMatrix transpose() const;

    /// The direction cosine matrix of an orientation: its product with a vector is the rotated vector.
    void setToDcm(const NqOrientation& orientation);

    /// The skew matrix of `v`: its product with a vector w is v x w.
    void setToCrossProductMatrix(const NqVector& v);

private:
    NqVector m_Rows[3];
};
