#include <support/NqPrintCapture.h>
#include <support/NqTestModels.h>

#include <nqControlCore/foundation/manipulator/NqGravitationalTorqueTool.h>
#include <nqControlCore/foundation/manipulator/NqMatrixDTool.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>

namespace {

/// A model with everything in motion that can move, in a pose at random.
class EveryMass : public testing::TestWithParam<std::tuple<std::size_t, unsigned>> {
protected:
    void SetUp() override {
        m_Torques.setManipulator(m_Manipulator);
        m_Torques.setGravity(m_Gravity);
        m_Momenta.setManipulator(m_Manipulator);
    }

    static void expectNear(const NqVector& expected, const NqVector& actual, double tolerance) {
        EXPECT_LE((actual - expected).mag(), tolerance * (1.0 + expected.mag()));
    }

    NqManipulatorActiveState withJointMoved(unsigned joint, double by) {
        NqManipulatorActiveState moved = m_State;
        NqPositionState positions = m_State.positionState();
        positions.jointPositions()[joint] += by;
        moved.setPositionState(positions);
        return moved;
    }

    NqManipulatorActiveState withBaseTurned(const NqVector& by) {
        NqManipulatorActiveState moved = m_State;
        NqPositionState positions = m_State.positionState();
        const NqCoordinateSystemTransformation& base = positions.baseFrame();
        positions.setBaseFrame({base.translation(), NqOrientation(by.mag(), by) * base.orientation()});
        moved.setPositionState(positions);
        return moved;
    }

