#pragma once

#include <cstdint>
#include <vector>

/// Results computed one by one when they are asked for, each marked with the generation that it was computed
/// in.
template <typename T>
class NqStampedCache {
public:
    /// Makes room; entries up to `size` stay where they are.
    void grow(std::size_t size) {
        if (m_Entries.size() < size) {
            m_Entries.resize(size);
        }
    }

    /// The entry for `generation`, from `compute()` unless it was computed in that generation. The index is
    /// not checked.
    template <typename Compute>
    const T& get(std::size_t index, std::uint64_t generation, Compute compute) {
        Entry& entry = m_Entries[index];
        if (entry.generation != generation) {
            entry.value = compute();
            entry.generation = generation;
        }
        return entry.value;
    }

private:
    struct Entry {
        std::uint64_t generation = 0;
        T value;
    };
    std::vector<Entry> m_Entries;
};
