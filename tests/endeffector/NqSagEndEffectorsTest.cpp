#include "support/NqPrintCapture.h"
#include "support/NqTestModels.h"

#include <nqControlCore/endeffector/special/NqAccelerometerEndEffector.h>
#include <nqControlCore/endeffector/special/NqSagEndEffector.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// A boom that turns about y, with 2 kg at 1 m, on which a weightless slide runs out; the boom stands at 0.3.
class NqBoom : public testing::Test {
protected:
    NqBoom() : state(makeBoom()) {
        sag.setLinkLabels({std::string("boom")});
        sag.setSpringConstants({100.0});
        sag.setCalibrationOffsets({0.05});
    }

    NqManipulatorActiveState makeBoom() {
        const NqVector reach(1.0, 0.0, 0.0);
        manipulator.addLink("base", "boom", NqJointDescription(NqJointDescription::Revolute), NqVector(),
                            {0.0, 1.0, 0.0}, {2.0, 2.0 * reach, NqSecondMoment::ofPointMass(2.0, reach)});
        manipulator.addLink("boom", "slide", NqJointDescription(NqJointDescription::Prismatic), NqVector(),
                            reach);
        NqManipulatorActiveState result(manipulator);
        result.setPositionState(NqPositionState(NqXmlRealVector{0.3, 0.5}));
        result.setVelocityState(NqVelocityState(NqXmlRealVector{2.0, 1.0}));
        return result;
    }

    NqXmlRealVector residuals(NqEndEffectorPlacement placement = {}) {
        sag.calculatePlacement(manipulator, state, placement);
        return placement.dataVector();
    }
    NqReArray rows() {
        NqReArray j;
        sag.insertJacobianComponent(manipulator, 0, {}, true, state, j);
        return j;
    }
    NqXmlRealVector velocity() {
        NqXmlRealVector v;
        sag.calculateVelocity(manipulator, state, v, 0);
        return v;
    }

    NqIndividualManipulator manipulator{"boom", "base"};
    NqManipulatorActiveState state;
    NqSagEndEffector sag;
    const double torque = 2.0 * 9.8 * std::cos(0.3);
    const double stiffening = 2.0 * 9.8 * std::sin(0.3);
};

TEST_F(NqBoom, BalancesSpringAndGravity) {
    EXPECT_EQ(sag.doc(), 0u) << "not evaluated yet";
    EXPECT_NEAR(residuals()[0], 100.0 * (0.3 - 0.05) - torque, 1e-13);
    EXPECT_EQ(sag.doc(), 1u);
    EXPECT_NEAR(rows()[0][0], 100.0 + stiffening, 1e-13);
    EXPECT_NEAR(velocity()[0], 2.0 * (100.0 + stiffening), 1e-12);
    NqXmlRealVector command;
    sag.filterEndEffectorVelocity(manipulator, {}, {}, {}, 0.0, state, command);
    EXPECT_EQ(command, NqXmlRealVector({-(0.1 * residuals()[0])})) << "a positive residual calls for less";
    NqXmlRealVector acceleration(2, 7.0);
    sag.calculateAcceleration(manipulator, state, acceleration, 0);
    EXPECT_EQ(acceleration, NqXmlRealVector(2, 7.0));
    sag.setMotionThreshold(3.0);
    EXPECT_EQ(sag.motionThreshold(), 1.0);
    sag.setLinkLabels({std::string("boom")});
    EXPECT_EQ(sag.doc(), 0u) << "forgotten";
    rows();
    EXPECT_EQ(NqSagEndEffector(sag).doc(), 0u) << "a copy looks for itself";

    NqEndEffectorPlacement a, b;
    a.setDataVector({4.0, 5.0, 100.0});
    b.setDataVector({1.0, 1.0});
    EXPECT_EQ(sag.difference(a, b), 5.0);
}

TEST_F(NqBoom, AJointBelowItsTriggerValueSwitchesGravityOff) {
    sag.setTriggerLinkLabel(std::string("slide"));
    for (const double threshold : {0.5, 0.6}) {
        const bool isOn = threshold == 0.5; // where the slide stands
        sag.setActivationTriggerValues({threshold});
        EXPECT_NEAR(residuals()[0], 25.0 - (isOn ? torque : 0.0), 1e-13);
        EXPECT_NEAR(rows()[0][0], 100.0 + (isOn ? stiffening : 0.0), 1e-13);
        EXPECT_NEAR(velocity()[0], 200.0 + (isOn ? 2.0 * stiffening : 0.0), 1e-12);
    }
    sag.setTriggerLinkLabel(std::string());
    EXPECT_NEAR(residuals()[0], 25.0, 1e-13) << "a trigger that was found stays";
    sag.setTriggerLinkLabel(std::string("base"));
    EXPECT_NEAR(residuals()[0], 25.0 - torque, 1e-13) << "no joint moves the base";
}

