#pragma once

#include "NqCommandFilter.h"
#include "NqControlPeer.h"
#include "NqKdlChain.h"

#include <kdl/chainfksolvervel_recursive.hpp>
#include <kdl/chainiksolver.hpp>

/// One constraint by a velocity solver of Orocos KDL, which finds its Jacobian itself.
class NqKdlSolverPeer : public NqControlPeer {
public:
    enum class Method {
        Pinv,    ///< pseudoinverse
        PinvNso, ///< pseudoinverse, with the null space used for a posture
        Wdls     ///< damped least squares, here without damping
    };

    /// The case must have one constraint, and that a frame.
    NqKdlSolverPeer(const NqBenchmarkCase& benchmarkCase, const KDL::Tree& tree, Method method);

    const std::string& name() const override { return m_Name; }
    Answer answer() const override { return m_Answer; }
    void kinematics(unsigned step) override;
    void step(unsigned step) override;

    std::vector<double> rates() const override;
    std::vector<double> nullSpaceRates() const override { return {}; }
    std::vector<double> velocity() const override;
    std::vector<double> command() const override { return m_Filter.command(); }

private:
    const NqBenchmarkCase& m_Case;
    std::string m_Name;
    Answer m_Answer;
    NqKdlChain m_Chain;
    KDL::ChainFkSolverVel_recursive m_FrameSolver;
    std::unique_ptr<KDL::ChainIkSolverVel> m_RateSolver;
    KDL::JntArrayVel m_State;
    KDL::FrameVel m_Frame;
    KDL::JntArray m_Rates;
    NqCommandFilter m_Filter;
    std::vector<NqCoordinateSystemTransformation> m_Placements{1};
};
