#include "support/NqPrintCapture.h"
#include "support/NqTestModels.h"

#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/endeffector/NqOrientationEndEffector.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// The hand of a planar arm, turned by 0.3 about x against the lower link; joints at 0.4 and 0.7.
class NqPlanarFrame : public testing::Test {
protected:
    NqPlanarFrame() : state(manipulator) {
        frame.setLinkIdentifier("hand");
        frame.setFrame({NqVector(0.1, 0.0, 0.0), NqOrientation(0.5, {0.0, 1.0, 0.0})});
        orientation.setLinkIdentifier("hand");
        state.setPositionState(NqPositionState(NqXmlRealVector{0.4, 0.7}));
        state.setVelocityState(NqVelocityState(NqXmlRealVector{2.0, -1.0}));
    }

    const NqIndividualManipulator& manipulator = *nqTestModels()[0].manipulator;
    NqManipulatorActiveState state;
    NqFrameEndEffector frame;
    NqOrientationEndEffector orientation;
    NqEndEffectorPlacement placement;
};

TEST_F(NqPlanarFrame, OffsetsComposeInTheFramesOwnAxes) {
    const NqOrientation hand = NqOrientation::aboutZ(1.1) * NqOrientation(0.3, {1.0, 0.0, 0.0});
    const NqOrientation own = hand * NqOrientation(0.5, {0.0, 1.0, 0.0});
    const NqCoordinateSystemTransformation lent(NqVector(0.0, 0.0, 0.2),
                                                NqOrientation(-0.5, {0.0, 1.0, 0.0}));
    frame.calculatePlacement(manipulator, state, placement);
    const NqVector tip(0.5 * std::cos(0.4) + 0.5 * std::cos(1.1), 0.5 * std::sin(0.4) + 0.5 * std::sin(1.1),
                       0.1);
    EXPECT_NEAR((placement.coordSysXForm().translation() - tip).mag(), 0.0, 1e-15);
    EXPECT_NEAR((placement.coordSysXForm().orientation().zAxis() - own.zAxis()).mag(), 0.0, 1e-15);

    frame.setExternalOffsetPointer(&lent);
    frame.setUseExternalOffset(true);
    frame.calculatePlacement(manipulator, state, placement);
    EXPECT_NEAR((placement.coordSysXForm().translation() - tip - own * NqVector(0.0, 0.0, 0.2)).mag(), 0.0,
                1e-15);
    EXPECT_NEAR((placement.coordSysXForm().orientation().zAxis() - hand.zAxis()).mag(), 0.0, 1e-15);
}

TEST_F(NqPlanarFrame, ATurnCountsByItsWeight) {
    const NqEndEffectorPlacement turned(
        NqCoordinateSystemTransformation(NqVector(0.3, 0.4, 0.0), NqOrientation(-1.5, {1.0, 0.0, 0.0})));
    EXPECT_NEAR(frame.difference({}, turned), 0.5 + 0.2 * 1.5, 1e-15);
    EXPECT_NEAR(orientation.difference({}, turned), 0.2 * 1.5, 1e-15);

    // The time of a frame takes the filter's old threshold, 1, and not its limit of speed.
    frame.setMotionThreshold(0.125);
    frame.setSpeedFactor(2.0);
    EXPECT_NEAR(frame.minimumTime({}, turned), 0.8 / 2.0, 1e-15);
    orientation.setMotionThreshold(0.125);
    orientation.setSpeedFactor(2.0);
    EXPECT_NEAR(orientation.minimumTime({}, turned), 0.3 / 0.25, 1e-15);
}

TEST_F(NqPlanarFrame, VelocityCutsAndAccelerationKeepsTheTail) {
    for (const NqEndEffector* endEffector :
         {static_cast<NqEndEffector*>(&frame), static_cast<NqEndEffector*>(&orientation)}) {
        NqXmlRealVector values(10, 7.0);
        endEffector->calculateAcceleration(manipulator, state, values, 1);
        EXPECT_EQ(values.size(), 10u);
        EXPECT_EQ(values[0], 7.0);
        EXPECT_EQ(values[1 + endEffector->doc()], 7.0);
        endEffector->calculateVelocity(manipulator, state, values, 1);
        EXPECT_EQ(values.size(), 1 + endEffector->doc());
        EXPECT_NEAR(values[endEffector->doc()], 1.0, 1e-15) << "rates of 2 and -1 about z";
    }
}