TEST_F(NqBoom, RowsOfUnknownLabelsCountAndStay) {
    NqPrintCapture capture;
    sag.setLinkLabels({std::string("lost"), std::string("base"), std::string("boom"), std::string("slide")});
    sag.setSpringConstants({1.0, 2.0, 100.0});
    NqEndEffectorPlacement before;
    before.setDataVector({7.0, 8.0, 9.0, 10.0});
    const NqXmlRealVector after = residuals(before);
    EXPECT_EQ(after.size(), 3u) << "the smaller number";
    EXPECT_EQ(after[0], 7.0);
    EXPECT_EQ(after[1], 8.0);
    EXPECT_NEAR(after[2], 100.0 * 0.3 - torque, 1e-13) << "an offset that is missing is 0";
    EXPECT_EQ(rows()[0], std::vector<double>(2));
    EXPECT_EQ(capture.text(), "NqSagEndEffector::setLinkIndices(): bad label: lost.\n"
                              "NqSagEndEffector::setLinkIndices(): error: label is for base link\n");
    NqXmlRealVector command;
    sag.filterEndEffectorVelocity(manipulator, before, {}, {}, 0.0, state, command);
    EXPECT_EQ(command[0], 0.0);
}

TEST_F(NqBoom, ComplaintsOfEditingLoseNothing) {
    NqPrintCapture capture;
    NqLabelVector values = sag.editableValues();
    values[1] = std::string("1,2");
    values[6] = std::string("1,2");
    sag.setEditableValues(values);
    ASSERT_EQ(capture.lines().size(), 2u);
    EXPECT_EQ(capture.lines()[0].first, 5u);
    EXPECT_EQ(capture.lines()[1].first, 5u);
    EXPECT_EQ(capture.text(),
              "NqSagEndEffector::setEditableValues> Link Labels and Spring Constants count mismatch.\n"
              "NqSagEndEffector::setEditableValues> Invalid gravity vector.\n");
    EXPECT_EQ(sag.springConstants().size(), 2u);
    EXPECT_EQ(sag.gravity().value(), NqVector(0.0, 0.0, -9.8));

    rows();
    NqXmlDocument::readString("<sagEndEffector xmlns=\"http://nq.example/namespace/ct#\"><jointWeights>1 2 3"
                              "</jointWeights></sagEndEffector>",
                              sag);
    EXPECT_EQ(sag.calibrationOffsets().size(), 3u);
    EXPECT_EQ(sag.doc(), 0u);
}

