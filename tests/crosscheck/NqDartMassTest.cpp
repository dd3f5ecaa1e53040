#include "NqCrossCheck.h"

#include <nqControlCore/endeffector/special/NqCenterOfMassEndEffector.h>
#include <nqControlCore/endeffector/special/NqSagEndEffector.h>
#include <nqControlCore/endeffector/special/NqSpatialMomentumEndEffector.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <NqDartSkeleton.h>

#include <dart/dynamics/BodyNode.hpp>
#include <dart/dynamics/DegreeOfFreedom.hpp>
#include <dart/dynamics/FreeJoint.hpp>

#include <cstdio>

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
    NqManipulatorActivePositionState& positions() { return m_State.activePositionState(); }

    // What DART has, vectors in the system frame, angular momenta about the origin of the base frame. What
    // has an entry for each joint is by our joint index.

    NqVector centerOfMass() const { return vector(m_Skeleton->getCOM()); }
    NqVector centerOfMassVelocity() const {
        return vector(Eigen::Vector3d(m_Skeleton->getCOMLinearVelocity()));
    }
    std::vector<NqVector> centerOfMassJacobian() const {
        const auto jacobian = m_Skeleton->getCOMLinearJacobian();
        return byJoint<NqVector>([&](std::size_t dof) {
            return vector(Eigen::Vector3d(jacobian.col(static_cast<Eigen::Index>(dof))));
        });
    }
    std::vector<double> gravityTorques(const NqVector& gravity) const {
        m_Skeleton->setGravity(vector(gravity));
        // What DART gives is what the motors have to bring.
        return byJoint<double>(
            [&](std::size_t dof) { return -m_Skeleton->getGravityForces()[static_cast<Eigen::Index>(dof)]; });
    }
    NqVector linearMomentum() const {
        return sumOverBodies([](const Eigen::Vector3d&, const Eigen::Vector3d&,
                                const Eigen::Vector3d& linear) { return linear; });
    }
    NqVector angularMomentum() const {
        const Eigen::Vector3d origin = m_Skeleton->getBodyNode(0)->getWorldTransform().translation();
        return sumOverBodies([&](const Eigen::Vector3d& place, const Eigen::Vector3d& angular,
                                 const Eigen::Vector3d& linear) -> Eigen::Vector3d {
            return angular + (place - origin).cross(linear);
        });
    }
    /// Linear and angular momenta with one joint in motion at unit rate and all else at rest.
    std::vector<NqVector> momentaOfUnitRates(NqVector (NqDartModel::*momentum)() const) const {
        const Eigen::VectorXd velocities = m_Skeleton->getVelocities();
        const std::vector<NqVector> result = byJoint<NqVector>([&](std::size_t dof) {
            m_Skeleton->resetVelocities();
            m_Skeleton->setVelocity(dof, 1.0);
            return (this->*momentum)();
        });
        m_Skeleton->setVelocities(velocities);
        return result;
    }

private:
    template <typename Value, typename ValueOf>
    std::vector<Value> byJoint(ValueOf valueOf) const {
        std::vector<Value> result(m_Joints.size());
        for (std::size_t i = 0; i < m_Joints.size(); ++i) {
            result[m_Joints[i]] = valueOf(i + 6);
        }
        return result;
    }

    /// Adds up what `valueOf` makes of the place of each body, its angular momentum about that, and its
    /// linear one. DART's own momenta are in the axes of the body.
    NqVector sumOverBodies(auto valueOf) const {
        Eigen::Vector3d sum = Eigen::Vector3d::Zero();
        for (const dart::dynamics::BodyNode* body : m_Skeleton->getBodyNodes()) {
            const Eigen::Isometry3d& frame = body->getWorldTransform();
            const Eigen::Vector6d momentum = body->getSpatialInertia() * body->getSpatialVelocity();
            sum += valueOf(frame.translation(), frame.linear() * momentum.head<3>(),
                           frame.linear() * momentum.tail<3>());
        }
        return vector(sum);
    }

    NqTestModel m_Model;
    NqManipulatorActiveState m_State;
    dart::dynamics::SkeletonPtr m_Skeleton;
    std::vector<unsigned> m_Joints; ///< our indices of DART's joints, in its order
};

using DartMass = NqCrossCheckTest<NqDartModel>;

/// DART keeps the turn of the base as a rotation vector, which costs it digits where the turn is small.
constexpr double kTolerance = 1.0e-10;

