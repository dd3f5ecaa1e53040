#include "support/NqTesting.h"

#include <nqControlCore/foundation/manipulator/NqGravitationalTorqueTool.h>
#include <nqControlCore/foundation/manipulator/NqMatrixDTool.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>

namespace {

/// The velocity of a frame by central differences, of its origin and of its axes.
NqGeneralMotion differenceOf(const NqCoordinateSystemTransformation& before,
                             const NqCoordinateSystemTransformation& after, double step) {
    double angle = 0.0;
    NqVector axis;
    (after.orientation() * before.orientation().inverse()).getAngleAxis(angle, axis);
    return {(after.translation() - before.translation()) / (2.0 * step), (angle / (2.0 * step)) * axis};
}

/// Compares with a tolerance relative to 1 plus the expected length.
void expectNear(const NqVector& expected, const NqVector& actual, double tolerance, const char* what = "") {
    EXPECT_LE((actual - expected).mag(), tolerance * (1.0 + expected.mag()))
        << what << ": " << actual[0] << " " << actual[1] << " " << actual[2] << " instead of " << expected[0]
        << " " << expected[1] << " " << expected[2];
}

void expectNear(const NqGeneralMotion& expected, const NqGeneralMotion& actual, double tolerance) {
    expectNear(expected.linear(), actual.linear(), tolerance, "linear part");
    expectNear(expected.angular(), actual.angular(), tolerance, "angular part");
}

/// A model on a base that moves, in a state at random.
class EveryManipulator : public testing::TestWithParam<std::tuple<std::size_t, unsigned>> {
protected:
    void SetUp() override {
        m_Model.movesBase = true;
        m_State = nqRandomState(m_Model, m_Random);
        m_Torques.setManipulator(m_Manipulator);
        m_Torques.setGravity(m_Gravity);
        m_Momenta.setManipulator(m_Manipulator);
    }

    void forEachLink(auto check) {
        for (unsigned number = 0; number < m_Manipulator.numberOfLinks(); ++number) {
            SCOPED_TRACE(m_Manipulator.link(number)->linkLabel());
            check(*m_Manipulator.link(number));
        }
    }

    /// The state with a joint or the base turned further.
    NqManipulatorActiveState moved(unsigned joint, double by, const NqVector& baseTurn = {}) {
        NqManipulatorActiveState moved = m_State;
        NqPositionState positions = m_State.positionState();
        const NqCoordinateSystemTransformation& base = positions.baseFrame();
        positions.jointPositions()[joint] += by;
        positions.setBaseFrame(
            {base.translation(), NqOrientation(baseTurn.mag(), baseTurn) * base.orientation()});
        moved.setPositionState(positions);
        return moved;
    }

