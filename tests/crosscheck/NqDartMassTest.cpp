#include "NqCrossCheck.h"

#include <nqControlCore/endeffector/special/NqCenterOfMassEndEffector.h>
#include <nqControlCore/endeffector/special/NqSagEndEffector.h>
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
    /// By our joint index. What DART gives is what the motors have to bring.
    std::vector<double> gravityTorques(const NqVector& gravity) const {
        m_Skeleton->setGravity(vector(gravity));
        std::vector<double> result(m_Joints.size());
        for (std::size_t i = 0; i < m_Joints.size(); ++i) {
            result[m_Joints[i]] = -m_Skeleton->getGravityForces()[static_cast<Eigen::Index>(i + 6)];
        }
        return result;
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

class DartMass : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override { ASSERT_TRUE(m_Model.read(GetParam())); }

    /// In random states. DART keeps the turn of the base as a rotation vector, which costs it digits where
    /// the turn is small.
    template <typename DeviationOf>
    void expectAgreement(const char* what, DeviationOf deviationOf) {
        nqExpectAgreement(GetParam() + ": " + what, 1.0e-10, [&](std::mt19937_64& random) {
            m_Model.setRandomState(random);
            return deviationOf(m_Model.state());
        });
    }

    NqDartModel m_Model;
    const NqIndividualManipulator& manipulator() const { return m_Model.manipulator(); }
};

TEST_P(DartMass, CenterOfMass) {
    const NqCenterOfMassEndEffector e;
    expectAgreement("centre of mass", [&](NqManipulatorActiveState& state) {
        NqEndEffectorPlacement placement;
        NqXmlRealVector v;
        e.calculatePlacement(manipulator(), state, placement);
        e.calculateVelocity(manipulator(), state, v, 0);
        return std::max(nqDeviation(m_Model.centerOfMass(), placement.coordSysXForm().translation()),
                        nqDeviation(m_Model.centerOfMassVelocity(), NqVector(v[0], v[1], v[2])));
    });
}

TEST_P(DartMass, GravityTorques) {
    NqSagEndEffector e;
    NqLabelVector labels;
    for (unsigned joint = 0; joint < manipulator().numberOfJoints(); ++joint) {
        labels.pushBack(manipulator().linkByIndex(joint)->linkLabel());
    }
    e.setLinkLabels(labels);
    e.setSpringConstants(NqXmlRealVector(labels.size(), 2.0));
    for (const NqVector& gravity : {NqVector(e.gravity().value()), NqVector(3.0, -5.0, 2.0)}) {
        e.setGravity(gravity);
        expectAgreement("torques in the sag residual", [&](NqManipulatorActiveState& state) {
            NqEndEffectorPlacement placement;
            e.calculatePlacement(manipulator(), state, placement);
            std::vector<double> torques = state.positionState().jointPositions();
            for (std::size_t joint = 0; joint < torques.size(); ++joint) {
                torques[joint] = 2.0 * torques[joint] - placement.dataVector()[joint];
            }
            return nqDeviation(m_Model.gravityTorques(gravity), torques);
        });
    }
}

TEST_P(DartMass, Momenta) {
    const NqSpatialMomentumEndEffector e;
    NqReArray j;
    expectAgreement("rows of momentum times rates", [&](NqManipulatorActiveState& state) {
        e.insertJacobianComponent(manipulator(), 0, {}, false, state, j);
        std::vector<double> x = state.velocityState().jointVelocities(), p;
        const NqGeneralMotion &base = state.velocityState().baseMotion(), expected = m_Model.momenta();
        for (unsigned i = 0; i < 6; ++i) {
            x.push_back(base[i]);
        }
        EXPECT_TRUE(j.transform(x, p));
        return std::max(nqDeviation(expected.linear(), NqVector(p[0], p[1], p[2])),
                        nqDeviation(expected.angular(), NqVector(p[3], p[4], p[5])));
    });
}

INSTANTIATE_TEST_SUITE_P(Models, DartMass, testing::ValuesIn(nqCrossCheckFiles()), nqCrossCheckName);

} // namespace