/// The columns of three rows from a first one on.
std::vector<NqVector> columnsOf(const NqReArray& j, unsigned row) {
    std::vector<NqVector> columns;
    for (std::size_t c = 0; c < j.columns(); ++c) {
        columns.emplace_back(j[row][c], j[row + 1][c], j[row + 2][c]);
    }
    return columns;
}

TEST_P(DartMass, CenterOfMass) {
    const NqIndividualManipulator& manipulator = m_Model.manipulator();
    const NqCenterOfMassEndEffector e;
    expectAgreement("placement of the centre of mass constraint", kTolerance, [&] {
        NqEndEffectorPlacement placement;
        e.calculatePlacement(manipulator, m_Model.state(), placement);
        return nqDeviation(m_Model.centerOfMass(), placement.coordSysXForm().translation());
    });
    expectAgreement("its velocity", kTolerance, [&] {
        NqXmlRealVector v;
        e.calculateVelocity(manipulator, m_Model.state(), v, 0);
        return nqDeviation(m_Model.centerOfMassVelocity(), NqVector(v[0], v[1], v[2]));
    });
    expectAgreement("its rows", kTolerance, [&] {
        NqReArray j;
        e.insertJacobianComponent(manipulator, 0, {}, true, m_Model.state(), j);
        std::vector<NqVector> ours = columnsOf(j, 0);
        const std::vector<NqVector> reference = m_Model.centerOfMassJacobian();
        for (unsigned joint = 0; joint < ours.size(); ++joint) {
            const NqManipulatorLink& link = *manipulator.linkByIndex(joint);
            if (link.joint().type() == NqJointDescription::Prismatic) {
                ours[joint] = ours[joint] * link.compositeMass(); // which these columns leave out
            }
        }
        return nqDeviation(reference, ours);
    });
}

TEST_P(DartMass, GravityTorques) {
    const NqIndividualManipulator& manipulator = m_Model.manipulator();
    NqSagEndEffector e;
    NqLabelVector labels;
    for (unsigned joint = 0; joint < manipulator.numberOfJoints(); ++joint) {
        labels.pushBack(manipulator.linkByIndex(joint)->linkLabel());
    }
    e.setLinkLabels(labels);
    e.setSpringConstants(NqXmlRealVector(labels.size(), 2.0));
    for (const NqVector& gravity : {NqVector(e.gravity().value()), NqVector(3.0, -5.0, 2.0)}) {
        e.setGravity(gravity);
        expectAgreement("torques in the sag residual", kTolerance, [&] {
            NqEndEffectorPlacement placement;
            e.calculatePlacement(manipulator, m_Model.state(), placement);
            std::vector<double> torques = m_Model.state().positionState().jointPositions();
            for (std::size_t joint = 0; joint < torques.size(); ++joint) {
                torques[joint] = 2.0 * torques[joint] - placement.dataVector()[joint];
            }
            return nqDeviation(m_Model.gravityTorques(gravity), torques);
        });
    }
}

TEST_P(DartMass, Momenta) {
    const NqIndividualManipulator& manipulator = m_Model.manipulator();
    const NqSpatialMomentumEndEffector e;
    NqReArray j;
    expectAgreement("rows of momentum times rates", kTolerance, [&] {
        e.insertJacobianComponent(manipulator, 0, {}, false, m_Model.state(), j);
        std::vector<double> x = m_Model.state().velocityState().jointVelocities();
        const NqGeneralMotion& base = m_Model.state().velocityState().baseMotion();
        for (unsigned i = 0; i < 6; ++i) {
            x.push_back(base[i]);
        }
        std::vector<double> p;
        EXPECT_TRUE(j.transform(x, p));
        return std::max(nqDeviation(m_Model.linearMomentum(), NqVector(p[0], p[1], p[2])),
                        nqDeviation(m_Model.angularMomentum(), NqVector(p[3], p[4], p[5])));
    });
    expectAgreement("rows of momentum", kTolerance, [&] {
        e.insertJacobianComponent(manipulator, 0, {}, true, m_Model.state(), j);
        return std::max(
            nqDeviation(m_Model.momentaOfUnitRates(&NqDartModel::linearMomentum), columnsOf(j, 0)),
            nqDeviation(m_Model.momentaOfUnitRates(&NqDartModel::angularMomentum), columnsOf(j, 3)));
    });
}

INSTANTIATE_TEST_SUITE_P(Models, DartMass, testing::ValuesIn(nqCrossCheckFiles()), nqCrossCheckName);

} // namespace
