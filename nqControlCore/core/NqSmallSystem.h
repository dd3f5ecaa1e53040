#pragma once

#include <array>
#include <vector>

class NqReArray;

/// The system of a control step of at most eight joints, which is a chain of operations that wait for each
/// other more than it is work: rows of one length in one place, each loaded as it was stored, and right-hand
/// sides that stay in registers.
///
/// Each element gets the same terms in the same order as in the general way, so that values are the same to
/// the last bit.
namespace NqSmallSystem {

/// The most joints.
inline constexpr unsigned Places = 8;

/// Finds the null space of J, weights that, and factors the square matrix of J and the rows that follow from
/// it: what NqCoreVelocityControlTool::prep() does, on arrays that have their sizes.
///
/// @param jacobian  J in its first m rows; may be the matrix
/// @param metric    null weights nothing
/// @param matrix    square, of at most Places rows; given the factors
/// False where a row has no element to be its pivot, or the metric is not one of a weight for each joint; the
/// first m rows of the matrix are then as they were.
bool factor(const NqReArray& jacobian, unsigned m, const NqReArray* metric, NqReArray& matrix,
            std::vector<unsigned int>& indices, NqReArray& nullSpace, NqReArray& weightedNullSpace);

/// Solves with the factors of at most Places rows for two right-hand sides in x, side by side. An exactly
/// zero pivot leaves its unknown as it came.
void substitute(const NqReArray& factors, std::array<double, 2>* x);

} // namespace NqSmallSystem
