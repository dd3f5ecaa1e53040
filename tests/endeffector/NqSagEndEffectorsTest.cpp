#include "endeffector/NqEndEffectorTest.h"

namespace {

/// A boom that turns about y, with 2 kg at 1 m, on which a weightless slide runs out.
std::shared_ptr<NqIndividualManipulator> boom() {
    const NqVector reach(1.0, 0.0, 0.0);
    auto arm = std::make_shared<NqIndividualManipulator>("boom", "base");
    arm->addLink("base", "boom", NqJointDescription(NqJointDescription::Revolute), NqVector(),
                 {0.0, 1.0, 0.0}, {2.0, 2.0 * reach, NqSecondMoment::ofPointMass(2.0, reach)});
    arm->addLink("boom", "slide", NqJointDescription(NqJointDescription::Prismatic), NqVector(), reach);
    return arm;
}

/// The boom stands at 0.3.
struct NqBoom : NqEndEffectorTest {
    NqBoom() : NqEndEffectorTest(boom()) {
        setJoints({0.3, 0.5}, {2.0, 1.0});
        sag.setLinkLabels({std::string("boom")});
        sag.setSpringConstants({100.0});
        sag.setCalibrationOffsets({0.05});
    }

    Reals residuals(const Placement& before = {}) { return placement(sag, before).dataVector(); }

    NqSagEndEffector sag;
    const double torque = 2.0 * 9.8 * std::cos(0.3), stiffening = 2.0 * 9.8 * std::sin(0.3);
};

TEST_F(NqBoom, BalancesSpringAndGravity) {
    EXPECT_EQ(sag.doc(), 0u) << "not evaluated yet";
    expectNear(residuals(), {100.0 * (0.3 - 0.05) - torque}, 1e-13);
    EXPECT_EQ(sag.doc(), 1u);
    EXPECT_NEAR(rows(sag)[0][0], 100.0 + stiffening, 1e-13);
    expectNear(velocity(sag), {2.0 * (100.0 + stiffening)});
    EXPECT_EQ(filtered(sag, {}), Reals({-(0.1 * residuals()[0])})) << "a positive residual calls for less";
    EXPECT_EQ(acceleration(sag, Reals(2, 7.0)), Reals(2, 7.0));
    sag.setMotionThreshold(3.0);
    EXPECT_EQ(sag.motionThreshold(), 1.0);
    sag.setLinkLabels({std::string("boom")});
    EXPECT_EQ(sag.doc(), 0u) << "forgotten";
    rows(sag);
    EXPECT_EQ(NqSagEndEffector(sag).doc(), 0u) << "a copy looks for itself";

    Placement a, b;
    a.setDataVector({4.0, 5.0, 100.0});
    b.setDataVector({1.0, 1.0});
    EXPECT_EQ(sag.difference(a, b), 5.0);
}

TEST_F(NqBoom, AJointBelowItsTriggerValueSwitchesGravityOff) {
    sag.setTriggerLinkLabel(std::string("slide"));
    for (const double threshold : {0.5, 0.6}) {
        const double isOn = threshold == 0.5 ? 1.0 : 0.0; // where the slide stands
        sag.setActivationTriggerValues({threshold});
        expectNear(residuals(), {25.0 - isOn * torque}, 1e-13);
        EXPECT_NEAR(rows(sag)[0][0], 100.0 + isOn * stiffening, 1e-13);
        expectNear(velocity(sag), {200.0 + 2.0 * isOn * stiffening});
    }
    sag.setTriggerLinkLabel(std::string());
    EXPECT_EQ(sag.doc(), 0u) << "joints are looked up again";
    expectNear(residuals(), {25.0}, 1e-13); // a trigger that was found stays
    sag.setTriggerLinkLabel(std::string("base"));
    expectNear(residuals(), {25.0 - torque}, 1e-13); // no joint moves the base
}

TEST_F(NqBoom, RowsOfUnknownLabelsCountAndStay) {
    NqPrintCapture capture;
    sag.setLinkLabels({std::string("lost"), std::string("base"), std::string("boom"), std::string("slide")});
    sag.setSpringConstants(
        {1.0, 2.0, 100.0}); // the smaller number counts, and an offset that is missing is 0
    Placement before;
    before.setDataVector({7.0, 8.0, 9.0, 10.0});
    expectNear(residuals(before), {7.0, 8.0, 100.0 * 0.3 - torque}, 1e-13);
    EXPECT_EQ(rows(sag)[0], Row(2));
    EXPECT_EQ(capture.text(), "NqSagEndEffector::setLinkIndices(): bad label: lost.\n"
                              "NqSagEndEffector::setLinkIndices(): error: label is for base link\n");
    EXPECT_EQ(filtered(sag, before)[0], 0.0);
}

TEST_F(NqBoom, ComplaintsOfEditingLoseNothing) {
    NqPrintCapture capture;
    Labels values = sag.editableValues();
    values[1] = values[6] = std::string("1,2");
    sag.setEditableValues(values);
    const std::string name = "NqSagEndEffector::setEditableValues> ";
    EXPECT_EQ(capture.lines(), (std::vector<std::pair<unsigned, std::string>>{
                                   {5, name + "Link Labels and Spring Constants count mismatch.\n"},
                                   {5, name + "Invalid gravity vector.\n"}}));
    EXPECT_EQ(sag.springConstants().size(), 2u);
    EXPECT_EQ(sag.gravity().value(), NqVector(0.0, 0.0, -9.8));

    rows(sag);
    NqXmlDocument::readString("<sagEndEffector><jointWeights>1 2 3</jointWeights></sagEndEffector>", sag);
    EXPECT_EQ(sag.calibrationOffsets().size(), 3u);
    EXPECT_EQ(sag.doc(), 0u);
}

/// The arm of 6 joints, all but the third and the last of which sag in some test, and alone move.
struct NqSensorOnArm : NqEndEffectorTest {
    NqSensorOnArm() : NqEndEffectorTest(nqTestModels()[1], 3) {
        Labels labels;
        for (const unsigned joint : {4u, 0u, 3u, 1u}) {
            labels.pushBack(manipulator.linkByIndex(joint)->linkLabel());
        }
        labels.pushBack(std::string("lost"));
        labels.pushBack(std::string(manipulator.linkLabel()));
        sensor.setSagLinkLabels(labels);
        sensor.setLinkIdentifier(nqTestModels()[1].link);
        sensor.setSensorFrame(nqRandomFrame(random));
        NqVelocityState velocities = state.velocityState();
        velocities.setJointVelocity(2, 0.0);
        velocities.setJointVelocity(5, 0.0);
        state.setVelocityState(velocities);
    }