    NqTestModel m_Model = nqTestModels()[std::get<0>(GetParam())];
    const NqIndividualManipulator& m_Manipulator = *m_Model.manipulator;
    const unsigned m_Joints = m_Manipulator.numberOfJoints();
    std::mt19937_64 m_Random{std::get<1>(GetParam())};
    NqManipulatorActiveState m_State;
    const NqVector m_Gravity{1.0, -2.0, -9.5};
    NqGravitationalTorqueTool m_Torques;
    NqMatrixDTool m_Momenta;
};

TEST_P(EveryManipulator, VelocitiesAndAccelerationsAreThoseOfTheFrames) {
    const double h = 1e-5;
    NqManipulatorActiveState before = nqMoved(m_State, -h), &now = m_State, after = nqMoved(m_State, h);
    forEachLink([&](const NqManipulatorLink& link) {
        expectNear(differenceOf(link.primaryFrameInSystem(before.activePositionState()),
                                link.primaryFrameInSystem(after.activePositionState()), h),
                   link.primaryFrameVelocity(now), 1e-8);
        const auto velocityIn = [&](NqManipulatorActiveState& state) {
            return link.linkFrameInSystem(state.activePositionState()).orientation() *
                   link.localVelocity(state);
        };
        expectNear(differenceOf(link.linkFrameInSystem(before.activePositionState()),
                                link.linkFrameInSystem(after.activePositionState()), h),
                   velocityIn(now), 1e-8);
        const NqGeneralMotion a = velocityIn(before), b = velocityIn(after);
        expectNear({(b.linear() - a.linear()) / (2 * h), (b.angular() - a.angular()) / (2 * h)},
                   link.linkFrameInSystem(now.activePositionState()).orientation() *
                       link.localAcceleration(now),
                   1e-8);
    });
}

TEST_P(EveryManipulator, CenterOfMassAndMomentaAreSumsOverLinks) {
    NqManipulatorActivePositionState& positions = m_State.activePositionState();
    const NqCoordinateSystemTransformation base = m_Manipulator.baseFrameInSystem(positions);
    double mass = 0.0;
    NqVector firstMoment, linear, angular;
    forEachLink([&](const NqManipulatorLink& link) {
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
    });
    EXPECT_NEAR(m_Manipulator.compositeMass(), mass, 1e-13 * mass);
    expectNear(mass > 0.0 ? firstMoment / mass : base.translation(), m_Manipulator.centerOfMass(positions),
               1e-13);
    expectNear(linear, m_Manipulator.linearMomentum(m_State), 1e-13);
    expectNear(angular, m_Manipulator.angularMomentum(m_State), 1e-13);
}

TEST_P(EveryManipulator, GravityTorquesAreDerivativesOfThePotentialEnergy) {
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
        EXPECT_NEAR(torque, -(energy(moved(j, h)) - energy(moved(j, -h))) / (2.0 * h), 1e-6);
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
            EXPECT_NEAR(row[0][k], change(moved(k, -h), moved(k, h)), 1e-6) << k;
            EXPECT_DOUBLE_EQ(widened[k], 1.0 - 2.0 * row[0][k]);
        }
        for (unsigned i = 0; i < 3; ++i) {
            NqVector turn;
            turn[i] = h;
            EXPECT_NEAR(gradient.ofBaseRotation()[i], change(moved(0, 0.0, -turn), moved(0, 0.0, turn)),
                        1e-6);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Models, EveryManipulator,
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
    NqMatrixDTool momenta;
    NqReArray row(3, 3);
    EXPECT_EQ(torques.jointTorque(0, state), 0.0);
    torques.jointTorqueGradient(0, state).fill(row);
    EXPECT_TRUE(row == NqReArray(1, 0) && torques.gravity() == NqVector(0.0, 0.0, -9.8));
    NqGravitationalTorqueTool copy = torques;
    copy.setManipulator(*model.manipulator);
    EXPECT_NE(copy, torques);
    EXPECT_EQ(copy.jointTorque(2, state), 0.0);
    momenta.momentumMatrix(momenta.compositeMoments(state), NqOrientation(), row);
    EXPECT_EQ(row.rows(), 0u);
    EXPECT_EQ(prints.text(), "NqGravitationalTorqueTool::jointTorque(): no joint 0 among 0.\n"
                             "NqGravitationalTorqueTool::jointTorqueGradient(): no joint 0 among 0.\n"
                             "NqGravitationalTorqueTool::jointTorque(): no joint 2 among 2.\n"
                             "NqMatrixDTool::compositeMoments(): no manipulator.\n");
}

/// base -(slide along y)- slider -(fixed)- plate -(turn about -z)- wheel, and a post fixed to the base.
NqIndividualManipulator slidingManipulator() {
    const auto ofMass = [](double mass) {
        return NqRigidBodyMassProperties(mass, NqVector(), NqSecondMoment());
    };
    NqIndividualManipulator m("sliding", "base", ofMass(1.0));
    m.addLink("base", "post", NqJointDescription(), NqVector(0, 0, 1), {}, ofMass(2.0));
    m.addLink("post", "slider", NqJointDescription(NqJointDescription::Prismatic, "slide"), NqVector(1, 0, 0),
              NqVector::yVector(2.0), ofMass(4.0));
    m.addLink("slider", "plate", NqJointDescription(),
              {NqVector(0, 0, 0.5), NqOrientation(std::numbers::pi / 2, NqVector::zVector(1.0))}, {},
              ofMass(8.0));
    m.addLink("plate", "wheel", NqJointDescription(NqJointDescription::Revolute, "turn"), NqVector(0.2, 0, 0),
              NqVector::zVector(-1.0), ofMass(16.0));
    return m;
}

TEST(ManipulatorModel, BodiesOnFixedJointsMoveWithTheirCarrier) {
    const NqIndividualManipulator m = slidingManipulator();
    const NqManipulatorLink *slider = m.linkByLabel("slider"), *plate = m.linkByLabel("plate"),
                            *wheel = m.linkByLabel("wheel"), *post = m.linkByLabel("post");
    EXPECT_TRUE(m.numberOfJoints() == 2 && m.linkByIndex(0) == slider && m.linkByIndex(2) == nullptr);
    EXPECT_TRUE(m.linkByLabel("base") == &m && m.linkByLabel("") == nullptr);
    EXPECT_TRUE(&plate->joint() == &slider->joint() && plate->jointIndex() == slider->jointIndex());
    EXPECT_TRUE(plate->parentLink() == &m && wheel->parentLink() == slider && post->parentLink() == nullptr);

    NqManipulatorActiveState state(m);
    state.setPositionState(NqPositionState(NqXmlRealVector{0.3, 0.7}));
    NqManipulatorActivePositionState& positions = state.activePositionState();
    expectNear({1, 0.3, 1}, slider->primaryFrameInSystem(positions).translation(), 1e-15, "slider");
    expectNear({1, 0.3, 1.5}, plate->primaryFrameInSystem(positions).translation(), 1e-15, "plate");
    expectNear({1, 0.5, 1.5}, wheel->primaryFrameInSystem(positions).translation(), 1e-15, "wheel");
    expectNear({std::sin(0.7), std::cos(0.7), 0},
               wheel->primaryFrameInSystem(positions).orientation().xAxis(), 1e-15, "wheel");

    EXPECT_TRUE(m.massProperties().mass() == 3.0 && slider->massProperties().mass() == 12.0);
    EXPECT_TRUE(plate->massProperties().mass() == 0.0 &&
                plate->compositeMassProperties(state).mass() == 28.0);
    expectNear({28.0 / 31.0, (12 * 0.3 + 16 * 0.5) / 31, (2 * 1.0 + 4 * 1.0 + 24 * 1.5) / 31},
               post->compositeMassProperties(state).centerOfMass(), 1e-15, "centre of mass");
}

TEST(ManipulatorModel, DhFrameHasTheAxisAsItsZAxis) {
    std::mt19937_64 random(11);
    for (const NqVector& axis :
         {NqVector(0, 0, 1), NqVector(0, 0, -1), NqVector(0, -2, 0), NqVector(1e-9, -2e-9, -1),
          NqVector(-1e-200, 0, -1), NqVector(1e-4, 0, -1), nqRandomVector(random), nqRandomVector(random)}) {
        NqIndividualManipulator m("m", "base");
        const NqManipulatorLink* link = m.addLink(
            "base", "link", NqJointDescription(NqJointDescription::Revolute), NqVector(1, 2, 3), axis);
        NqManipulatorActivePositionState state(m);
        expectNear(axis.unitVector(), link->linkFrameInSystem(state).orientation().zAxis(), 1e-15, "axis");
        expectNear({1, 0, 0}, link->primaryFrameInSystem(state).orientation().xAxis(), 1e-15, "primary x");
        expectNear({0, 0, 1}, link->primaryFrameInSystem(state).orientation().zAxis(), 1e-15, "primary z");
    }
}

TEST(ManipulatorModel, CopiesShareNothingWithTheirSource) {
    NqIndividualManipulator copy;
    copy.addLink("", "old", NqJointDescription(), {});
    {
        const NqIndividualManipulator source = slidingManipulator();
        copy = NqIndividualManipulator(source);
    }
    const NqManipulatorLink* added =
        copy.addLink("plate", "second wheel", NqJointDescription(NqJointDescription::Revolute), {});
    ASSERT_TRUE(added);
    EXPECT_TRUE(added->parentLink() == copy.linkByLabel("slider") && copy.linkByIndex(2) == added);
    EXPECT_TRUE(copy.linkByLabel("base") == &copy && copy.linkByLabel("old") == nullptr);
    EXPECT_EQ(copy.linkByLabel("plate")->parentLink(), &copy);
    NqManipulatorActiveState state(copy);
    expectNear({1, 0, 1.5}, added->linkFrameInSystem(state.activePositionState()).translation(), 1e-15,
               "wheel");
    EXPECT_EQ(copy.linkByLabel("post")->compositeMassProperties(state).mass(), 31.0);
}

} // namespace
