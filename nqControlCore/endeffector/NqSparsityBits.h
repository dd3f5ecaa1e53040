#pragma once

#include <vector>

class NqManipulatorLink;

/// Which elements of a Jacobian can be non-zero, as bits of its shape.
namespace NqSparsityBits {

using Bits = std::vector<std::vector<bool>>;

/// Makes rows at least so wide; what is added is clear. Rows that right-sizing left as they were may be
/// narrower.
void widen(unsigned row, unsigned count, unsigned width, Bits& bits);

/// Sets the bits of the joints that carry a link, in `count` rows from `row` on; none for a null link.
void setChain(const NqManipulatorLink* link, unsigned row, unsigned count, Bits& bits);

/// Sets all bits from column `first` to before column `end`, in `count` rows from `row` on.
void setColumns(unsigned first, unsigned end, unsigned row, unsigned count, Bits& bits);

/// Whether an element of a body's inertia can be non-zero: rows and columns are three of translation, then
/// three of rotation. The first rows are also those of a point of the body under a motion of its base.
constexpr bool inInertia(unsigned row, unsigned column) {
    return (row < 3) == (column < 3) ? row >= 3 || row == column : row % 3 != column % 3;
}

} // namespace NqSparsityBits
