#include "support/NqPrintCapture.h"
#include "support/NqTestModels.h"

#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/endeffector/NqOrientationEndEffector.h>
#include <nqControlCore/endeffector/NqPointEndEffector.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// The hand of a planar arm, links of 0.5 and 0.4, turned by 0.3 about x against the lower link; joints at
/// 0.4 and 0.7. The end-effectors sit a further 0.1 out.
class NqPlanarHand : public testing::Test {
protected:
    NqPlanarHand() : state(manipulator) {
        for (NqEndEffector* each : std::initializer_list<NqEndEffector*>{&point, &frame, &orientation}) {
            each->setLinkIdentifier("hand");
        }
        point.setPoint({0.1, 0.0, 0.0});
        frame.setFrame({NqVector(0.1, 0.0, 0.0), NqOrientation(0.5, {0.0, 1.0, 0.0})});
        state.setPositionState(NqPositionState(NqXmlRealVector{0.4, 0.7}));
        state.setVelocityState(NqVelocityState(NqXmlRealVector{2.0, -1.0}));
    }

    const NqIndividualManipulator& manipulator = *nqTestModels()[0].manipulator;
    NqManipulatorActiveState state;
    NqPointEndEffector point;
    NqFrameEndEffector frame;
    NqOrientationEndEffector orientation;
    NqEndEffectorPlacement placement;
};

TEST_F(NqPlanarHand, OffsetsComposeInTheFramesOwnAxesAndMoveThePointInThoseOfTheHand) {
    const NqOrientation hand = NqOrientation::aboutZ(1.1) * NqOrientation(0.3, {1.0, 0.0, 0.0});
    const NqOrientation own = hand * NqOrientation(0.5, {0.0, 1.0, 0.0});
    const NqVector offset(0.0, 0.2, 0.2);
    const NqCoordinateSystemTransformation lent(offset, NqOrientation(-0.5, {0.0, 1.0, 0.0}));
    frame.calculatePlacement(manipulator, state, placement);
    const NqVector tip(0.5 * std::cos(0.4) + 0.5 * std::cos(1.1), 0.5 * std::sin(0.4) + 0.5 * std::sin(1.1),
                       0.1);
    EXPECT_NEAR((placement.coordSysXForm().translation() - tip).mag(), 0.0, 1e-15);
    EXPECT_NEAR((placement.coordSysXForm().orientation().zAxis() - own.zAxis()).mag(), 0.0, 1e-15);
    NqVector at;
    point.setUseExternalOffset(true);
    point.calculatePointPlacement(manipulator, state, at);
    EXPECT_NEAR((at - tip).mag(), 0.0, 1e-15) << "nothing lent, nothing moved";

    frame.setExternalOffsetPointer(&lent);
    frame.setUseExternalOffset(true);
    frame.calculatePlacement(manipulator, state, placement);
    EXPECT_NEAR((placement.coordSysXForm().translation() - tip - own * offset).mag(), 0.0, 1e-15);
    EXPECT_NEAR((placement.coordSysXForm().orientation().zAxis() - hand.zAxis()).mag(), 0.0, 1e-15);
    point.setExternalOffsetPointer(&lent);
    point.calculatePointPlacement(manipulator, state, at);
    EXPECT_NEAR((at - tip - hand * offset).mag(), 0.0, 1e-15);
    NqVector copied;
    NqPointEndEffector(point).calculatePointPlacement(manipulator, state, copied);
    EXPECT_EQ(copied, at) << "a copy borrows the same offset";
}

TEST_F(NqPlanarHand, ATurnCountsByItsWeight) {
    const NqEndEffectorPlacement turned(
        NqCoordinateSystemTransformation(NqVector(0.3, 0.4, 0.0), NqOrientation(-1.5, {1.0, 0.0, 0.0})));
    EXPECT_NEAR(frame.difference({}, turned), 0.5 + 0.2 * 1.5, 1e-15);
    EXPECT_NEAR(orientation.difference({}, turned), 0.2 * 1.5, 1e-15);

    point.setMotionThreshold(0.125);
    point.setSpeedFactor(2.0);
    EXPECT_NEAR(point.minimumTime({}, turned), 0.5 / 0.25, 1e-15);
    // The time of a frame takes the filter's old threshold, 1, and not its limit of speed.
    frame.setMotionThreshold(0.125);
    frame.setSpeedFactor(2.0);
    EXPECT_NEAR(frame.minimumTime({}, turned), 0.8 / 2.0, 1e-15);
    orientation.setMotionThreshold(0.125);
    orientation.setSpeedFactor(2.0);
    EXPECT_NEAR(orientation.minimumTime({}, turned), 0.3 / 0.25, 1e-15);
}

