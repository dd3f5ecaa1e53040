#include "NqComposedPeer.h"

namespace {

Eigen::Map<const Eigen::VectorXd> mapped(const std::vector<double>& values) {
    return {values.data(), static_cast<Eigen::Index>(values.size())};
}

std::vector<double> listed(const Eigen::VectorXd& values) {
    return {values.begin(), values.end()};
}

} // namespace

NqComposedPeer::NqComposedPeer(const NqBenchmarkCase& benchmarkCase,
                               std::unique_ptr<NqPeerKinematics> kinematics,
                               std::unique_ptr<NqEigenSolver> solver)
    : m_Kinematics(std::move(kinematics)), m_Solver(std::move(solver)),
      m_Name(m_Kinematics->name() + (" + " + m_Solver->name())), m_Filter(benchmarkCase),
      m_Metric(Eigen::VectorXd::Ones(benchmarkCase.joints())), m_Gradient(mapped(benchmarkCase.gradient())) {}

void NqComposedPeer::step(unsigned step) {
    m_Kinematics->compute(step);
    m_Filter.filter(m_Kinematics->placements());
    solve();
}

bool NqComposedPeer::bareStep(unsigned step) {
    m_Kinematics->compute(step);
    solve();
    return true;
}

void NqComposedPeer::solve() {
    m_Solver->solve(m_Kinematics->jacobian(), m_Metric, m_Gradient, NqBenchmarkCase::alpha(),
                    mapped(m_Filter.command()));
}

std::vector<double> NqComposedPeer::rates() const {
    return listed(m_Solver->rates());
}

std::vector<double> NqComposedPeer::nullSpaceRates() const {
    return listed(m_Solver->nullSpaceRates());
}

std::vector<double> NqComposedPeer::velocity() const {
    return listed(m_Kinematics->velocity());
}
