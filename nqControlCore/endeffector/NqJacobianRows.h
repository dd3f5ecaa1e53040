#pragma once

#include <nqControlCore/endeffector/NqRowRequest.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorLink.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>
#include <nqControlCore/foundation/text/NqPrint.h>

#include <array>
#include <tuple>

/// Columns of rows that are a linear function of a motion. `rowsOf` maps a motion to an array of row entries;
/// motions are in the system frame, at `origin`. The rows, from `row` on, must be right-sized.
namespace NqJacobianRows {

/// Calls `action(element, entry)` for the elements in the columns of the joints that carry a link, with what
/// the link's motion for a unit rate of the joint makes of each row.
template <typename RowsOf, typename Action>
void forEachJointColumn(const NqManipulatorLink& link, const NqVector& origin,
                        NqManipulatorActivePositionState& state, unsigned row, NqReArray& jacobian,
                        const RowsOf& rowsOf, const Action& action) {
    decltype(rowsOf(NqGeneralMotion())) entries;
    std::array<double*, std::tuple_size_v<decltype(entries)>> rows;
    for (unsigned i = 0; i < rows.size(); ++i) {
        rows[i] = jacobian[row + i].data();
    }
    link.forEachUnitRateMotion(origin, state, [&](unsigned column, const NqGeneralMotion& motion) {
        entries = rowsOf(motion);
        for (unsigned i = 0; i < rows.size(); ++i) {
            action(rows[i][column], entries[i]);
        }
    });
}

/// Sets the columns of the joints that carry a link.
template <typename RowsOf>
void setJointColumns(const NqManipulatorLink& link, const NqVector& origin,
                     NqManipulatorActivePositionState& state, unsigned row, NqReArray& jacobian,
                     const RowsOf& rowsOf) {
    forEachJointColumn(link, origin, state, row, jacobian, rowsOf,
                       [](double& element, double entry) { element = entry; });
}

/// Takes the same away from the columns, where the rows are relative to the link. With the origin of the
/// link's own columns a joint that carries both links cancels exactly.
template <typename RowsOf>
void subtractJointColumns(const NqManipulatorLink& link, const NqVector& origin,
                          NqManipulatorActivePositionState& state, unsigned row, NqReArray& jacobian,
                          const RowsOf& rowsOf) {
    forEachJointColumn(link, origin, state, row, jacobian, rowsOf,
                       [](double& element, double entry) { element -= entry; });
}

/// Sets the six columns of a free base, from `column` on: what its unit translations along the axes of the
/// system and its unit rotations about them do to a body at `arm` from the base's origin.
template <typename RowsOf>
void setBaseColumns(const NqVector& arm, unsigned column, unsigned row, NqReArray& jacobian,
                    const RowsOf& rowsOf) {
    for (unsigned axis = 0; axis < 3; ++axis) {
        NqVector unit;
        unit[axis] = 1.0;
        const auto translation = rowsOf(NqGeneralMotion(unit, NqVector()));
        const auto rotation = rowsOf(NqGeneralMotion(unit.cross(arm), unit));
        for (unsigned i = 0; i < translation.size(); ++i) {
            jacobian[row + i][column + axis] = translation[i];
            jacobian[row + i][column + axis + 3] = rotation[i];
        }
    }
}

/// Whether a Jacobian, or its bits, has that element; with the message, and row and column in it, if not.
template <typename Matrix>
bool hasElement(unsigned row, unsigned column, const Matrix& matrix, const char* message) {
    const bool isThere = row < matrix.size() && column < matrix[row].size();
    if (!isThere) {
        Nq::Print::instance().write(Nq::PrintFailure, message, row, column);
    }
    return isThere;
}

} // namespace NqJacobianRows
