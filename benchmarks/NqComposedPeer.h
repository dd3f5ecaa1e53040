#pragma once

#include "NqCommandFilter.h"
#include "NqControlPeer.h"
#include "NqEigenSolver.h"
#include "NqPeerKinematics.h"

/// A control step from the kinematics of one library and a solver of Eigen.
class NqComposedPeer : public NqControlPeer {
public:
    NqComposedPeer(const NqBenchmarkCase& benchmarkCase, std::unique_ptr<NqPeerKinematics> kinematics,
                   std::unique_ptr<NqEigenSolver> solver);

    const std::string& name() const override { return m_Name; }
    Answer answer() const override { return Answer::Descending; }
    std::string kinematicsName() const override { return m_Kinematics->isOurs() ? "" : m_Kinematics->name(); }
    void kinematics(unsigned step) override { m_Kinematics->compute(step); }
    void step(unsigned step) override;
    bool bareStep(unsigned step) override;

    std::vector<double> rates() const override;
    std::vector<double> nullSpaceRates() const override;
    std::vector<double> velocity() const override;
    std::vector<double> command() const override { return m_Filter.command(); }

private:
    void solve();

    std::unique_ptr<NqPeerKinematics> m_Kinematics;
    std::unique_ptr<NqEigenSolver> m_Solver;
    std::string m_Name;
    NqCommandFilter m_Filter;
    Eigen::VectorXd m_Metric;
    Eigen::VectorXd m_Gradient;
};
