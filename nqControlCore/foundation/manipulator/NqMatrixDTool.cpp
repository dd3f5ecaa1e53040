#include <nqControlCore/foundation/manipulator/NqMatrixDTool.h>

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>
#include <nqControlCore/foundation/text/NqPrint.h>

const NqCompositeMoments& NqMatrixDTool::compositeMoments(NqManipulatorActiveState& state, unsigned) const {
    if (!m_Manipulator) {
        static const NqCompositeMoments none;
        Nq::Print::instance().write(Nq::PrintFailure, "NqMatrixDTool::compositeMoments(): no manipulator.\n");
        return none;
    }
    return state.activePositionState().compositeMoments(m_Manipulator->kinematicTree());
}

void NqMatrixDTool::momentumMatrix(const NqCompositeMoments& moments, const NqOrientation& orientation,
                                   NqReArray& matrix) const {
    const unsigned joints = static_cast<unsigned>(moments.numberOfJoints());
    if (matrix.rows() != joints || matrix.columns() != 6) {
        matrix.setToZeros(joints, 6);
    }
    const bool isTurned = orientation != moments.baseOrientation;
    const NqOrientation turn = orientation * moments.baseOrientation.inverse();
    for (unsigned j = 0; j < joints; ++j) {
        NqVector linear = moments.linearMomenta[j + 1];
        NqVector angular = moments.angularMomenta[j + 1];
        if (isTurned) {
            linear = turn * linear;
            angular = turn * angular;
        }
        for (unsigned i = 0; i < 3; ++i) {
            matrix[j][i] = linear[i];
            matrix[j][i + 3] = angular[i];
        }
    }
}
