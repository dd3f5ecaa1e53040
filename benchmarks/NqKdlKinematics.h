#pragma once

#include "NqKdlChain.h"
#include "NqPeerKinematics.h"

#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/jacobian.hpp>

#include <list>

/// Kinematics by Orocos KDL: a chain for each constraint, its frame and its Jacobian, and the velocity as
/// their product with the rates.
class NqKdlKinematics : public NqPeerKinematics {
public:
    NqKdlKinematics(const NqBenchmarkCase& benchmarkCase, const KDL::Tree& tree);

    const char* name() const override { return "KDL chains"; }
    void compute(unsigned step) override;

private:
    /// A constraint's chain with what works on it, which refers to it.
    struct Branch {
        Branch(const KDL::Tree& tree, const NqBenchmarkCase& benchmarkCase,
               const NqBenchmarkCase::Task& task);

        const NqBenchmarkCase::Task& task;
        NqKdlChain chain;
        KDL::ChainFkSolverPos_recursive frameSolver;
        KDL::ChainJntToJacSolver jacobianSolver;
        KDL::JntArray positions;
        KDL::JntArray velocities;
        KDL::Frame frame;
        KDL::Jacobian jacobian;
    };

    const NqBenchmarkCase& m_Case;
    std::list<Branch> m_Branches;
};
