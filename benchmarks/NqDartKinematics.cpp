#include "NqDartKinematics.h"

#include "NqDartSkeleton.h"

#include <dart/dynamics/BodyNode.hpp>
#include <dart/dynamics/DegreeOfFreedom.hpp>
#include <dart/dynamics/Skeleton.hpp>

#include <cstdio>

std::unique_ptr<NqDartKinematics> NqDartKinematics::make(const NqBenchmarkCase& benchmarkCase) {
    const dart::dynamics::SkeletonPtr skeleton = nqDartSkeleton(benchmarkCase.urdf(), false);
    if (!skeleton || skeleton->getNumDofs() != benchmarkCase.joints()) {
        std::fprintf(stderr, "%s: DART finds %zu joints, and takes no part\n", benchmarkCase.title().c_str(),
                     skeleton ? skeleton->getNumDofs() : 0);
        return nullptr;
    }
    return std::make_unique<NqDartKinematics>(benchmarkCase, skeleton);
}

NqDartKinematics::NqDartKinematics(const NqBenchmarkCase& benchmarkCase,
                                   std::shared_ptr<dart::dynamics::Skeleton> skeleton)
    : NqPeerKinematics(benchmarkCase), m_Case(benchmarkCase), m_Skeleton(std::move(skeleton)),
      m_Positions(benchmarkCase.joints()), m_Velocities(benchmarkCase.joints()) {
    const NqIndividualManipulator& manipulator = benchmarkCase.manipulator();
    for (std::size_t i = 0; i < m_Skeleton->getNumDofs(); ++i) {
        const std::string& link = m_Skeleton->getDof(i)->getChildBodyNode()->getName();
        m_Joints.push_back(manipulator.linkByLabel(link)->jointIndex());
    }
    for (const NqBenchmarkCase::Task& task : benchmarkCase.tasks()) {
        Branch branch{&task,
                      m_Skeleton->getBodyNode(task.link),
                      {},
                      task.offset != NqCoordinateSystemTransformation(),
                      Eigen::Isometry3d::Identity()};
        for (const std::size_t index : branch.body->getDependentGenCoordIndices()) {
            branch.joints.push_back(m_Joints[index]);
        }
        double w = 1.0, x = 0.0, y = 0.0, z = 0.0;
        task.offset.orientation().getQuaternion(w, x, y, z);
        const NqVector& p = task.offset.translation();
        branch.offset.translate(Eigen::Vector3d(p.x(), p.y(), p.z())).rotate(Eigen::Quaterniond(w, x, y, z));
        m_Branches.push_back(branch);
    }
}

void NqDartKinematics::compute(unsigned step) {
    const NqBenchmarkCase::Pose& pose = m_Case.pose(step);
    for (std::size_t i = 0; i < m_Joints.size(); ++i) {
        m_Positions[static_cast<Eigen::Index>(i)] = pose.positions[m_Joints[i]];
        m_Velocities[static_cast<Eigen::Index>(i)] = pose.velocities[m_Joints[i]];
    }
    m_Skeleton->setPositions(m_Positions);
    m_Skeleton->setVelocities(m_Velocities);
    auto placement = m_Placements.begin();
    for (const Branch& branch : m_Branches) {
        Eigen::Isometry3d frame = branch.body->getWorldTransform();
        if (branch.hasOffset) {
            frame = frame * branch.offset;
            insert(branch, branch.body->getWorldJacobian(branch.offset.translation()), pose);
        } else {
            insert(branch, branch.body->getWorldJacobian(), pose);
        }
        const Eigen::Quaterniond q(frame.linear());
        const auto& p = frame.translation();
        NqOrientation orientation;
        orientation.setFromQuaternion(q.w(), q.x(), q.y(), q.z());
        *placement++ = {NqVector(p.x(), p.y(), p.z()), orientation};
    }
}

/// DART has the angular rows first.
template <typename Jacobian>
void NqDartKinematics::insert(const Branch& branch, const Jacobian& jacobian,
                              const NqBenchmarkCase::Pose& pose) {
    const unsigned row = branch.task->row;
    const bool isFrame = branch.task->rows == 6;
    auto velocity = m_Velocity.segment(row, branch.task->rows);
    velocity.setZero();
    for (std::size_t i = 0; i < branch.joints.size(); ++i) {
        const auto source = jacobian.col(static_cast<Eigen::Index>(i));
        auto target = m_Jacobian.col(branch.joints[i]).segment(row, branch.task->rows);
        target.template head<3>() = source.template tail<3>();
        if (isFrame) {
            target.template tail<3>() = source.template head<3>();
        }
        velocity += target * pose.velocities[branch.joints[i]];
    }
}