TEST_F(NqPlanarFrame, ErrorIsTheWayInTheSystemFrame) {
    frame.calculatePlacement(manipulator, state, placement);
    const NqVector way(0.01, -0.02, 0.03);
    const NqVector turn(0.3, -0.2, 0.1);
    const NqCoordinateSystemTransformation& here = placement;
    const NqEndEffectorPlacement target(NqCoordinateSystemTransformation(
        here.translation() + way, NqOrientation(turn.mag(), turn) * here.orientation()));
    NqXmlRealVector error;
    frame.calculateEndEffectorError(manipulator, target, state, error);
    ASSERT_EQ(error.size(), 6u);
    NqXmlRealVector angularError;
    orientation.setOrientation(NqOrientation(0.5, {0.0, 1.0, 0.0}));
    orientation.calculateEndEffectorError(manipulator, target, state, angularError);
    for (unsigned i = 0; i < 3; ++i) {
        EXPECT_NEAR(error[i], way[i], 1e-15);
        EXPECT_NEAR(error[3 + i], turn[i], 1e-15);
        EXPECT_NEAR(angularError[i], turn[i], 1e-15);
    }
    frame.calculateEndEffectorError(manipulator, placement, state, error);
    EXPECT_EQ(error, NqXmlRealVector(6));
}

TEST_F(NqPlanarFrame, MissingEntriesOfAVelocityAreZero) {
    NqXmlRealVector filtered;
    frame.filterEndEffectorVelocity({0.1, 0.2}, {0.1, 0.2, 0.0, 0.0, 0.0, 0.3, 9.0}, 1.0, filtered);
    EXPECT_EQ(filtered, NqXmlRealVector({0.1, 0.2, 0.0, 0.0, 0.0, 0.0}));
    orientation.filterEndEffectorVelocity({0.1}, {}, 1.0, filtered);
    EXPECT_EQ(filtered, NqXmlRealVector({0.1, 0.0, 0.0}));
}

TEST_F(NqPlanarFrame, BadLabelLeavesThePlacement) {
    NqPrintCapture capture;
    frame.setLinkIdentifier("lost");
    orientation.setLinkIdentifier("lost");
    const NqEndEffectorPlacement before(NqVector(1.0, 2.0, 3.0));
    placement = before;
    frame.calculatePlacement(manipulator, state, placement);
    orientation.calculatePlacement(manipulator, state, placement);
    EXPECT_EQ(placement, before);
    EXPECT_EQ(
        capture.text(),
        "NqFrameEndEffector::calculateFramePlacement():  bad label on frame end effector: lost.\n"
        "NqOrientationEndEffector::calculateFramePlacement():  bad label on frame end effector: lost.\n");
}

TEST_F(NqPlanarFrame, AFreeBaseTurnsTheFrameButHasOnesElsewhereForTheOrientation) {
    NqReArray j;
    frame.insertJacobianComponent(manipulator, 0, {}, false, state, j);
    NqReArray rotation;
    orientation.insertJacobianComponent(manipulator, 0, {}, false, state, rotation);
    for (unsigned r = 0; r < 3; ++r) {
        for (unsigned c = 0; c < 6; ++c) {
            EXPECT_EQ(j[3 + r][2 + c], c == 3 + r ? 1.0 : 0.0);
            EXPECT_EQ(rotation[r][2 + c], c == r ? 1.0 : 0.0);
        }
    }
}

TEST_F(NqPlanarFrame, ALongerListOfValuesIsTakenByTheFrameAlone) {
    NqLabelVector values = frame.editableValues();
    values[0] = std::string("0.75");
    values.pushBack(std::string("1"));
    frame.setEditableValues(values);
    EXPECT_EQ(frame.frame().translation().x(), 0.75);
    values = orientation.editableValues();
    values[4] = std::string("0.75");
    values.pushBack(std::string("1"));
    orientation.setEditableValues(values);
    EXPECT_EQ(orientation.motionThreshold(), 1.0);
}

} // namespace
