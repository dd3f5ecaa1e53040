#include <nqControlCore/foundation/math/NqSpatialMatrix.h>

NqSpatialMatrix NqSpatialMatrix::operator*(const NqSpatialMatrix& right) const {
    const NqSpatialMatrix columns = right.transpose();
    return {columns * m_Rows[0], columns * m_Rows[1], columns * m_Rows[2]};
}

NqSpatialMatrix NqSpatialMatrix::operator+(const NqSpatialMatrix& right) const {
    return {m_Rows[0] + right[0], m_Rows[1] + right[1], m_Rows[2] + right[2]};
}

NqSpatialMatrix NqSpatialMatrix::transpose() const {
    return {NqVector(m_Rows[0][0], m_Rows[1][0], m_Rows[2][0]),
            NqVector(m_Rows[0][1], m_Rows[1][1], m_Rows[2][1]),
            NqVector(m_Rows[0][2], m_Rows[1][2], m_Rows[2][2])};
}

void NqSpatialMatrix::setToDcm(const NqOrientation& orientation) {
    orientation.getDcmRows(m_Rows[0], m_Rows[1], m_Rows[2]);
}

void NqSpatialMatrix::setToCrossProductMatrix(const NqVector& v) {
    m_Rows[0] = NqVector(0.0, -v.z(), v.y());
    m_Rows[1] = NqVector(v.z(), 0.0, -v.x());
    m_Rows[2] = NqVector(-v.y(), v.x(), 0.0);
}