TEST_F(NqPlanarHand, VelocityCutsAndAccelerationKeepsTheTail) {
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

TEST_F(NqPlanarHand, ErrorIsTheWayInTheSystemFrame) {
    frame.calculatePlacement(manipulator, state, placement);
    const NqVector way(0.01, -0.02, 0.03);
    const NqVector turn(0.3, -0.2, 0.1);
    const NqCoordinateSystemTransformation& here = placement;
    const NqEndEffectorPlacement target(NqCoordinateSystemTransformation(
        here.translation() + way, NqOrientation(turn.mag(), turn) * here.orientation()));
    NqXmlRealVector error;
    frame.calculateEndEffectorError(manipulator, target, state, error);
    ASSERT_EQ(error.size(), 6u);
    NqXmlRealVector linearError, angularError;
    point.calculateEndEffectorError(manipulator, target, state, linearError);
    orientation.setOrientation(NqOrientation(0.5, {0.0, 1.0, 0.0}));
    orientation.calculateEndEffectorError(manipulator, target, state, angularError);
    for (unsigned i = 0; i < 3; ++i) {
        EXPECT_NEAR(error[i], way[i], 1e-15);
        EXPECT_NEAR(linearError[i], way[i], 1e-15);
        EXPECT_NEAR(error[3 + i], turn[i], 1e-15);
        EXPECT_NEAR(angularError[i], turn[i], 1e-15);
    }
    frame.calculateEndEffectorError(manipulator, placement, state, error);
    EXPECT_EQ(error, NqXmlRealVector(6));
}

TEST_F(NqPlanarHand, MissingEntriesOfAVelocityAreZero) {
    NqXmlRealVector filtered;
    frame.filterEndEffectorVelocity({0.1, 0.2}, {0.1, 0.2, 0.0, 0.0, 0.0, 0.3, 9.0}, 1.0, filtered);
    EXPECT_EQ(filtered, NqXmlRealVector({0.1, 0.2, 0.0, 0.0, 0.0, 0.0}));
    orientation.filterEndEffectorVelocity({0.1}, {}, 1.0, filtered);
    EXPECT_EQ(filtered, NqXmlRealVector({0.1, 0.0, 0.0}));
}

TEST_F(NqPlanarHand, BadLabelLeavesThePlacement) {
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

TEST_F(NqPlanarHand, BadLabelFallsToTheOriginAndKeepsThePoint) {
    point.setLinkIdentifier("lost");
    NqPrintCapture capture;
    placement = NqEndEffectorPlacement({NqVector(1.0, 1.0, 1.0), NqOrientation(1.0, {1.0, 0.0, 0.0})});
    point.calculatePlacement(manipulator, state, placement);
    EXPECT_EQ(placement.coordSysXForm(), NqCoordinateSystemTransformation());
    NqVector at(1.0, 2.0, 3.0);
    point.calculatePointPlacement(manipulator, state, at);
    EXPECT_EQ(at, NqVector(1.0, 2.0, 3.0));
    NqEndEffector::SparsityDescription sparsity;
    point.insertSparsityComponent(manipulator, 0, {}, false, sparsity);
    const std::string place = "NqPointEndEffector::calculatePointPlacement()";
    EXPECT_EQ(capture.text(),
              place + ": bad label on point end effector: lost.\n" + place +
                  ": bad label on point end effector: lost.\n"
                  "NqPointEndEffector::insertSparsityComponent(): bad label on point end effector: "
                  "lost.\n");
    const std::vector<bool> row = {false, false, true, false, false, false, true, true};
    EXPECT_EQ(sparsity[0], row) << "the base columns don't depend on the link";
}

TEST_F(NqPlanarHand, AFreeBaseHasItsOnesElsewhereForTheOrientation) {
    NqReArray rotation;
    orientation.insertJacobianComponent(manipulator, 0, {}, false, state, rotation);
    for (unsigned r = 0; r < 3; ++r) {
        for (unsigned c = 0; c < 6; ++c) {
            EXPECT_EQ(rotation[r][2 + c], c == r ? 1.0 : 0.0);
        }
    }
}

TEST_F(NqPlanarHand, InternalModeCancelsSharedJointsExactly) {
    NqEndEffectorRelativeLinkData relative;
    relative.setRelativeMode(NqEndEffectorRelativeLinkData::relativeModeInternal);
    relative.setRelativeLinkID("lower");
    NqReArray j;
    point.insertJacobianComponent(manipulator, 0, relative, false, state, j);
    EXPECT_EQ(j, NqReArray(3, 8)) << "the hand is fixed to the lower arm";
}

TEST_F(NqPlanarHand, ALongerListOfValuesIsTakenByTheFrameAlone) {
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

TEST_F(NqPlanarHand, EditableWordsAndFlagsAreReadLeniently) {
    const auto apply = [&](unsigned index, const std::string& text) {
        point.setEditableValue(index, text);
        point.setEditableValues();
        return point.editableValues()[index].value();
    };
    EXPECT_EQ(apply(6, "PROPORTIONAL"), "proportional");
    EXPECT_EQ(apply(6, "threehalves"), "threeHalves");
    EXPECT_EQ(apply(6, "sideways"), "threeHalves") << "an unknown word leaves the mode";
    EXPECT_EQ(apply(8, "0"), "0");
    EXPECT_EQ(apply(8, "00"), "1") << "only the exact text 0 is false";
    EXPECT_EQ(apply(9, "no number"), "0");

    const NqPointEndEffector before = point;
    point.setEditableValue(10, "1");
    point.setEditableValues();
    EXPECT_TRUE(point == before);
    NqPointEndEffector fresh;
    fresh.setEditableValue(0, "0.5"); // fills the empty cache first
    fresh.setEditableValues();
    EXPECT_EQ(fresh.point(), NqVector(0.5, 0.0, 0.0));
}

TEST_F(NqPlanarHand, SettersReachTheirValues) {
    frame.setLinearErrorWeight(0.75);
    frame.setAngularErrorWeight(0.25);
    point.setErrorWeight(0.5);
    NqReArray weights;
    frame.insertErrorWeightComponent(0, weights);
    point.insertErrorWeightComponent(6, weights);
    EXPECT_TRUE(weights[2][0] == 0.75 && weights[3][0] == 0.25 && weights[6][0] == 0.5);
    point.setIsHardConstraint(false);
    point.setIsEditable(false);
    point.setExternalOffsetIndex(3);
    point.setCanBecomeSoft(true);
    EXPECT_TRUE(!point.isHardConstraint() && !point.isEditable() && point.canBecomeSoft());
    EXPECT_EQ(point.externalOffsetIndex(), 3u);
}

} // namespace
