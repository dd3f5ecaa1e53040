#pragma once

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
    unsigned long long value() const { return m_Value; }

private:
    std::uint64_t m_Value = 0xcbf29ce484222325;
};
