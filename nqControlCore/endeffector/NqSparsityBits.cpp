#include <nqControlCore/endeffector/NqSparsityBits.h>

#include <nqControlCore/foundation/manipulator/NqManipulatorLink.h>

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
    link->forEachCarryingJoint([&](unsigned column) {
        for (unsigned i = row; i < row + count; ++i) {
            bits[i][column] = true;
        }
    });
}

void NqSparsityBits::setColumns(unsigned first, unsigned end, unsigned row, unsigned count, Bits& bits) {
    for (unsigned i = row; i < row + count; ++i) {
        for (unsigned column = first; column < end; ++column) {
            bits[i][column] = true;
        }
    }
}