/// The arm of 6 joints, all but the third of which sag in some test.
class NqSensorOnArm : public testing::Test {
protected:
    NqSensorOnArm() {
        NqLabelVector labels;
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

    NqReArray rows() {
        NqReArray j;
        sensor.insertJacobianComponent(manipulator, 0, {}, true, state, j);
        return j;
    }
    NqXmlRealVector command(const NqEndEffectorPlacement& target) {
        NqXmlRealVector filtered;
        sensor.filterEndEffectorVelocity(manipulator, target, {}, {}, 0.01, state, filtered);
        return filtered;
    }
    NqXmlRealVector velocity() {
        NqXmlRealVector v;
        sensor.calculateVelocity(manipulator, state, v, 1);
        return v;
    }

    const NqIndividualManipulator& manipulator = *nqTestModels()[1].manipulator;
    std::mt19937_64 random{3};
    NqManipulatorActiveState state = nqRandomState(nqTestModels()[1], random);
    const NqXmlRealVector& q = state.positionState().jointPositions();
    NqAccelerometerEndEffector sensor;
};

TEST_F(NqSensorOnArm, OffItHoldsTheFirstThreeSagJoints) {
    const NqReArray j = rows();
    EXPECT_EQ(j[0], std::vector<double>({1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(j[1], std::vector<double>({0, 1, 0, 0, 0, 0}));
    EXPECT_EQ(j[2], std::vector<double>({0, 0, 0, 1, 0, 0}));
    EXPECT_EQ(command({}), NqXmlRealVector({-200.0 * q[0], -200.0 * q[1], -200.0 * q[3]}));
    sensor.setSagLinkLabels({});
    EXPECT_EQ(rows(), NqReArray(3, 6));
    EXPECT_EQ(command({}), NqXmlRealVector(3));
}

TEST_F(NqSensorOnArm, OnItsRowsAreWhatSagJointsDo) {
    sensor.setIsOn(true);
    sensor.setGravityVector({1.0, -2.0, -9.0});
    sensor.setSagStiffness({50.0, 20.0}); // of the first two alone
    const NqReArray j = rows();
    std::vector<double> product;
    ASSERT_TRUE(j.transform(state.velocityState().jointVelocities(), product));
    for (unsigned i = 0; i < 3; ++i) {
        EXPECT_NEAR(velocity()[1 + i], product[i], 1e-12) << "with only sag joints in motion";
    }
    EXPECT_EQ(j[2][2] + j[2][3] + j[2][4] + j[2][5], 0.0);
    NqManipulatorActiveState straight = state;
    NqPositionState zeros = state.positionState();
    zeros.setJointPosition(0, 0.0);
    zeros.setJointPosition(1, 0.0);
    straight.setPositionState(zeros);
    const auto& frame = manipulator.linkByIndex(1)->linkFrameInSystem(straight.activePositionState());
    EXPECT_NEAR(j[2][1], -20.0 * frame.orientation().zAxis().dot(sensor.gravityVector()), 1e-12);
    NqEndEffector::SparsityDescription bits;
    sensor.insertSparsityComponent(manipulator, 0, {}, true, bits);
    for (unsigned r = 0; r < 3; ++r) {
        for (unsigned c = 0; c < 6; ++c) {
            EXPECT_TRUE(j[r][c] == 0.0 || bits[r][c]);
        }
    }

    // Where the target is what it reads, it doesn't turn; the third entry leads the springs to rest.
    NqEndEffectorPlacement target;
    sensor.calculatePlacement(manipulator, state, target);
    const NqXmlRealVector filtered = command(target);
    EXPECT_NEAR(filtered[0], 0.0, 1e-6);
    EXPECT_NEAR(filtered[1], 0.0, 1e-6);
    EXPECT_NEAR(filtered[2], -200.0 * (j[2][0] * q[0] + j[2][1] * q[1]), 1e-9);
}

TEST_F(NqSensorOnArm, OnItMissesItsLink) {
    sensor.setIsOn(true);
    sensor.setLinkIdentifier("gone");
    NqPrintCapture capture;
    EXPECT_EQ(rows(), NqReArray(3, 6));
    EXPECT_EQ(velocity(), NqXmlRealVector(4));
    EXPECT_EQ(command({}), NqXmlRealVector(3));
    NqEndEffectorPlacement placement;
    sensor.calculatePlacement(manipulator, state, placement);
    const std::string start = "NqAccelerometerEndEffector::";
    const std::string end = "(): bad label on accelerometer end effector: gone.\n";
    EXPECT_EQ(capture.text(), start + "insertJacobianComponent" + end + start +
                                  "calculateGravityReadingPlacement" + end + start + "calculatePlacement" +
                                  end);
}

TEST(NqAccelerometer, LevelsAPlatform) {
    NqIndividualManipulator platform("platform", "ground");
    platform.addLink("ground", "roll", NqJointDescription(NqJointDescription::Revolute), NqVector(),
                     {1.0, 0.0, 0.0});
    platform.addLink("roll", "pitch", NqJointDescription(NqJointDescription::Revolute), NqVector(),
                     {0.0, 1.0, 0.0});
    NqManipulatorActiveState state(platform);
    NqPositionState positions(NqXmlRealVector{0.5, -0.4});
    positions.setBaseFrame({NqVector(), NqOrientation(0.3, {0.2, 1.0, 0.1})});
    NqAccelerometerEndEffector sensor;
    sensor.setLinkIdentifier("pitch");
    sensor.setSagLinkLabels({std::string("roll"), std::string("pitch")});
    sensor.setIsOn(true);
    const NqEndEffectorPlacement target(
        {NqVector(), NqOrientation(M_PI, {1.0, 0.0, 0.0})}); // gravity along -z
    constexpr double timeStep = 0.01;
    NqXmlRealVector w;
    for (unsigned i = 0; i < 300; ++i) {
        state.setPositionState(positions);
        NqReArray j;
        sensor.insertJacobianComponent(platform, 0, {}, true, state, j);
        const NqXmlRealVector previous = w;
        sensor.filterEndEffectorVelocity(platform, target, {}, previous, timeStep, state, w);
        const double determinant = j[0][0] * j[1][1] - j[0][1] * j[1][0];
        positions.jointPositions()[0] += timeStep * (w[0] * j[1][1] - w[1] * j[0][1]) / determinant;
        positions.jointPositions()[1] += timeStep * (w[1] * j[0][0] - w[0] * j[1][0]) / determinant;
    }
    const auto& frame = platform.linkByLabel("pitch")->primaryFrameInSystem(state.activePositionState());
    EXPECT_NEAR(frame.orientation().zAxis().z(), 1.0, 1e-6);
}

} // namespace
