#include <nqControlCore/endeffector/NqSparsityBits.h>

#include <nqControlCore/foundation/manipulator/NqManipulatorLink.h>

#include <algorithm>

void NqSparsityBits::widen(unsigned row, unsigned count, unsigned width, Bits& bits) {
    for (unsigned i = row; i < row + count; ++i) {
        if (bits[i].size() < width) {
            bits[i].resize(width);
        }
    }
}

void NqSparsityBits::setChain(const NqManipulatorLink* link, unsigned row, unsigned count, Bits& bits) {
    if (!link) {
        return;
    }
    // Joints of a chain mostly follow each other, outwards.
    unsigned first = 0, end = 0;
    link->forEachCarryingJoint([&](unsigned column) {
        if (column + 1 != first) {
            setColumns(first, end, row, count, bits);
            end = column + 1;
        }
        first = column;
    });
    setColumns(first, end, row, count, bits);
}

void NqSparsityBits::setColumns(unsigned first, unsigned end, unsigned row, unsigned count, Bits& bits) {
    for (unsigned i = row; i < row + count && first < end; ++i) {
        std::fill(bits[i].begin() + first, bits[i].begin() + end, true);
    }
}
