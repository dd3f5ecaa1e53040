#include "support/NqTestFiles.h"
#include "support/NqTestModels.h"

#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/endeffector/special/NqCenterOfMassEndEffector.h>
#include <nqControlCore/endeffector/special/NqSpatialMomentumEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <NqDartSkeleton.h>

#include <dart/dynamics/BodyNode.hpp>
#include <dart/dynamics/DegreeOfFreedom.hpp>
#include <dart/dynamics/FreeJoint.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

/// Descriptions to compare on: the models of the project, those of its tests, and the files in the folder
/// that the environment variable NQ_CROSSCHECK_MODELS names.
std::vector<std::string> descriptions() {
    std::vector<std::string> result;
    const char* further = std::getenv("NQ_CROSSCHECK_MODELS");
    std::vector<std::string> folders{nqModelFile(), nqTestModelFile()};
    if (further) {
        folders.emplace_back(further);
    }
    for (const std::string& folder : folders) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().extension() == ".urdf") {
                result.push_back(entry.path().string());
            }
        }
    }
    return result;
}

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
    const dart::dynamics::Skeleton& skeleton() const { return *m_Skeleton; }

private:
    NqTestModel m_Model;
    NqManipulatorActiveState m_State;
    dart::dynamics::SkeletonPtr m_Skeleton;
    std::vector<unsigned> m_Joints; ///< our indices of DART's joints, in its order
};

class Dart : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override { ASSERT_TRUE(m_Model.read(GetParam())); }

    /// DART keeps the turn of the base as a rotation vector, which costs it digits where the turn is small.
    static void expectNear(const Eigen::Vector3d& reference, const NqVector& actual,
                           const std::string& what) {
        EXPECT_LE((actual - vector(reference)).mag(), 1.0e-10 * std::max(1.0, reference.norm())) << what;
    }

    /// The motion that six rows of a Jacobian, with columns for the base, make of all rates.
    NqGeneralMotion timesRates(const NqEndEffector& constraint) {
        NqReArray rows;
        constraint.insertJacobianComponent(m_Model.manipulator(), 0, {}, false, m_Model.state(), rows);
        const NqVelocityState& velocity = m_Model.state().velocityState();
        std::vector<double> rates = velocity.jointVelocities(), p;
        for (unsigned i = 0; i < 6; ++i) {
            rates.push_back(velocity.baseMotion()[i]);
        }
        EXPECT_TRUE(rows.transform(rates, p));
        return {{p[0], p[1], p[2]}, {p[3], p[4], p[5]}};
    }

    NqDartModel m_Model;
};

TEST_P(Dart, AgreesOnFramesVelocitiesAndMomenta) {
    std::mt19937_64 random(20240);
    for (int pose = 0; pose < 20; ++pose) {
        SCOPED_TRACE(pose);
        m_Model.setRandomState(random);
        NqManipulatorActiveState& state = m_Model.state();
        const dart::dynamics::Skeleton& skeleton = m_Model.skeleton();
        const Eigen::Vector3d origin = skeleton.getBodyNode(0)->getWorldTransform().translation();
        Eigen::Vector3d linear = Eigen::Vector3d::Zero(), angular = linear;
        for (const dart::dynamics::BodyNode* body : skeleton.getBodyNodes()) {
            const std::string& name = body->getName();
            const Eigen::Isometry3d& reference = body->getWorldTransform();
            const NqManipulatorLink& link = *m_Model.manipulator().linkByLabel(name);
            const auto& frame = link.primaryFrameInSystem(state.activePositionState());
            expectNear(reference.translation(), frame.translation(), name + ", place");
            expectNear(reference.linear().col(0), frame.orientation().xAxis(), name + ", x axis");
            expectNear(reference.linear().col(2), frame.orientation().zAxis(), name + ", z axis");
            NqFrameEndEffector constraint;
            constraint.setLinkIdentifier(name);
            for (const NqGeneralMotion& v : {link.primaryFrameVelocity(state), timesRates(constraint)}) {
                expectNear(body->getLinearVelocity(), v.linear(), name + ", velocity");
                expectNear(body->getAngularVelocity(), v.angular(), name + ", turn");
            }
            // DART's own momenta are in the axes of the body.
            const Eigen::Vector6d momentum = body->getSpatialInertia() * body->getSpatialVelocity();
            const Eigen::Vector3d own = reference.linear() * momentum.tail<3>();
            linear += own;
            angular +=
                reference.linear() * momentum.head<3>() + (reference.translation() - origin).cross(own);
        }
        const NqGeneralMotion momenta = timesRates(NqSpatialMomentumEndEffector());
        expectNear(linear, momenta.linear(), "momentum");
        expectNear(angular, momenta.angular(), "angular momentum, about the base");
        const NqCenterOfMassEndEffector center;
        NqEndEffectorPlacement placement;
        NqXmlRealVector v;
        center.calculatePlacement(m_Model.manipulator(), state, placement);
        center.calculateVelocity(m_Model.manipulator(), state, v, 0);
        expectNear(skeleton.getCOM(), placement.coordSysXForm().translation(), "centre of mass");
        expectNear(skeleton.getCOMLinearVelocity(), {v[0], v[1], v[2]}, "its velocity");
    }
}

INSTANTIATE_TEST_SUITE_P(Models, Dart, testing::ValuesIn(descriptions()),
                         [](const auto& test) { return std::filesystem::path(test.param).stem().string(); });

} // namespace