    const NqTestModel& m_Model = nqTestModels()[std::get<0>(GetParam())];
    const NqIndividualManipulator& m_Manipulator = *m_Model.manipulator;
    const unsigned m_Joints = m_Manipulator.numberOfJoints();
    std::mt19937_64 m_Random{std::get<1>(GetParam())};
    NqManipulatorActiveState m_State = nqRandomState(m_Model, m_Random);
    const NqVector m_Gravity{1.0, -2.0, -9.5};
    NqGravitationalTorqueTool m_Torques;
    NqMatrixDTool m_Momenta;
};

TEST_P(EveryMass, CenterOfMassAndMomentaAreSumsOverLinks) {
    NqManipulatorActivePositionState& positions = m_State.activePositionState();
    const NqCoordinateSystemTransformation base = m_Manipulator.baseFrameInSystem(positions);
    double mass = 0.0;
    NqVector firstMoment, linear, angular;
    for (unsigned number = 0; number < m_Manipulator.numberOfLinks(); ++number) {
        const NqManipulatorLink& link = *m_Manipulator.link(number);
        NqRigidBodyMassProperties own = link.massProperties();
        own.transformBy(link.primaryFrameInSystem(positions).orientation());
        const NqVector place = link.primaryFrameInSystem(positions).translation();
        const NqGeneralMotion& v = link.primaryFrameVelocity(m_State);
        const NqVector momentum = own.mass() * v.linear() + v.angular().cross(own.firstMoment());
        mass += own.mass();
        firstMoment += own.mass() * place + own.firstMoment();
        linear += momentum;
        angular += (place - base.translation()).cross(momentum) + own.firstMoment().cross(v.linear()) +
                   own.secondMoment() * v.angular();
    }
    EXPECT_NEAR(m_Manipulator.compositeMass(), mass, 1e-13 * mass);
    expectNear(mass > 0.0 ? firstMoment / mass : base.translation(), m_Manipulator.centerOfMass(positions),
               1e-13);
    expectNear(linear, m_Manipulator.linearMomentum(m_State), 1e-13);
    expectNear(angular, m_Manipulator.angularMomentum(m_State), 1e-13);

    // What the base's motion adds is that of one rigid body.
    const NqGeneralMotion& baseMotion = m_State.velocityState().baseMotion();
    NqVector ofJoints = linear - mass * baseMotion.linear() -
                        baseMotion.angular().cross(m_Manipulator.compositeFirstMoment(positions));
    NqVector turnOfJoints = angular -
                            m_Manipulator.compositeFirstMoment(positions).cross(baseMotion.linear()) -
                            m_Manipulator.compositeSecondMoment(positions) * baseMotion.angular();
    for (const NqOrientation& orientation : {base.orientation(), NqOrientation()}) {
        NqReArray matrix(m_Joints + 1, 6);
        m_Momenta.momentumMatrix(m_Momenta.compositeMoments(m_State), orientation, matrix);
        ASSERT_EQ(matrix.rows(), m_Joints);
        std::vector<double> x;
        ASSERT_TRUE(matrix.leftTransposeTransform(m_State.velocityState().jointVelocities(), x));
        const NqOrientation toSystem = base.orientation() * orientation.inverse();
        expectNear(ofJoints, toSystem * NqVector(x[0], x[1], x[2]), 1e-13);
        expectNear(turnOfJoints, toSystem * NqVector(x[3], x[4], x[5]), 1e-13);
    }
}

TEST_P(EveryMass, GravityTorquesAreDerivativesOfThePotentialEnergy) {
    constexpr double h = 1e-5;
    const auto energy = [&](NqManipulatorActiveState&& state) {
        return -m_Manipulator.compositeMass() *
               m_Manipulator.centerOfMass(state.activePositionState()).dot(m_Gravity);
    };
    std::vector<double> all(2, 7.0);
    m_Torques.jointTorques(m_State, all);
    ASSERT_EQ(all.size(), m_Joints);
    for (unsigned j = 0; j < m_Joints; ++j) {
        SCOPED_TRACE(j);
        const double torque = m_Torques.jointTorque(j, m_State);
        EXPECT_EQ(all[j], torque);
        EXPECT_NEAR(torque, -(energy(withJointMoved(j, h)) - energy(withJointMoved(j, -h))) / (2.0 * h),
                    1e-6);
        const auto change = [&](NqManipulatorActiveState&& before, NqManipulatorActiveState&& after) {
            return (m_Torques.jointTorque(j, after) - m_Torques.jointTorque(j, before)) / (2.0 * h);
        };
        const NqJointTorqueGradient gradient = m_Torques.jointTorqueGradient(j, m_State);
        NqReArray row(2, 1);
        gradient.fill(row);
        ASSERT_EQ(row.rows(), 1u);
        ASSERT_EQ(row.columns(), m_Joints);
        std::vector<double> widened(m_Joints + 6, 1.0);
        gradient.addMultipleTo(widened, -2.0);
        for (unsigned k = 0; k < m_Joints; ++k) {
            EXPECT_NEAR(row[0][k], change(withJointMoved(k, -h), withJointMoved(k, h)), 1e-6) << k;
            EXPECT_DOUBLE_EQ(widened[k], 1.0 - 2.0 * row[0][k]);
        }
        for (unsigned i = 0; i < 3; ++i) {
            NqVector turn;
            turn[i] = h;
            EXPECT_NEAR(gradient.ofBaseRotation()[i], change(withBaseTurned(-turn), withBaseTurned(turn)),
                        1e-6);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Models, EveryMass,
                         testing::Combine(testing::Range<std::size_t>(0, nqTestModels().size()),
                                          testing::Values(1u, 2u, 3u)),
                         [](const auto& test) {
                             return nqTestModels()[std::get<0>(test.param)].name +
                                    std::to_string(std::get<1>(test.param));
                         });

TEST(ManipulatorTools, WithoutManipulatorOrJointGiveNothing) {
    const NqTestModel& model = nqTestModels()[0];
    NqManipulatorActiveState state(*model.manipulator);
    NqPrintCapture prints;
    NqGravitationalTorqueTool torques;
    NqReArray row(3, 3);
    EXPECT_EQ(torques.jointTorque(0, state), 0.0);
    torques.jointTorqueGradient(0, state).fill(row);
    EXPECT_EQ(row, NqReArray(1, 0));
    EXPECT_EQ(torques.gravity(), NqVector(0.0, 0.0, -9.8));
    NqGravitationalTorqueTool copy = torques;
    copy.setManipulator(*model.manipulator);
    EXPECT_NE(copy, torques);
    EXPECT_EQ(copy.jointTorque(2, state), 0.0);
    EXPECT_TRUE(prints.contains("NqGravitationalTorqueTool::jointTorque(): no joint 0 among 0.\n"));
    EXPECT_TRUE(prints.contains("NqGravitationalTorqueTool::jointTorqueGradient(): no joint 0 among 0.\n"));
    EXPECT_TRUE(prints.contains("NqGravitationalTorqueTool::jointTorque(): no joint 2 among 2.\n"));

    NqMatrixDTool momenta;
    momenta.momentumMatrix(momenta.compositeMoments(state), NqOrientation(), row);
    EXPECT_EQ(row.rows(), 0u);
    EXPECT_TRUE(prints.contains("NqMatrixDTool::compositeMoments(): no manipulator.\n"));
}

} // namespace
