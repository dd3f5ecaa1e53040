#pragma once

#include <array>
#include <bit>
#include <cstdint>

/// Sets of places in a row of up to 64 elements, mostly of those whose elements can differ from zero.
namespace NqRowMask {

using Mask = std::uint64_t;

/// How many places a mask has.
inline constexpr unsigned Places = 64;

constexpr Mask bit(unsigned place) {
    return Mask{1} << place;
}

/// Calls `action` with each place, rising.
template <typename Action>
void forEach(Mask mask, const Action& action) {
    for (; mask != 0; mask &= mask - 1) {
        action(static_cast<unsigned>(std::countr_zero(mask)));
    }
}

inline constexpr auto Bits = [] {
    std::array<Mask, Places> bits{};
    for (unsigned place = 0; place < Places; ++place) {
        bits[place] = bit(place);
    }
    return bits;
}();

/// The elements of a row that aren't +0.0.
inline Mask filled(const double* row, unsigned n) {
    Mask mask = 0;
    for (unsigned j = 0; j < n; ++j) {
        mask |= Bits[j] & -static_cast<Mask>(std::bit_cast<std::uint64_t>(row[j]) != 0);
    }
    return mask;
}

} // namespace NqRowMask
