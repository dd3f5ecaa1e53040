#include <nqControlCore/foundation/manipulator/NqGravitationalTorqueTool.h>

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/text/NqPrint.h>

bool NqGravitationalTorqueTool::hasJoint(const char* operation, unsigned jointIndex) const {
    const unsigned joints = m_Manipulator ? m_Manipulator->numberOfJoints() : 0;
    if (jointIndex >= joints) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqGravitationalTorqueTool::%s(): no joint %u among %u.\n", operation,
                                    jointIndex, joints);
        return false;
    }
    return true;
}

double NqGravitationalTorqueTool::jointTorque(unsigned jointIndex, NqManipulatorActiveState& state,
                                              unsigned) const {
    if (!hasJoint("jointTorque", jointIndex)) {
        return 0.0;
    }
    return m_Manipulator->linearMomentaOfUnitRates(state.activePositionState())[jointIndex].dot(m_Gravity);
}

NqJointTorqueGradient NqGravitationalTorqueTool::jointTorqueGradient(unsigned jointIndex,
                                                                     NqManipulatorActiveState& state,
                                                                     unsigned) const {
    if (!hasJoint("jointTorqueGradient", jointIndex)) {
        return {};
    }
    return {*m_Manipulator, state, jointIndex, m_Gravity};
}

void NqGravitationalTorqueTool::jointTorques(NqManipulatorActiveState& state,
                                             std::vector<double>& torques) const {
    torques.clear();
    if (m_Manipulator) {
        for (const NqVector& momentum :
             m_Manipulator->linearMomentaOfUnitRates(state.activePositionState())) {
            torques.push_back(momentum.dot(m_Gravity));
        }
    }
}
