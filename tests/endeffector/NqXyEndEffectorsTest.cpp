#include "support/NqPrintCapture.h"
#include "support/NqTestModels.h"

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>

#include <gtest/gtest.h>

#include <numbers>

namespace {

/// The hand of a planar arm stretched out along x of the system, at (0.9, 0, 0.1) and turning at 2 rad/s, and
/// constraint axes whose x axis is y of the system, and y the negative x.
class NqXyOnHand : public testing::Test {
protected:
    NqXyOnHand() : state(arm) {
        x.setLinkIdentifier("hand");
        xy.setLinkIdentifier("hand");
        x.setXOrientation(NqOrientation::aboutZ(quarter));
        xy.setXyOrientation(NqOrientation::aboutZ(quarter));
        state.setVelocityState(NqVelocityState(NqXmlRealVector{2.0, 0.0}));
        relative.setRelativeMode(NqEndEffectorRelativeLinkData::relativeModeInternal);
        relative.setRelativeLinkID("upper");
    }

    static constexpr double quarter = 0.5 * std::numbers::pi;
    const NqIndividualManipulator& arm = *nqTestModels()[0].manipulator;
    NqManipulatorActiveState state;
    NqXEndEffector x;
    NqXyEndEffector xy;
    NqEndEffectorRelativeLinkData relative;
    const NqEndEffectorPlacement target{NqVector(0.5, 0.3, 7.0)};
};

TEST_F(NqXyOnHand, CoordinatesErrorAndCommandAreInConstraintAxes) {
    NqXmlRealVector error, command;
    xy.calculateEndEffectorError(arm, target, state, error);
    ASSERT_EQ(error.size(), 2u);
    EXPECT_NEAR(error[0], 0.3, 1e-15);
    EXPECT_NEAR(error[1], 0.4, 1e-15);
    xy.setFilteringActive(false);
    xy.filterEndEffectorVelocity(arm, target, {}, {}, 0.1, state, command);
    ASSERT_EQ(command.size(), 2u);
    EXPECT_NEAR(command[0], 3.0, 1e-14);
    EXPECT_NEAR(command[1], 4.0, 1e-14);

    // Of one coordinate the other takes up none of the limit, nor does a second entry of a velocity.
    x.setMotionThreshold(0.25);
    x.setAccelerationThreshold(1e3);
    x.filterEndEffectorVelocity(arm, target, {0.0, 5.0}, {0.0, 5.0}, 0.1, state, command);
    ASSERT_EQ(command.size(), 1u);
    EXPECT_NEAR(command[0], 0.25, 1e-15);
}

TEST_F(NqXyOnHand, TheRelativeLinkTurnsTheAxesAndOnlyTheRowsMoveWithIt) {
    state.setPositionState(NqPositionState(NqXmlRealVector{quarter, 0.0})); // out along y of the system
    xy.setRelativeLinkData(relative);
    NqPlanarVector at;
    xy.calculate2DPointPlacement(arm, state, at);
    EXPECT_NEAR((at - NqPlanarVector(0.0, -0.9)).mag(), 0.0, 1e-15);
    NqXmlRealVector velocity(4, 9.0);
    xy.calculateVelocity(arm, state, velocity, 1);
    EXPECT_NEAR(velocity[1], 1.8, 1e-15) << "that of the point in the system";
    EXPECT_EQ(velocity.size(), 4u) << "the tail stays";
    xy.calculateAcceleration(arm, state, velocity, 1);
    EXPECT_NEAR(velocity[2], 3.6, 1e-15) << "towards the axis";
    EXPECT_EQ(velocity.size(), 3u) << "the tail is cut";
    NqReArray rows;
    xy.insertJacobianComponent(arm, 0, relative, true, state, rows);
    EXPECT_NEAR(rows[0][1], 0.4, 1e-15);

    // A link that isn't there turns nothing, and only rows and bits say so.
    NqPrintCapture capture;
    relative.setRelativeLinkID("lost");
    xy.setRelativeLinkData(relative);
    xy.calculate2DPointPlacement(arm, state, at);
    EXPECT_NEAR((at - NqPlanarVector(0.9, 0.0)).mag(), 0.0, 1e-15);
    EXPECT_EQ(capture.text(), "");
    xy.insertJacobianComponent(arm, 0, relative, true, state, rows);
    EXPECT_EQ(capture.text(),
              "NqXyEndEffector::insertJacobianComponent(): bad index on relative link: lost.\n");
}

TEST_F(NqXyOnHand, TheDifferenceAlongOneAxisHasASign) {
    // Measured with the axes turned the other way: x is the negative y of the first placement.
    EXPECT_NEAR(x.difference({}, target), -0.3, 1e-15);
    EXPECT_NEAR(xy.difference({}, target), std::hypot(0.3, 0.5), 1e-15);
    x.setMotionThreshold(0.5);
    x.setSpeedFactor(0.5);
    EXPECT_NEAR(x.minimumTime({}, target), -1.2, 1e-14);
}

TEST_F(NqXyOnHand, ALostLinkIsNamedByEachClass) {
    NqPrintCapture capture;
    x.setLinkIdentifier("lost");
    xy.setLinkIdentifier("lost");
    NqEndEffector::SparsityDescription sparsity(1, std::vector<bool>(2, true));
    xy.insertSparsityComponent(arm, 0, {}, true, sparsity);
    EXPECT_TRUE(sparsity[0][0] && !sparsity[1][0]) << "a row that was there keeps its bits";
    double height = 7.0;
    NqEndEffectorPlacement placement = target;
    x.calculate1DPointPlacement(arm, state, height);
    x.calculatePlacement(arm, state, placement);
    EXPECT_TRUE(height == 7.0 && placement == target);
    EXPECT_EQ(capture.text(),
              "NqXyEndEffector::insertSparsityComponent(): bad label on end effector: lost.\n"
              "NqXEndEffector::calculate1DPointPlacement(): bad label on point end effector: lost.\n"
              "NqXEndEffector::calculatePlacement(): bad label on end effector: lost.\n");
}

TEST_F(NqXyOnHand, OneEditableValueSetsBothLimitsOfAcceleration) {
    x.setEditableValue(8, "0.5");
    x.setEditableValue(9, "threeHalves");
    x.setEditableValues();
    EXPECT_EQ(x.pointMotionFilter().decelerationThreshold(), 0.5);
    EXPECT_EQ(x.editableValues()[9].value(), "trapezoidal") << "there is no word for the third mode";
}

} // namespace
