#include "support/NqTesting.h"

#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/endeffector/special/NqSpatialMomentumEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqGravitationalTorqueTool.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <kdl/treefksolverpos_recursive.hpp>
#include <kdl/treeidsolver_recursive_newton_euler.hpp>
#include <kdl/treejnttojacsolver.hpp>
#include <kdl_parser/kdl_parser.hpp>

namespace {

constexpr double kTolerance = 1.0e-12;

/// Descriptions to compare on: the models of the project, those of its tests, and the files in the folder
/// that the environment variable NQ_CROSSCHECK_MODELS names.
std::vector<std::string> files() {
    std::vector<std::string> result;
    const char* further = std::getenv("NQ_CROSSCHECK_MODELS");
    for (const std::string& folder :
         {nqModelFile(), nqTestModelFile(), std::string(further ? further : "")}) {
        for (const std::string& name :
             folder.empty() ? std::vector<std::string>() : nqFilesIn(folder, ".urdf")) {
            result.push_back(folder + "/" + name);
        }
    }
    return result;
}

NqVector vector(const KDL::Vector& v) {
    return {v.x(), v.y(), v.z()};
}

/// Whether what we have is close to the reference, by the size of that (at least 1).
void expectNear(const KDL::Vector& reference, const NqVector& actual, const std::string& what) {
    EXPECT_LE((actual - vector(reference)).mag(), kTolerance * std::max(1.0, reference.Norm())) << what;
}

/// One robot description read twice, by this library and by Orocos KDL, in states at random, the same in
/// both.
class KdlKinematics : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        ASSERT_TRUE(NqUrdfReader::readFile(GetParam(), m_Manipulator) &&
                    kdl_parser::treeFromFile(GetParam(), m_Tree));
        m_State = NqManipulatorActiveState(m_Manipulator);
        m_Positions.resize(m_Tree.getNrOfJoints());
        m_Rates.resize(m_Tree.getNrOfJoints());
        ASSERT_EQ(m_Positions.rows(), m_Manipulator.numberOfJoints());
        for (const auto& [label, element] : m_Tree.getSegments()) {
            if (element.segment.getJoint().getType() != KDL::Joint::None) {
                m_KdlIndices[link(label).jointIndex()] = element.q_nr;
            }
        }
    }

    void inTwentyStates(auto check) {
        constexpr unsigned seed = 20240;
        std::mt19937_64 random(seed);
        for (int round = 0; round < 20 && !HasFailure(); ++round) {
            SCOPED_TRACE("round " + std::to_string(round) + ", seed " + std::to_string(seed));
            NqPositionState positions(m_Positions.rows());
            NqVelocityState rates(m_Positions.rows());
            for (const auto& [ours, index] : m_KdlIndices) {
                positions.setJointPosition(ours, m_Positions(index) =
                                                     nqDrawn(random, -std::numbers::pi, std::numbers::pi));
                rates.setJointVelocity(ours, m_Rates(index) = nqDrawn(random, -1.0, 1.0));
            }
            m_State.setPositionState(positions);
            m_State.setVelocityState(rates);
            check();
        }
    }

    const NqManipulatorLink& link(const std::string& label) const {
        const NqManipulatorLink* found = m_Manipulator.linkByLabel(label);
        return found ? *found : m_Manipulator;
    }

    /// Frame of a link in the base frame, as KDL has it.
    KDL::Frame frame(const std::string& label) const {
        KDL::Frame result;
        KDL::TreeFkSolverPos_recursive(m_Tree).JntToCart(m_Positions, result, label);
        return result;
    }
    /// Of a point given in a link's frame, as KDL has it.
    KDL::Jacobian jacobian(const std::string& label, const NqVector& point) const {
        KDL::Jacobian columns(m_Tree.getNrOfJoints());
        KDL::TreeJntToJacSolver(m_Tree).JntToJac(m_Positions, columns, label);
        columns.changeRefPoint(frame(label).M * KDL::Vector(point[0], point[1], point[2]));
        return columns;
    }

    NqIndividualManipulator m_Manipulator;
    NqManipulatorActiveState m_State;
    KDL::Tree m_Tree;
    KDL::JntArray m_Positions, m_Rates;
    std::map<unsigned, unsigned> m_KdlIndices; ///< by our joint index
};

