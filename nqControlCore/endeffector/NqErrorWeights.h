#pragma once

#include <nqControlCore/foundation/matrix/NqReArray.h>

/// The error weights of an end-effector's rows, which come in two shapes: on the diagonal of an array whose
/// first row has more than one entry, or else in the first column.
namespace NqErrorWeights {

/// Resizes an array that has too few rows to `end` rows, in its shape; whether that is the diagonal one.
bool rightSize(unsigned end, NqReArray& weights);

/// Writes the weights of `count` rows from `row` on, `weightOf(i)` for the i-th of them, in the shape that
/// the array has. Rows that are too short are lengthened.
template <typename WeightOf>
void insert(unsigned row, unsigned count, NqReArray& weights, WeightOf weightOf) {
    const bool isSquare = rightSize(row + count, weights);
    for (unsigned i = 0; i < count; ++i) {
        std::vector<double>& entries = weights[row + i];
        const std::size_t column = isSquare ? row + i : 0;
        if (entries.size() <= column) {
            entries.resize(column + 1);
        }
        entries[column] = weightOf(i);
    }
}

} // namespace NqErrorWeights
