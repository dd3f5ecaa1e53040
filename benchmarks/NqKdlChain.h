#pragma once

#include "NqBenchmarkCase.h"

#include <kdl/chain.hpp>
#include <kdl/chainjnttojacsolver.hpp>
#include <kdl/jntarrayvel.hpp>
#include <kdl/tree.hpp>

/// The chain from the root to a constraint in Orocos KDL, a solver for each thing that it is asked for, and
/// how its joints are numbered by us.
class NqKdlChain {
public:
    /// A tree from URDF text; false if it can't be read.
    static bool readTree(const std::string& urdf, KDL::Tree& tree);

    NqKdlChain(const KDL::Tree& tree, const NqBenchmarkCase& benchmarkCase,
               const NqBenchmarkCase::Task& task);

    const KDL::Chain& chain() const { return m_Chain; }
    /// Our indices of the chain's joints.
    const std::vector<unsigned>& joints() const { return m_Joints; }

    /// Fills in the chain's joints from those of a pose.
    void setPositions(const NqBenchmarkCase::Pose& pose, KDL::JntArray& positions) const;
    void setVelocities(const NqBenchmarkCase::Pose& pose, KDL::JntArray& velocities) const;

    static NqCoordinateSystemTransformation converted(const KDL::Frame& frame);

private:
    KDL::Chain m_Chain;
    std::vector<unsigned> m_Joints;
};
