#include "NqKdlSolverPeer.h"

#include <kdl/chainiksolvervel_pinv.hpp>
#include <kdl/chainiksolvervel_pinv_nso.hpp>
#include <kdl/chainiksolvervel_wdls.hpp>

NqKdlSolverPeer::NqKdlSolverPeer(const NqBenchmarkCase& benchmarkCase, const KDL::Tree& tree, Method method)
    : m_Case(benchmarkCase), m_Answer(method == Method::PinvNso ? Answer::Exact : Answer::LeastNorm),
      m_Chain(tree, benchmarkCase, benchmarkCase.tasks().front()), m_FrameSolver(m_Chain.chain()),
      m_State(m_Chain.chain().getNrOfJoints()), m_Rates(m_Chain.chain().getNrOfJoints()),
      m_Filter(benchmarkCase) {
    const KDL::Chain& chain = m_Chain.chain();
    switch (method) {
    case Method::Pinv:
        m_Name = "KDL pinv";
        m_RateSolver = std::make_unique<KDL::ChainIkSolverVel_pinv>(chain);
        break;
    case Method::PinvNso: {
        m_Name = "KDL pinv_nso";
        const unsigned joints = chain.getNrOfJoints();
        KDL::JntArray posture(joints), weights(joints);
        weights.data.setOnes();
        m_RateSolver = std::make_unique<KDL::ChainIkSolverVel_pinv_nso>(chain, posture, weights);
        break;
    }
    case Method::Wdls:
        m_Name = "KDL wdls";
        m_RateSolver = std::make_unique<KDL::ChainIkSolverVel_wdls>(chain);
        break;
    }
}

void NqKdlSolverPeer::kinematics(unsigned step) {
    const NqBenchmarkCase::Pose& pose = m_Case.pose(step);
    m_Chain.setPositions(pose, m_State.q);
    m_Chain.setVelocities(pose, m_State.qdot);
    m_FrameSolver.JntToCart(m_State, m_Frame);
    m_Placements.front() = NqKdlChain::converted(m_Frame.GetFrame());
}

void NqKdlSolverPeer::step(unsigned step) {
    kinematics(step);
    m_Filter.filter(m_Placements);
    const std::vector<double>& v = m_Filter.command();
    m_RateSolver->CartToJnt(m_State.q, {KDL::Vector(v[0], v[1], v[2]), KDL::Vector(v[3], v[4], v[5])},
                            m_Rates);
}

std::vector<double> NqKdlSolverPeer::rates() const {
    std::vector<double> rates(m_Case.joints());
    for (unsigned i = 0; i < m_Chain.joints().size(); ++i) {
        rates[m_Chain.joints()[i]] = m_Rates(i);
    }
    return rates;
}

std::vector<double> NqKdlSolverPeer::velocity() const {
    const KDL::Twist v = m_Frame.GetTwist();
    return {v.vel.x(), v.vel.y(), v.vel.z(), v.rot.x(), v.rot.y(), v.rot.z()};
}
