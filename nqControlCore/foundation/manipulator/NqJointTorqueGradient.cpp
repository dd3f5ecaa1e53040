#include <nqControlCore/foundation/manipulator/NqJointTorqueGradient.h>

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>

void NqJointTorqueGradient::fill(NqReArray& row) const {
    row.setToZeros(1, m_Manipulator ? m_Manipulator->numberOfJoints() : 0);
    addMultipleTo(row[0], 1.0);
}

void NqJointTorqueGradient::addMultipleTo(std::vector<double>& row, double factor) const {
    if (!m_Manipulator) {
        return;
    }
    const NqKinematicTree& tree = m_Manipulator->kinematicTree();
    NqManipulatorActivePositionState& positions = m_State->activePositionState();
    const std::vector<NqVector>& momenta = positions.firstMoments(tree).linearMomenta;
    const std::vector<NqCoordinateSystemTransformation>& frames = positions.linkFrames(tree);
    const auto add = [&](std::size_t entry, double derivative) {
        if (entry <= row.size()) {
            row[entry - 1] += factor * derivative;
        }
    };
    const std::size_t own = m_JointIndex + 1;
    const NqVector turning = momenta[own].cross(m_Gravity);
    tree.forEachInboardEntry(own, [&](std::size_t inboard) {
        if (!tree.isPrismatic(inboard)) {
            add(inboard, frames[inboard].orientation().zAxis().dot(turning));
        }
    });
    if (!tree.isPrismatic(own)) {
        const NqVector axis = frames[own].orientation().zAxis();
        for (std::size_t outboard = own + 1; outboard < tree.size(); ++outboard) {
            if (tree.carries(own, outboard)) {
                add(outboard, axis.dot(momenta[outboard].cross(m_Gravity)));
            }
        }
    }
}

NqVector NqJointTorqueGradient::ofBaseRotation() const {
    if (!m_Manipulator) {
        return {};
    }
    return m_Manipulator->linearMomentaOfUnitRates(m_State->activePositionState())[m_JointIndex].cross(
        m_Gravity);
}
