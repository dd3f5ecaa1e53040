#pragma once

#include "NqBenchmarkCase.h"

#include <Eigen/Core>

/// Frames, Jacobian and velocities of a case's constraints by some library, in Eigen's types.
class NqPeerKinematics {
public:
    explicit NqPeerKinematics(const NqBenchmarkCase& benchmarkCase)
        : m_Jacobian(Eigen::MatrixXd::Zero(benchmarkCase.rows(), benchmarkCase.joints())),
          m_Velocity(benchmarkCase.rows()), m_Placements(benchmarkCase.tasks().size()) {}
    virtual ~NqPeerKinematics() = default;

    virtual const char* name() const = 0;
    virtual bool isOurs() const { return false; }

    /// Finds everything for a step of the case's motion.
    virtual void compute(unsigned step) = 0;

    /// Columns by joint index.
    const Eigen::MatrixXd& jacobian() const { return m_Jacobian; }
    const Eigen::VectorXd& velocity() const { return m_Velocity; }
    const std::vector<NqCoordinateSystemTransformation>& placements() const { return m_Placements; }

protected:
    Eigen::MatrixXd m_Jacobian;
    Eigen::VectorXd m_Velocity;
    std::vector<NqCoordinateSystemTransformation> m_Placements;
};
