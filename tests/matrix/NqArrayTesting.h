#pragma once

#include "support/NqTesting.h"

#include <nqControlCore/foundation/matrix/NqReArray.h>

using NqRandom = std::mt19937;

inline double nqUniform(NqRandom& random) {
    return std::uniform_real_distribution<double>(-1.0, 1.0)(random);
}

inline NqReArray nqArray(const std::vector<std::vector<double>>& rows) {
    NqReArray array(static_cast<unsigned>(rows.size()), 0);
    for (unsigned i = 0; i < rows.size(); ++i) {
        array.assign(i, rows[i]);
    }
    return array;
}

/// Equal but for the sign of zeros; any NaN equals any other.
inline bool nqSameValues(const std::vector<double>& a, const std::vector<double>& b) {
    return std::ranges::equal(a, b,
                              [](double x, double y) { return x == y || (std::isnan(x) && std::isnan(y)); });
}

inline std::vector<double> nqRandomVector(NqRandom& random, unsigned size) {
    std::vector<double> values(size);
    std::ranges::generate(values, [&] { return nqUniform(random); });
    return values;
}

inline NqReArray nqRandomArray(NqRandom& random, unsigned rows, unsigned columns) {
    NqReArray array(rows, 0);
    for (unsigned i = 0; i < rows; ++i) {
        array.assign(i, nqRandomVector(random, columns));
    }
    return array;
}

/// Equal to the last bit; any NaN equals any other.
inline bool nqSameBits(const std::vector<double>& a, const std::vector<double>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](double x, double y) {
        return std::isnan(x) ? std::isnan(y) : x == y && std::signbit(x) == std::signbit(y);
    });
}

/// Tells known zeros that were passed over from those that were worked on: these have lost their sign.
inline unsigned nqNegativeZeros(const NqReArray& array) {
    unsigned count = 0;
    for (unsigned i = 0; i < array.rows(); ++i) {
        count += static_cast<unsigned>(std::ranges::count_if(
            array[i], [](double entry) { return entry == 0.0 && std::signbit(entry); }));
    }
    return count;
}
