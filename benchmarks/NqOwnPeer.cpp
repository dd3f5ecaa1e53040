#include "NqOwnPeer.h"

#include <algorithm>
#include <utility>

namespace {

constexpr bool kFixedBase = true;

} // namespace

NqOwnPeer::NqOwnPeer(const NqBenchmarkCase& benchmarkCase, NullSpace nullSpace)
    : m_Case(benchmarkCase), m_EndEffectors(benchmarkCase.endEffectors()), m_NullSpace(nullSpace),
      m_Name(nullSpace == NullSpace::Sparse ? "ours, sparse null space" : "ours"),
      m_Position(benchmarkCase.joints()), m_JointVelocity(benchmarkCase.joints()),
      m_State(benchmarkCase.manipulator()), m_Command(benchmarkCase.rows()) {
    m_Metric = std::vector<double>(benchmarkCase.joints(), 1.0);
    m_JacobianState.setUseSparseNullSpace(true);
    for (const NqBenchmarkCase::Task& task : benchmarkCase.tasks()) {
        m_Still.emplace_back(task.rows);
    }
    m_Previous = m_Filtered = m_Errors = m_Still;
    insertSparsity();
    m_JacobianState.setSparsity(m_Sparsity);
}

void NqOwnPeer::kinematics(unsigned step) {
    setState(step);
    insertJacobian();
    calculateVelocity();
}

void NqOwnPeer::step(unsigned step) {
    kinematics(step);
    insertSparsity();
    filterAndCalculateError();
    solve();
}

bool NqOwnPeer::bareStep(unsigned step) {
    kinematics(step);
    solve();
    return true;
}

void NqOwnPeer::setState(unsigned step) {
    const NqBenchmarkCase::Pose& pose = m_Case.pose(step);
    m_Position.jointPositions() = pose.positions;
    m_JointVelocity.jointVelocities() = pose.velocities;
    m_State.setPositionState(m_Position);
    m_State.setVelocityState(m_JointVelocity);
}

void NqOwnPeer::insertJacobian() {
    unsigned row = 0;
    for (const NqEndEffector& endEffector : m_EndEffectors) {
        endEffector.insertJacobianComponent(m_Case.manipulator(), row, endEffector.relativeLinkData(),
                                            kFixedBase, m_State, m_Jacobian);
        row += endEffector.doc();
    }
}

void NqOwnPeer::insertSparsity() {
    unsigned row = 0;
    for (const NqEndEffector& endEffector : m_EndEffectors) {
        endEffector.insertSparsityComponent(m_Case.manipulator(), row, endEffector.relativeLinkData(),
                                            kFixedBase, m_Sparsity);
        row += endEffector.doc();
    }
}

void NqOwnPeer::calculateVelocity() {
    unsigned row = 0;
    for (const NqEndEffector& endEffector : m_EndEffectors) {
        endEffector.calculateVelocity(m_Case.manipulator(), m_State, m_Velocity, row);
        row += endEffector.doc();
    }
}

void NqOwnPeer::filterAndCalculateError() {
    for (unsigned e = 0; e < m_Still.size(); ++e) {
        const NqBenchmarkCase::Task& task = m_Case.tasks()[e];
        m_EndEffectors[e]->calculateFilteredVelocityAndError(m_Case.manipulator(), task.target, m_Still[e],
                                                             m_Previous[e], NqBenchmarkCase::timeStep(),
                                                             m_State, m_Filtered[e], m_Errors[e]);
        command(e);
    }
    std::swap(m_Previous, m_Filtered);
}

void NqOwnPeer::filter() {
    for (unsigned e = 0; e < m_Still.size(); ++e) {
        const NqBenchmarkCase::Task& task = m_Case.tasks()[e];
        m_EndEffectors[e]->filterEndEffectorVelocity(m_Case.manipulator(), task.target, m_Still[e],
                                                     m_Previous[e], NqBenchmarkCase::timeStep(), m_State,
                                                     m_Filtered[e]);
        command(e);
    }
    std::swap(m_Previous, m_Filtered);
}

void NqOwnPeer::command(unsigned e) {
    std::copy(m_Filtered[e].begin(), m_Filtered[e].end(), m_Command.begin() + m_Case.tasks()[e].row);
}

void NqOwnPeer::calculateError() {
    for (unsigned e = 0; e < m_Still.size(); ++e) {
        m_EndEffectors[e]->calculateEndEffectorError(m_Case.manipulator(), m_Case.tasks()[e].target, m_State,
                                                     m_Errors[e]);
    }
}

void NqOwnPeer::solve() {
    m_Tool.calcJointRates(m_NullSpace == NullSpace::Sparse ? &m_JacobianState : nullptr, m_Jacobian, m_Metric,
                          m_Case.gradient(), m_Alpha, m_Command, m_Case.joints(), m_Rates, m_NullSpaceRates,
                          m_Determinant);
}
