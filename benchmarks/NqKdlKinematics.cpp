#include "NqKdlKinematics.h"

NqKdlKinematics::Branch::Branch(const KDL::Tree& tree, const NqBenchmarkCase& benchmarkCase,
                                const NqBenchmarkCase::Task& constraint)
    : task(constraint), chain(tree, benchmarkCase, constraint), frameSolver(chain.chain()),
      jacobianSolver(chain.chain()), positions(chain.chain().getNrOfJoints()),
      velocities(chain.chain().getNrOfJoints()), jacobian(chain.chain().getNrOfJoints()) {}

NqKdlKinematics::NqKdlKinematics(const NqBenchmarkCase& benchmarkCase, const KDL::Tree& tree)
    : NqPeerKinematics(benchmarkCase), m_Case(benchmarkCase) {
    for (const NqBenchmarkCase::Task& task : benchmarkCase.tasks()) {
        m_Branches.emplace_back(tree, benchmarkCase, task);
    }
}

void NqKdlKinematics::compute(unsigned step) {
    const NqBenchmarkCase::Pose& pose = m_Case.pose(step);
    auto placement = m_Placements.begin();
    for (Branch& branch : m_Branches) {
        branch.chain.setPositions(pose, branch.positions);
        branch.chain.setVelocities(pose, branch.velocities);
        branch.frameSolver.JntToCart(branch.positions, branch.frame);
        branch.jacobianSolver.JntToJac(branch.positions, branch.jacobian);
        *placement++ = NqKdlChain::converted(branch.frame);
        const auto rows = branch.jacobian.data.topRows(branch.task.rows);
        for (unsigned i = 0; i < branch.chain.joints().size(); ++i) {
            m_Jacobian.col(branch.chain.joints()[i]).segment(branch.task.row, branch.task.rows) = rows.col(i);
        }
        m_Velocity.segment(branch.task.row, branch.task.rows).noalias() = rows * branch.velocities.data;
    }
}
