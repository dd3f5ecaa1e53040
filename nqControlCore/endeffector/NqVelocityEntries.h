#pragma once

#include <nqControlCore/foundation/math/NqVector.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>

#include <array>
#include <cstddef>

/// Velocities and accelerations as lists of numbers, as end-effectors exchange them with their callers.
namespace NqVelocityEntries {

/// What becomes of entries behind those that are written.
enum class Tail { Cut, Kept };

/// Resizes a list to end at `end`, or with Tail::Kept only lengthens it.
inline void resize(std::size_t end, Tail tail, NqXmlRealVector& values) {
    if (tail == Tail::Cut || values.size() < end) {
        values.resize(end);
    }
}

/// Writes the rows from `start` on.
template <std::size_t Count>
void put(const std::array<double, Count>& rows, unsigned start, Tail tail, NqXmlRealVector& values) {
    resize(start + Count, tail, values);
    for (unsigned i = 0; i < Count; ++i) {
        values[start + i] = rows[i];
    }
}

/// Makes a list the components of a vector.
inline void put(const NqVector& vector, NqXmlRealVector& values) {
    put(std::array{vector.x(), vector.y(), vector.z()}, 0, Tail::Cut, values);
}

/// Resizes a list to end behind `count` entries from `start` on, and makes these zero.
inline void putZeros(unsigned start, unsigned count, NqXmlRealVector& values) {
    resize(start + count, Tail::Cut, values);
    for (unsigned i = start; i < start + count; ++i) {
        values[i] = 0.0;
    }
}

/// At most three entries from `start` on; missing ones are zero.
inline NqVector vectorAt(const NqXmlRealVector& values, unsigned start = 0) {
    NqVector result;
    for (unsigned i = 0; i < 3 && start + i < values.size(); ++i) {
        result[i] = values[start + i];
    }
    return result;
}

/// The first entry, or zero.
inline double numberAt(const NqXmlRealVector& values, unsigned index = 0) {
    return index < values.size() ? values[index] : 0.0;
}

} // namespace NqVelocityEntries
