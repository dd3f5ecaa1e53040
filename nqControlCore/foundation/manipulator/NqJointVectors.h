#pragma once

#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>

/// What the states share in handling vectors with one entry per joint. A vector or index that doesn't fit
/// prints a line at print type 4 that names the caller.
class NqJointVectors {
public:
    /// Sets one entry; an index beyond the vector changes nothing.
    static void setEntry(const char* caller, NqXmlRealVector& vector, unsigned index, double value);

    /// Brings the vector to `count` entries, missing ones 0.
    static void fit(const char* caller, NqXmlRealVector& vector, std::size_t count);

    /// The same, but surplus entries stay.
    static void grow(const char* caller, NqXmlRealVector& vector, std::size_t count) {
        if (vector.size() < count) {
            fit(caller, vector, count);
        }
    }
};
