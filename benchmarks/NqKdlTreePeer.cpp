#include "NqKdlTreePeer.h"

namespace {

std::vector<std::string> endpoints(const NqBenchmarkCase& benchmarkCase) {
    std::vector<std::string> links;
    for (const NqBenchmarkCase::Task& task : benchmarkCase.tasks()) {
        links.push_back(task.link);
    }
    return links;
}

} // namespace

NqKdlTreePeer::Branch::Branch(const KDL::Tree& tree, const NqBenchmarkCase& benchmarkCase,
                              const NqBenchmarkCase::Task& task)
    : chain(tree, benchmarkCase, task), solver(chain.chain()), state(chain.chain().getNrOfJoints()) {}

NqKdlTreePeer::NqKdlTreePeer(const NqBenchmarkCase& benchmarkCase, const KDL::Tree& tree)
    : m_Case(benchmarkCase), m_Placements(benchmarkCase.tasks().size()),
      m_TreeIndices(benchmarkCase.joints()), m_Positions(tree.getNrOfJoints()), m_Rates(tree.getNrOfJoints()),
      m_Solver(tree, endpoints(benchmarkCase)), m_Filter(benchmarkCase) {
    // Without damping it divides zero by zero where joints don't move any endpoint.
    m_Solver.setLambda(1.0e-7);
    for (const NqBenchmarkCase::Task& task : benchmarkCase.tasks()) {
        m_Branches.emplace_back(tree, benchmarkCase, task);
        m_Commands.push_back(&m_Twists[task.link]);
    }
    for (const auto& [label, element] : tree.getSegments()) {
        if (element.segment.getJoint().getType() != KDL::Joint::None) {
            m_TreeIndices[benchmarkCase.manipulator().linkByLabel(label)->jointIndex()] = element.q_nr;
        }
    }
}

void NqKdlTreePeer::kinematics(unsigned step) {
    const NqBenchmarkCase::Pose& pose = m_Case.pose(step);
    for (unsigned j = 0; j < m_TreeIndices.size(); ++j) {
        m_Positions(m_TreeIndices[j]) = pose.positions[j];
    }
    auto placement = m_Placements.begin();
    for (Branch& branch : m_Branches) {
        branch.chain.setPositions(pose, branch.state.q);
        branch.chain.setVelocities(pose, branch.state.qdot);
        branch.solver.JntToCart(branch.state, branch.frame);
        *placement++ = NqKdlChain::converted(branch.frame.GetFrame());
    }
}

void NqKdlTreePeer::step(unsigned step) {
    kinematics(step);
    m_Filter.filter(m_Placements);
    for (std::size_t e = 0; e < m_Commands.size(); ++e) {
        const double* v = m_Filter.command().data() + m_Case.tasks()[e].row;
        *m_Commands[e] = {KDL::Vector(v[0], v[1], v[2]), KDL::Vector(v[3], v[4], v[5])};
    }
    m_Solver.CartToJnt(m_Positions, m_Twists, m_Rates);
}

std::vector<double> NqKdlTreePeer::rates() const {
    std::vector<double> rates;
    for (const unsigned index : m_TreeIndices) {
        rates.push_back(m_Rates(index));
    }
    return rates;
}

std::vector<double> NqKdlTreePeer::velocity() const {
    std::vector<double> velocity;
    for (const Branch& branch : m_Branches) {
        const KDL::Twist v = branch.frame.GetTwist();
        velocity.insert(velocity.end(), {v.vel.x(), v.vel.y(), v.vel.z(), v.rot.x(), v.rot.y(), v.rot.z()});
    }
    return velocity;
}
