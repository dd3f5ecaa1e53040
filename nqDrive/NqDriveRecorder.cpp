#include "NqDriveRecorder.h"

#include <algorithm>

NqDriveRecorder::NqDriveRecorder(std::size_t joints, std::size_t endEffectors, std::size_t parts,
                                 std::size_t capacity)
    : m_Joints(joints), m_EndEffectors(endEffectors), m_Parts(parts), m_Width(partColumn(parts)),
      m_Capacity(std::max<std::size_t>(capacity, 2)), m_Table(m_Capacity * m_Width) {}

void NqDriveRecorder::add(const Sample& sample, bool isKept) {
    const bool isDue = m_Steps++ % m_Stride == 0;
    if (!isDue && !isKept) {
        return;
    }
    if (m_Rows == m_Capacity) {
        thin();
    }
    double* out = &m_Table[m_Rows++ * m_Width];
    *out++ = sample.time;
    *out++ = sample.wayPoint;
    *out++ = sample.determinant;
    *out++ = sample.slowing;
    out = std::copy_n(sample.positions, m_Joints, out);
    out = std::copy_n(sample.rates, m_Joints, out);
    for (std::size_t e = 0; e < m_EndEffectors; ++e) {
        for (unsigned i = 0; i < 3; ++i) {
            *out++ = sample.placements[e].translation()[i];
        }
        sample.placements[e].orientation().getQuaternion(out[0], out[1], out[2], out[3]);
        out += 4;
    }
    for (std::size_t p = 0; p < m_Parts; ++p) {
        *out++ = sample.errors[p];
        *out++ = sample.speeds[p];
        *out++ = sample.accelerations[p];
    }
}

NqCoordinateSystemTransformation NqDriveRecorder::placement(std::size_t row, std::size_t endEffector) const {
    const double* numbers = &m_Table[row * m_Width + effectorColumn(endEffector)];
    NqOrientation orientation;
    orientation.setFromQuaternion(numbers[3], numbers[4], numbers[5], numbers[6]);
    return {NqVector(numbers[0], numbers[1], numbers[2]), orientation};
}

void NqDriveRecorder::thin() {
    for (std::size_t row = 2; row < m_Rows; row += 2) {
        std::copy_n(&m_Table[row * m_Width], m_Width, &m_Table[row / 2 * m_Width]);
    }
    m_Rows = (m_Rows + 1) / 2;
    m_Stride *= 2;
}
