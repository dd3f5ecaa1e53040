#pragma once

#include "NqBenchmarkCase.h"
#include "NqControlPeer.h"

#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/foundation/manipulator/NqJacobianState.h>

/// This library, used as a controller would.
class NqOwnPeer : public NqControlPeer {
public:
    enum class NullSpace { Dense, Sparse };

    explicit NqOwnPeer(const NqBenchmarkCase& benchmarkCase, NullSpace nullSpace = NullSpace::Dense);

    /// Factor on the gradient; that of the case at first.
    void setAlpha(double alpha) { m_Alpha = alpha; }

    const std::string& name() const override { return m_Name; }
    Answer answer() const override { return Answer::Descending; }
    std::string kinematicsName() const override { return m_NullSpace == NullSpace::Dense ? "ours" : ""; }
    void kinematics(unsigned step) override;
    void step(unsigned step) override;
    bool bareStep(unsigned step) override;

    std::vector<double> rates() const override { return m_Rates; }
    std::vector<double> nullSpaceRates() const override { return m_NullSpaceRates; }
    std::vector<double> velocity() const override { return m_Velocity.values(); }
    std::vector<double> command() const override { return m_Command; }

    // The stages, one by one.
    void setState(unsigned step);
    void insertJacobian();
    void insertSparsity();
    void calculateVelocity();
    void filter();
    void calculateError();
    void filterAndCalculateError();
    void solve();

    NqManipulatorActiveState& state() { return m_State; }
    const std::vector<double>& velocityValues() const { return m_Velocity.values(); }
    const NqReArray& jacobian() const { return m_Jacobian; }
    const NqReArray& metric() const { return m_Metric; }
    const NqEndEffector::SparsityDescription& sparsity() const { return m_Sparsity; }

private:
    void command(unsigned endEffector);

    const NqBenchmarkCase& m_Case;
    NqEndEffectorVector m_EndEffectors; ///< of its own: they have working fields
    NullSpace m_NullSpace;
    std::string m_Name;
    double m_Alpha = NqBenchmarkCase::alpha();

    NqPositionState m_Position;
    NqVelocityState m_JointVelocity;
    NqManipulatorActiveState m_State;
    NqReArray m_Jacobian;
    NqEndEffector::SparsityDescription m_Sparsity;
    NqJacobianState m_JacobianState;
    NqCoreVelocityControlTool m_Tool;
    NqReArray m_Metric;
    NqXmlRealVector m_Velocity;
    std::vector<NqXmlRealVector> m_Still;
    std::vector<NqXmlRealVector> m_Filtered;
    std::vector<NqXmlRealVector> m_Previous;
    std::vector<NqXmlRealVector> m_Errors;
    std::vector<double> m_Command;
    std::vector<double> m_Rates;
    std::vector<double> m_NullSpaceRates;
    double m_Determinant = 0.0;
};
