#pragma once

#include "NqPeerKinematics.h"

#include <Eigen/Geometry>

// DART's headers are large, and want more libraries where they are included.
namespace dart::dynamics {
class BodyNode;
class Skeleton;
} // namespace dart::dynamics

/// Kinematics by DART.
class NqDartKinematics : public NqPeerKinematics {
public:
    /// Null if DART can't read the case's robot.
    static std::unique_ptr<NqDartKinematics> make(const NqBenchmarkCase& benchmarkCase);

    NqDartKinematics(const NqBenchmarkCase& benchmarkCase,
                     std::shared_ptr<dart::dynamics::Skeleton> skeleton);

    const char* name() const override { return "DART"; }
    void compute(unsigned step) override;

private:
    struct Branch {
        const NqBenchmarkCase::Task* task;
        const dart::dynamics::BodyNode* body;
        std::vector<unsigned> joints; ///< our indices of the columns that DART's Jacobian has
        bool hasOffset;
        Eigen::Isometry3d offset;
    };

    template <typename Jacobian>
    void insert(const Branch& branch, const Jacobian& jacobian, const NqBenchmarkCase::Pose& pose);

    const NqBenchmarkCase& m_Case;
    std::shared_ptr<dart::dynamics::Skeleton> m_Skeleton;
    std::vector<unsigned> m_Joints; ///< our indices of DART's joints
    std::vector<Branch> m_Branches;
    Eigen::VectorXd m_Positions;
    Eigen::VectorXd m_Velocities;
};
