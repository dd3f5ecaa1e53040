#include "endeffector/NqEndEffectorTest.h"

namespace {

/// A planar arm, joints at 0.4 and 0.7.
struct NqPlanarNumbers : NqEndEffectorTest {
    NqPlanarNumbers() : NqEndEffectorTest(nqTestModels()[0].manipulator) {
        linear.setLinkLabels({std::string("upper"), std::string("hand")});
        linear.setLinkWeights({2.0, -3.0, 100.0});
        linear.setWeightedSum(0.25);
        setJoints({0.4, 0.7}, {2.0, -1.0});
    }

    Row row(const NqEndEffector& e, const Relative& relative = {}) { return rows(e, relative)[0]; }

    NqLinearConstraintEndEffector linear;
    NqPointDistanceEndEffector distance;
    NqAxisRotateEndEffector axis;
};

TEST_F(NqPlanarNumbers, LinearConstraintSumsWeightedJoints) {
    EXPECT_EQ(number(linear), -0.25 + 0.4 * 2.0 + 0.7 * -3.0);
    expectNear(error(linear, at(1.0)), {-1.55 - 1.0}, 1e-15); // present less desired
    EXPECT_EQ(row(linear), Row({2.0, -3.0}));

    linear.setIsInteractive(false);
    EXPECT_EQ(number(linear), 0.0) << "left alone";
    EXPECT_EQ(error(linear, at(1.0)), Reals({0.0}));
    linear.setMotionThreshold(0.0);
    EXPECT_EQ(linear.minimumTime({}, at(1.0)), 0.0);
    linear.setMotionThreshold(0.5);
    linear.setSpeedFactor(0.1);
    EXPECT_EQ(linear.minimumTime({}, at(-1.0)), 2.0);

    const NqLinearConstraintEndEffector none;
    EXPECT_EQ(row(none), Row(2));
    EXPECT_EQ(error(none, at(1.0)), Reals({0.0})) << "without a joint nothing is asked for";
}

TEST_F(NqPlanarNumbers, LinearConstraintLeavesOutWhatHasNoJoint) {
    NqPrintCapture capture;
    linear.setLinkLabels({std::string(), std::string("lost,base")});
    linear.setEditableValue(0, linear.editableValues()[0]);
    linear.setEditableValues();
    EXPECT_EQ(linear.linkLabels(), Labels({std::string(), std::string("lost"), std::string("base")}));
    linear.setLinkLabels({std::string("base"), std::string("lost"), std::string("lower")});
    EXPECT_EQ(row(linear), Row({0.0, 100.0}));
    EXPECT_EQ(row(linear), Row({0.0, 100.0})) << "labels are looked up once";
    EXPECT_EQ(capture.text(),
              "NqLinearConstraintEndEffector::setLinkIndices(): error: label is for base link\n"
              "NqLinearConstraintEndEffector::setLinkIndices(): bad label: lost.\n");
}

TEST_F(NqPlanarNumbers, LinearConstraintRemembersItsJointsUntilItChanges) {
    EXPECT_EQ(row(linear), Row({2.0, -3.0}));
    const NqIndividualManipulator other("other", "root");
    NqManipulatorActiveState otherState(other);
    NqPrintCapture capture;
    NqReArray j;
    linear.insertJacobianComponent(other, 0, {}, true, otherState, j);
    EXPECT_TRUE(capture.contains("insertSparsityComponent(): Indices out of range: row 0 and column 1\n"));
    linear.setLinkWeights({1.0}); // fewer than were looked up
    EXPECT_EQ(row(linear), Row({1.0, 0.0}));

    // A copy looks up for itself, and so does an object after it was assigned to, read or relabelled.
    capture.clear();
    const NqLinearConstraintEndEffector copy = linear;
    copy.insertJacobianComponent(other, 0, {}, true, otherState, j);
    EXPECT_TRUE(capture.contains("bad label: upper"));
    EXPECT_TRUE(linear.changeLinkLabel("upper", "lower"));
    EXPECT_FALSE(linear.changeLinkLabel("upper", "lower"));
    EXPECT_EQ(row(linear), Row({1.0, 0.0})) << "renaming forgets nothing";
    NqLinearConstraintEndEffector assigned = copy;
    EXPECT_EQ(row(assigned), Row({1.0, 0.0}));
    assigned = linear;
    EXPECT_EQ(row(assigned), Row({0.0, 1.0}));
    ASSERT_TRUE(NqXmlDocument::readString(
        "<linearConstraintEndEffector><jointLabels count=\"1\"><group><value>upper</value></group>"
        "</jointLabels><gain>3</gain><threshold>2</threshold></linearConstraintEndEffector>",
        assigned));
    EXPECT_EQ(row(assigned), Row({1.0, 0.0}));
    EXPECT_EQ(assigned.gain(), 200.0) << "the gain of old files doesn't reach the filter";
}

TEST_F(NqPlanarNumbers, DistanceIsThatOfTwoPoints) {
    distance.setLabelOne("upper");
    distance.setLabelTwo("hand");
    distance.setPointTwo({0.1, 0.0, 0.0});
    EXPECT_NEAR(number(distance), std::hypot(0.5 + 0.5 * std::cos(0.7), 0.5 * std::sin(0.7)), 1e-15);
    EXPECT_NEAR(row(distance)[0], 0.0, 1e-15) << "the shoulder turns both alike";
    EXPECT_EQ(error(distance, at(0.2)), Reals({0.0}));

    // The target is never less than 5 mm: points that coincide part, and are there within the step.
    distance.setLabelTwo("upper");
    distance.setPointTwo({});
    EXPECT_EQ(filtered(distance, at(-1.0)), Reals({0.5}));
}

TEST_F(NqPlanarNumbers, DistanceKeepsTheChainWhoseLinkIsKnown) {
    distance.setLinkIdentifier("own");
    distance.setLabelOne("one");
    EXPECT_TRUE(distance.changeLinkLabel("one", "lost"));
    EXPECT_FALSE(distance.changeLinkLabel("one", "lost"));
    distance.setLabelTwo("two");
    EXPECT_TRUE(distance.changeLinkLabel("two", "second"));
    EXPECT_TRUE(distance.labelTwo() == "second" && distance.labelOne() == "lost");
    distance.setLabelTwo("hand");
    NqPrintCapture capture;
    // From the origin to the hand: only the elbow changes the distance.
    const Row columns = row(distance);
    EXPECT_NEAR(columns[0], 0.0, 1e-15);
    EXPECT_GT(std::fabs(columns[1]), 0.1);
    EXPECT_EQ(bits(distance)[0], std::vector<bool>({true, true}));
    const std::string name = "NqPointDistanceEndEffector::";
    EXPECT_EQ(capture.text(), name + "insertJacobianComponent(): bad label on point1: : lost.\n" + name +
                                  "insertSparsityComponent(): bad label on first point: own.\n");
}

TEST_F(NqPlanarNumbers, AxisAngleIsMeasuredFromTheRightAngle) {
    axis.setLinkIdentifier("hand");
    // The hand's z axis leans by 0.3 from the arm's; the elbow turns it about z.
    axis.setReferenceAxis({0.0, 0.0, 1.0});
    EXPECT_NEAR(number(axis), 0.3 - std::acos(0.0), 1e-15);
    expectNear(error(axis, at(0.1)), {0.3 - std::acos(0.0) - 0.1}, 1e-15);
    EXPECT_NEAR(row(axis)[0], 0.0, 1e-15);
    axis.setOrientation(NqOrientation(-0.3, {1.0, 0.0, 0.0}));
    EXPECT_FALSE(std::isfinite(row(axis)[0]) && std::isfinite(row(axis)[1])) << "parallel axes";

    // The reference axis in the upper link, which turns at a rate of 2: the rate enters each column.
    axis.setOrientation(NqOrientation(0.6, {1.0, 0.0, 0.0}));
    axis.setReferenceAxis({1.0, 0.0, 0.0});
    axis.setRelativeLinkData(internalTo("upper"));
    const double lean = std::sin(0.9);
    const double x = lean * std::sin(0.7); // z leans to -y of the lower link
    EXPECT_NEAR(number(axis), std::acos(x) - std::acos(0.0), 1e-15);
    const double slope = -1.0 / std::sqrt(1.0 - x * x), turn = lean * std::cos(0.7);
    EXPECT_NEAR(row(axis, internalTo("upper"))[0], slope * (turn - 2.0 * turn), 1e-14);
}

} // namespace
