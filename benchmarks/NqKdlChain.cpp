#include "NqKdlChain.h"

#include <kdl_parser/kdl_parser.hpp>

bool NqKdlChain::readTree(const std::string& urdf, KDL::Tree& tree) {
    return kdl_parser::treeFromString(urdf, tree);
}

NqKdlChain::NqKdlChain(const KDL::Tree& tree, const NqBenchmarkCase& benchmarkCase,
                       const NqBenchmarkCase::Task& task) {
    tree.getChain(tree.getRootSegment()->first, task.link, m_Chain);
    for (const KDL::Segment& segment : m_Chain.segments) {
        if (segment.getJoint().getType() != KDL::Joint::None) {
            m_Joints.push_back(benchmarkCase.manipulator().linkByLabel(segment.getName())->jointIndex());
        }
    }
    if (task.offset != NqCoordinateSystemTransformation()) {
        double w = 1.0, x = 0.0, y = 0.0, z = 0.0;
        task.offset.orientation().getQuaternion(w, x, y, z);
        const NqVector& p = task.offset.translation();
        m_Chain.addSegment(
            KDL::Segment(KDL::Joint(KDL::Joint::None), KDL::Frame(KDL::Rotation::Quaternion(x, y, z, w),
                                                                  KDL::Vector(p.x(), p.y(), p.z()))));
    }
}

void NqKdlChain::setPositions(const NqBenchmarkCase::Pose& pose, KDL::JntArray& positions) const {
    for (unsigned i = 0; i < m_Joints.size(); ++i) {
        positions(i) = pose.positions[m_Joints[i]];
    }
}

void NqKdlChain::setVelocities(const NqBenchmarkCase::Pose& pose, KDL::JntArray& velocities) const {
    for (unsigned i = 0; i < m_Joints.size(); ++i) {
        velocities(i) = pose.velocities[m_Joints[i]];
    }
}

NqCoordinateSystemTransformation NqKdlChain::converted(const KDL::Frame& frame) {
    double w = 1.0, x = 0.0, y = 0.0, z = 0.0;
    frame.M.GetQuaternion(x, y, z, w);
    NqOrientation orientation;
    orientation.setFromQuaternion(w, x, y, z);
    return {NqVector(frame.p.x(), frame.p.y(), frame.p.z()), orientation};
}
