#pragma once

#include <cstdint>

/// Counts the changes of an object that others cache results of. What was cached under a number holds as long
/// as the object still has that number. An assignment takes a number that neither side has had, so that an
/// object and the caches beside it may be assigned member by member.
class NqCacheGeneration {
public:
    NqCacheGeneration() = default;
    NqCacheGeneration(const NqCacheGeneration&) = default;
    NqCacheGeneration& operator=(const NqCacheGeneration& other) {
        m_Value = (m_Value > other.m_Value ? m_Value : other.m_Value) + 1;
        return *this;
    }

    void advance() { ++m_Value; }
    /// Never 0.
    std::uint64_t value() const { return m_Value; }

private:
    std::uint64_t m_Value = 1;
};