    const Reals& q = state.positionState().jointPositions();
    NqAccelerometerEndEffector sensor;
};

TEST_F(NqSensorOnArm, OnItsRowsAreWhatSagJointsDo) {
    sensor.setIsOn(true);
    sensor.setGravityVector({1.0, -2.0, -9.0});
    sensor.setSagStiffness({50.0, 20.0}); // of the first two alone
    const NqReArray j = rows(sensor);
    Row product{0.0};
    ASSERT_TRUE(j.transform(state.velocityState().jointVelocities(), product));
    product.insert(product.begin(), 0.0);
    expectNear(velocity(sensor, {}, 1), product);
    EXPECT_EQ(j[2][2] + j[2][3] + j[2][4] + j[2][5], 0.0);
    NqManipulatorActiveState straight = state;
    NqPositionState zeros = state.positionState();
    zeros.setJointPosition(0, 0.0);
    zeros.setJointPosition(1, 0.0);
    straight.setPositionState(zeros);
    const auto& frame = manipulator.linkByIndex(1)->linkFrameInSystem(straight.activePositionState());
    EXPECT_NEAR(j[2][1], -20.0 * frame.orientation().zAxis().dot(sensor.gravityVector()), 1e-12);
    expectCovers(bits(sensor), j);

    // Where the target is what it reads, it doesn't turn; the third entry leads the springs to rest.
    expectNear(filtered(sensor, placement(sensor)), {0.0, 0.0, -200.0 * (j[2][0] * q[0] + j[2][1] * q[1])},
               1e-6);
}

/// From rest the angular acceleration of the link is that of its joints. It is turned as though it were given
/// in the sensor's axes.
TEST_F(NqSensorOnArm, OnItsAccelerationIsThatOfTheWholeLink) {
    sensor.setIsOn(true);
    sensor.setSagStiffness({50.0, 20.0, 30.0});
    state.setVelocityState(NqVelocityState(6));
    const Reals& change = state.accelerationState().jointAccelerations();
    const NqManipulatorLink& link = *manipulator.linkByLabel(sensor.linkIdentifier());
    NqVector angular;
    link.forEachUnitRateMotion(
        {}, state.activePositionState(),
        [&](unsigned joint, const NqGeneralMotion& motion) { angular += change[joint] * motion.angular(); });
    const NqOrientation& axes = link.linkFrameInSystem(state.activePositionState()).orientation();
    const NqVector turned =
        axes * (sensor.sensorFrame().orientation().inverse() * (axes.inverse() * angular));
    Row product;
    ASSERT_TRUE(rows(sensor).transform(change, product));
    expectNear(acceleration(sensor, Reals(6, 7.0), 1), {7.0, turned.x(), turned.y(), product[2], 7.0, 7.0});
}

} // namespace