/// Other constraints have some of the rows of a frame, in these axes or in others.
TEST_P(KdlKinematics, FramesAndJacobiansOfAllLinks) {
    NqFrameEndEffector offset;
    offset.setFrame({NqVector(0.1, -0.2, 0.3), NqOrientation(0.7, {0.3, -0.4, 0.5})});
    inTwentyStates([&] {
        for (const auto& [label, element] : m_Tree.getSegments()) {
            const KDL::Frame reference = frame(label);
            const auto& actual = link(label).primaryFrameInSystem(m_State.activePositionState());
            NqVector x, y, z;
            actual.orientation().getDcmColumns(x, y, z);
            expectNear(reference.p, actual.translation(), label);
            expectNear(reference.M.UnitX(), x, label);
            expectNear(reference.M.UnitY(), y, label);
            expectNear(reference.M.UnitZ(), z, label);
            NqReArray rows;
            offset.setLinkIdentifier(label);
            offset.insertJacobianComponent(m_Manipulator, 0, {}, true, m_State, rows);
            const KDL::Jacobian columns = jacobian(label, offset.frame().translation());
            for (const auto& [ours, index] : m_KdlIndices) {
                const KDL::Twist column = columns.getColumn(index);
                expectNear(column.vel, {rows[0][ours], rows[1][ours], rows[2][ours]}, label);
                expectNear(column.rot, {rows[3][ours], rows[4][ours], rows[5][ours]}, label);
            }
        }
    });
}

// KDL leaves out the mass of the root, and so what is fixed to it is left out here.
TEST_P(KdlKinematics, MassMomentaAndGravityTorques) {
    const KDL::Vector gravity(3.0, -5.0, -8.0);
    NqGravitationalTorqueTool tool;
    tool.setManipulator(m_Manipulator);
    tool.setGravity(vector(gravity));
    inTwentyStates([&] {
        KDL::RigidBodyInertia reference;
        KDL::Wrench momentum;
        for (const auto& [label, element] : m_Tree.getSegments()) {
            if (link(label).parentLink()) {
                const KDL::RigidBodyInertia own = frame(label) * element.segment.getInertia();
                KDL::Twist motion;
                KDL::MultiplyJacobian(jacobian(label, {}), m_Rates, motion);
                reference = reference + own;
                momentum += own * motion.RefPoint(-frame(label).p);
            }
        }
        const NqRigidBodyMassProperties& all = m_Manipulator.compositeMassProperties(m_State);
        const NqRigidBodyMassProperties& root = m_Manipulator.massProperties();
        const double tolerance = kTolerance * std::max(1.0, reference.getMass());
        EXPECT_NEAR(reference.getMass(), all.mass() - root.mass(), tolerance);
        expectNear(reference.getMass() * reference.getCOG(), all.firstMoment() - root.firstMoment(),
                   "first moment");
        for (unsigned i = 0; i < 9; ++i) {
            EXPECT_NEAR(reference.getRotationalInertia().data[i],
                        all.secondMoment()(i / 3, i % 3) - root.secondMoment()(i / 3, i % 3), tolerance);
        }
        NqReArray rows;
        std::vector<double> p;
        NqSpatialMomentumEndEffector().insertJacobianComponent(m_Manipulator, 0, {}, true, m_State, rows);
        ASSERT_TRUE(rows.transform(m_State.velocityState().jointVelocities(), p));
        expectNear(momentum.force, {p[0], p[1], p[2]}, "linear momentum");
        expectNear(momentum.torque, {p[3], p[4], p[5]}, "angular momentum");

        const KDL::JntArray none(m_Positions.rows());
        KDL::JntArray torques(m_Positions.rows());
        KDL::TreeIdSolver_RNE(m_Tree, gravity).CartToJnt(m_Positions, none, none, {}, torques);
        for (const auto& [ours, index] : m_KdlIndices) { // what the motors have to bring
            EXPECT_NEAR(-torques(index), tool.jointTorque(ours, m_State), tolerance) << ours;
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Models, KdlKinematics, testing::ValuesIn(files()), [](const auto& which) {
    const std::string name = which.param.substr(which.param.find_last_of('/') + 1);
    return name.substr(0, name.find('.'));
});

} // namespace
