#include "NqCrossCheck.h"

#include <nqControlCore/endeffector/special/NqCenterOfMassEndEffector.h>
#include <nqControlCore/endeffector/special/NqSpatialMomentumEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <NqDartSkeleton.h>
#include <support/NqTestModels.h>

#include <dart/dynamics/BodyNode.hpp>
#include <dart/dynamics/DegreeOfFreedom.hpp>
#include <dart/dynamics/FreeJoint.hpp>

#include <fstream>
#include <sstream>

namespace {

NqVector vector(const Eigen::Vector3d& v) {
    return {v.x(), v.y(), v.z()};
}

Eigen::Vector3d vector(const NqVector& v) {
    return {v.x(), v.y(), v.z()};
}

/// One robot description read twice, by this library and by DART, with a base that moves, in one state in
/// both.
class NqDartModel {
public:
    /// False where one of the two can't read the file.
    bool read(const std::string& fileName) {
        std::stringstream text;
        text << std::ifstream(fileName).rdbuf();
        std::string urdf = text.str();
        // To DART a link of this name isn't part of the robot.
        for (std::size_t at; (at = urdf.find("\"world\"")) != std::string::npos;) {
            urdf.replace(at, 7, "\"floor of the world\"");
        }
        auto manipulator = std::make_shared<NqIndividualManipulator>();
        m_Skeleton = nqDartSkeleton(urdf, true);
        if (!NqUrdfReader::readString(urdf, *manipulator) || !m_Skeleton) {
            return false;
        }
        m_Model.manipulator = manipulator;
        m_Model.movesBase = true;
        for (std::size_t i = 6; i < m_Skeleton->getNumDofs(); ++i) {
            const std::string& child = m_Skeleton->getDof(i)->getChildBodyNode()->getName();
            m_Joints.push_back(manipulator->linkByLabel(child)->jointIndex());
        }
        return m_Joints.size() == manipulator->numberOfJoints();
    }

    /// Gives the base and all joints a place and a velocity at random.
    void setRandomState(std::mt19937_64& random) {
        m_State = nqRandomState(m_Model, random);
        const NqCoordinateSystemTransformation& base = m_State.positionState().baseFrame();
        double q[4];
        base.orientation().getQuaternion(q[0], q[1], q[2], q[3]);
        Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
        pose.translate(vector(base.translation())).rotate(Eigen::Quaterniond(q[0], q[1], q[2], q[3]));
        const NqGeneralMotion& motion = m_State.velocityState().baseMotion();
        Eigen::Vector6d angularFirst;
        angularFirst << vector(motion.angular()), vector(motion.linear());
        auto& joint = dynamic_cast<dart::dynamics::FreeJoint&>(*m_Skeleton->getJoint(0));
        joint.setTransform(pose);
        for (std::size_t i = 0; i < m_Joints.size(); ++i) {
            m_Skeleton->setPosition(i + 6, m_State.positionState().jointPositions()[m_Joints[i]]);
            m_Skeleton->setVelocity(i + 6, m_State.velocityState().jointVelocities()[m_Joints[i]]);
        }
        joint.setSpatialVelocity(angularFirst, dart::dynamics::Frame::World(),
                                 dart::dynamics::Frame::World());
    }

    const NqIndividualManipulator& manipulator() const { return *m_Model.manipulator; }
    NqManipulatorActiveState& state() { return m_State; }

    // What DART has, vectors in the system frame.

    NqVector centerOfMass() const { return vector(m_Skeleton->getCOM()); }
    NqVector centerOfMassVelocity() const {
        return vector(Eigen::Vector3d(m_Skeleton->getCOMLinearVelocity()));
    }
    /// The linear momentum, and the angular one about the origin of the base frame. DART's own are in the
    /// axes of each body.
    NqGeneralMotion momenta() const {
        const Eigen::Vector3d origin = m_Skeleton->getBodyNode(0)->getWorldTransform().translation();
        NqVector linear, angular;
        for (const dart::dynamics::BodyNode* body : m_Skeleton->getBodyNodes()) {
            const Eigen::Isometry3d& frame = body->getWorldTransform();
            const Eigen::Vector6d momentum = body->getSpatialInertia() * body->getSpatialVelocity();
            const NqVector own = vector(Eigen::Vector3d(frame.linear() * momentum.tail<3>()));
            const NqVector place = vector(Eigen::Vector3d(frame.translation() - origin));
            linear += own;
            angular += vector(Eigen::Vector3d(frame.linear() * momentum.head<3>())) + place.cross(own);
        }
        return {linear, angular};
    }

private:
    NqTestModel m_Model;
    NqManipulatorActiveState m_State;
    dart::dynamics::SkeletonPtr m_Skeleton;
    std::vector<unsigned> m_Joints; ///< our indices of DART's joints, in its order
};

class DartMass : public testing::TestWithParam<std::string> {};

/// In random states. DART keeps the turn of the base as a rotation vector, which costs it digits where the
/// turn is small.
TEST_P(DartMass, CenterOfMassAndMomenta) {
    const NqCenterOfMassEndEffector center;
    const NqSpatialMomentumEndEffector momentum;
    NqDartModel model;
    ASSERT_TRUE(model.read(GetParam()));
    nqExpectAgreement(GetParam() + ": centre of mass and momenta", 1.0e-10, [&](std::mt19937_64& random) {
        model.setRandomState(random);
        NqManipulatorActiveState& state = model.state();
        NqEndEffectorPlacement placement;
        NqXmlRealVector v;
        center.calculatePlacement(model.manipulator(), state, placement);
        center.calculateVelocity(model.manipulator(), state, v, 0);
        NqReArray rows;
        momentum.insertJacobianComponent(model.manipulator(), 0, {}, false, state, rows);
        std::vector<double> rates = state.velocityState().jointVelocities(), p;
        const NqGeneralMotion &base = state.velocityState().baseMotion(), expected = model.momenta();
        for (unsigned i = 0; i < 6; ++i) {
            rates.push_back(base[i]);
        }
        EXPECT_TRUE(rows.transform(rates, p));
        return std::max({nqDeviation(model.centerOfMass(), placement.coordSysXForm().translation()),
                         nqDeviation(model.centerOfMassVelocity(), NqVector(v[0], v[1], v[2])),
                         nqDeviation(expected.linear(), NqVector(p[0], p[1], p[2])),
                         nqDeviation(expected.angular(), NqVector(p[3], p[4], p[5]))});
    });
}

INSTANTIATE_TEST_SUITE_P(Models, DartMass, testing::ValuesIn(nqCrossCheckFiles()), nqCrossCheckName);

} // namespace
