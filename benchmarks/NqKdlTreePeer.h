#pragma once

#include "NqCommandFilter.h"
#include "NqControlPeer.h"
#include "NqKdlKinematics.h"

#include <kdl/chainfksolvervel_recursive.hpp>
#include <kdl/treeiksolvervel_wdls.hpp>

/// Several frames by the tree solver of Orocos KDL, which finds its Jacobians itself. Frames and velocities
/// come from chains.
class NqKdlTreePeer : public NqControlPeer {
public:
    NqKdlTreePeer(const NqBenchmarkCase& benchmarkCase, const KDL::Tree& tree);

    const std::string& name() const override { return m_Name; }
    Answer answer() const override { return Answer::LeastNorm; }
    void kinematics(unsigned step) override;
    void step(unsigned step) override;

    std::vector<double> rates() const override;
    std::vector<double> nullSpaceRates() const override { return {}; }
    std::vector<double> velocity() const override;
    std::vector<double> command() const override { return m_Filter.command(); }

private:
    /// A constraint's chain with what works on it, which refers to it.
    struct Branch {
        Branch(const KDL::Tree& tree, const NqBenchmarkCase& benchmarkCase,
               const NqBenchmarkCase::Task& task);

        NqKdlChain chain;
        KDL::ChainFkSolverVel_recursive solver;
        KDL::JntArrayVel state;
        KDL::FrameVel frame;
    };

    const NqBenchmarkCase& m_Case;
    std::string m_Name = "KDL tree solver";
    std::list<Branch> m_Branches;
    std::vector<NqCoordinateSystemTransformation> m_Placements;
    std::vector<KDL::Twist*> m_Commands; ///< by constraint; what they point to is in m_Twists
    KDL::Twists m_Twists;
    std::vector<unsigned> m_TreeIndices; ///< by joint index
    KDL::JntArray m_Positions;
    KDL::JntArray m_Rates;
    KDL::TreeIkSolverVel_wdls m_Solver;
    NqCommandFilter m_Filter;
};
