#include "NqDriveRecorder.h"

#include <algorithm>

NqDriveRecorder::NqDriveRecorder(std::size_t joints, std::size_t endEffectors, std::size_t parts,
                                 bool keepsEveryStep, std::size_t capacity)
    : m_Joints(joints), m_EndEffectors(endEffectors), m_Parts(parts), m_Width(partColumn(parts)),
      m_Capacity(std::max<std::size_t>(capacity / 4 * 4, 4)), m_KeepsEveryStep(keepsEveryStep),
      m_Table(m_Capacity * m_Width), m_Sample(m_Width), m_Greatest(m_Width) {}

void NqDriveRecorder::add(const Sample& sample, bool isKept) {
    const bool isDue = m_Steps++ % m_Stride == 0;
    if (!isDue && !isKept) {
        write(sample, m_Sample.data());
        const std::size_t last = m_Rows - 1;
        mergeExtremes(m_Sample.data(), row(last / 2 * 2), last % 2 == 0 ? m_Greatest.data() : row(last));
        return;
    }
    if (m_Rows == m_Capacity) {
        if (m_KeepsEveryStep) {
            m_Capacity *= 2;
            m_Table.resize(m_Capacity * m_Width);
        } else {
            thin();
        }
    }
    double* const added = row(m_Rows++);
    write(sample, added);
    if (m_Stride == 1) {
        return;
    }
    if (m_Rows % 2 == 1) {
        std::copy_n(added, m_Width, m_Greatest.data());
    } else {
        mergeExtremes(added, row(m_Rows - 2), m_Greatest.data());
        mergeExtremes(m_Greatest.data(), m_Sample.data(), added);
    }
}

/// Lowers and raises those columns of which extremes are kept.
void NqDriveRecorder::mergeExtremes(const double* values, double* least, double* greatest) const {
    const auto merge = [&](std::size_t from, std::size_t to) {
        for (std::size_t column = from; column < to; ++column) {
            least[column] = std::min(least[column], values[column]);
            greatest[column] = std::max(greatest[column], values[column]);
        }
    };
    merge(2, kHead);
    merge(kHead + m_Joints, kHead + 2 * m_Joints);
    merge(partColumn(0), m_Width);
}

void NqDriveRecorder::write(const Sample& sample, double* out) const {
    *out++ = sample.time;
    *out++ = sample.wayPoint;
    *out++ = sample.determinant;
    *out++ = sample.slowing;
    out = std::copy_n(sample.positions, m_Joints, out);
    out = std::copy_n(sample.rates, m_Joints, out);
    for (std::size_t e = 0; e <= m_EndEffectors; ++e) {
        const NqCoordinateSystemTransformation& placement =
            e < m_EndEffectors ? sample.placements[e] : sample.base;
        for (unsigned i = 0; i < 3; ++i) {
            *out++ = placement.translation()[i];
        }
        placement.orientation().getQuaternion(out[0], out[1], out[2], out[3]);
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

/// Of four rows the first and the third stay.
void NqDriveRecorder::thin() {
    for (std::size_t first = 0; first + 3 < m_Rows; first += 4) {
        double* const least = row(first);
        double* const greatest = row(first + 2);
        std::copy_n(greatest, m_Width, m_Greatest.data());
        std::copy_n(least, m_Width, m_Sample.data());
        for (std::size_t i = 1; i < 4; ++i) {
            mergeExtremes(row(first + i), m_Sample.data(), m_Greatest.data());
        }
        mergeExtremes(least, m_Sample.data(), m_Greatest.data());
        std::copy_n(m_Sample.data(), m_Width, row(first / 2));
        std::copy_n(m_Greatest.data(), m_Width, row(first / 2 + 1));
    }
    m_Rows /= 2;
    m_Stride *= 2;
}
