#pragma once

#include <nqControlCore/foundation/math/NqEndEffectorPlacement.h>
#include <nqControlCore/foundation/math/NqGeneralMotion.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

/// A checksum to which every bit counts, in order. All NaN count alike: which one an operation gives is left
/// open.
class NqChecksum {
public:
    void add(std::uint64_t number) {
        m_Value = (m_Value ^ number) * 0x9e3779b97f4a7c15;
        m_Value ^= m_Value >> 29;
    }
    void add(double value) {
        add(std::bit_cast<std::uint64_t>(std::isnan(value) ? std::numeric_limits<double>::quiet_NaN()
                                                           : value));
    }
    void add(const std::vector<double>& values) {
        for (const double value : values) {
            add(value);
        }
    }
    void add(const NqVector& vector) {
        add(vector.x());
        add(vector.y());
        add(vector.z());
    }
    void add(const NqGeneralMotion& motion) {
        add(motion.linear());
        add(motion.angular());
    }
    void add(const NqReArray& matrix) {
        add(matrix.size());
        for (std::size_t i = 0; i < matrix.size(); ++i) {
            add(matrix[i]);
        }
    }
    void add(const NqEndEffectorPlacement& placement) {
        add(placement.coordSysXForm().translation());
        double q0, q1, q2, q3;
        placement.coordSysXForm().orientation().getQuaternion(q0, q1, q2, q3);
        add(std::vector{q0, q1, q2, q3});
        add(placement.dataVector().values());
    }
    unsigned long long value() const { return m_Value; }

private:
    std::uint64_t m_Value = 0xcbf29ce484222325;
};
