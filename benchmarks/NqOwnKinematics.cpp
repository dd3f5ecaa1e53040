#include "NqOwnKinematics.h"

NqOwnKinematics::NqOwnKinematics(const NqBenchmarkCase& benchmarkCase)
    : NqPeerKinematics(benchmarkCase), m_Case(benchmarkCase), m_Own(benchmarkCase) {}

void NqOwnKinematics::compute(unsigned step) {
    m_Own.setState(step);
    m_Own.insertJacobian();
    m_Own.calculateVelocity();
    for (unsigned e = 0; e < m_Placements.size(); ++e) {
        m_Case.endEffectors()[e]->calculatePlacement(m_Case.manipulator(), m_Own.state(), m_Placement);
        m_Placements[e] = m_Placement.coordSysXForm();
    }
    const NqReArray& jacobian = m_Own.jacobian();
    for (Eigen::Index i = 0; i < m_Jacobian.rows(); ++i) {
        m_Jacobian.row(i) = Eigen::Map<const Eigen::RowVectorXd>(jacobian[static_cast<std::size_t>(i)].data(),
                                                                 m_Jacobian.cols());
    }
    const std::vector<double>& velocity = m_Own.velocityValues();
    m_Velocity = Eigen::Map<const Eigen::VectorXd>(velocity.data(), m_Velocity.size());
}
