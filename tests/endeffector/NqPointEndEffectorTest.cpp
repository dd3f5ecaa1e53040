#include "support/NqPrintCapture.h"
#include "support/NqTestModels.h"

#include <nqControlCore/endeffector/NqPointEndEffector.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using RelativeData = NqEndEffectorRelativeLinkData;

/// The hand of a planar arm: links of 0.5 and 0.4, the point a further 0.1 out.
class NqPlanarPoint : public testing::Test {
protected:
    NqPlanarPoint() : state(manipulator) {
        endEffector.setLinkIdentifier("hand");
        endEffector.setPoint({0.1, 0.0, 0.0});
        state.setPositionState(NqPositionState(NqXmlRealVector{0.4, 0.7}));
        state.setVelocityState(NqVelocityState(NqXmlRealVector{2.0, -1.0}));
    }

    const NqTestModel& model = nqTestModels()[0];
    const NqIndividualManipulator& manipulator = *model.manipulator;
    NqManipulatorActiveState state;
    NqPointEndEffector endEffector;
    const double s1 = std::sin(0.4), c1 = std::cos(0.4), s12 = std::sin(1.1), c12 = std::cos(1.1);
};

TEST_F(NqPlanarPoint, FollowsItsClosedForm) {
    NqVector point;
    endEffector.calculatePointPlacement(manipulator, state, point);
    EXPECT_NEAR((point - NqVector(0.5 * c1 + 0.5 * c12, 0.5 * s1 + 0.5 * s12, 0.1)).mag(), 0.0, 1e-15);

    NqReArray j;
    endEffector.insertJacobianComponent(manipulator, 0, {}, false, state, j);
    const double expected[3][8] = {
        {-0.5 * s1 - 0.5 * s12, -0.5 * s12, 1, 0, 0, 0, point.z(), -point.y()},
        {0.5 * c1 + 0.5 * c12, 0.5 * c12, 0, 1, 0, -point.z(), 0, point.x()},
        {0, 0, 0, 0, 1, point.y(), -point.x(), 0},
    };
    ASSERT_EQ(j.columns(), 8u);
    for (unsigned r = 0; r < 3; ++r) {
        for (unsigned c = 0; c < 8; ++c) {
            EXPECT_NEAR(j[r][c], expected[r][c], 1e-15) << r << ", " << c;
        }
    }

    // At constant rates the acceleration is centripetal: rates 2 and 2 - 1 about the two joints.
    NqXmlRealVector a;
    endEffector.calculateAcceleration(manipulator, state, a, 0);
    EXPECT_NEAR(a[0], -0.5 * c1 * 4.0 - 0.5 * c12 * 1.0, 1e-14);
    EXPECT_NEAR(a[1], -0.5 * s1 * 4.0 - 0.5 * s12 * 1.0, 1e-14);

    NqEndEffectorPlacement target(point + NqVector(0.3, -0.4, 0.0));
    NqXmlRealVector error;
    endEffector.calculateEndEffectorError(manipulator, target, state, error);
    EXPECT_NEAR(error[0], 0.3, 1e-15);
    EXPECT_NEAR(error[1], -0.4, 1e-15);
    endEffector.setMotionThreshold(0.25);
    endEffector.setSpeedFactor(2.0);
    EXPECT_NEAR(endEffector.minimumTime(NqEndEffectorPlacement(point), target), 1.0, 1e-14);
}

TEST_F(NqPlanarPoint, ExternalOffsetActsByItsTranslationAlone) {
    const NqCoordinateSystemTransformation offset(NqVector(0.0, 0.2, 0.0),
                                                  NqOrientation(1.0, {0.3, 0.4, 0.5}));
    NqVector own;
    NqVector moved;
    endEffector.calculatePointPlacement(manipulator, state, own);
    endEffector.setUseExternalOffset(true);
    endEffector.calculatePointPlacement(manipulator, state, moved);
    EXPECT_EQ(moved, own) << "nothing lent, nothing moved";
    endEffector.setExternalOffsetPointer(&offset);
    endEffector.calculatePointPlacement(manipulator, state, moved);
    const NqOrientation hand =
        manipulator.linkByLabel("hand")->primaryFrameInSystem(state.activePositionState()).orientation();
    EXPECT_NEAR((moved - own - hand * NqVector(0.0, 0.2, 0.0)).mag(), 0.0, 1e-15);

    const NqPointEndEffector copy = endEffector;
    copy.calculatePointPlacement(manipulator, state, own);
    EXPECT_EQ(own, moved) << "a copy borrows the same offset";
}

TEST_F(NqPlanarPoint, InternalModeCancelsSharedJointsExactly) {
    RelativeData relative;
    relative.setRelativeMode(RelativeData::relativeModeInternal);
    relative.setRelativeLinkID("lower");
    NqReArray j;
    endEffector.insertJacobianComponent(manipulator, 0, relative, false, state, j);
    EXPECT_EQ(j, NqReArray(3, 8)) << "the hand is fixed to the lower arm";
}

TEST_F(NqPlanarPoint, BadLabelFallsToTheOriginAndKeepsThePoint) {
    endEffector.setLinkIdentifier("lost");
    NqPrintCapture capture;
    NqEndEffectorPlacement placement(
        NqCoordinateSystemTransformation(NqVector(1.0, 1.0, 1.0), NqOrientation(1.0, {1.0, 0.0, 0.0})));
    endEffector.calculatePlacement(manipulator, state, placement);
    EXPECT_EQ(placement.coordSysXForm(), NqCoordinateSystemTransformation());
    NqVector point(1.0, 2.0, 3.0);
    endEffector.calculatePointPlacement(manipulator, state, point);
    EXPECT_EQ(point, NqVector(1.0, 2.0, 3.0));
    NqEndEffector::SparsityDescription sparsity;
    endEffector.insertSparsityComponent(manipulator, 0, {}, false, sparsity);
    const std::string place = "NqPointEndEffector::calculatePointPlacement()";
    EXPECT_EQ(capture.text(),
              place + ": bad label on point end effector: lost.\n" + place +
                  ": bad label on point end effector: lost.\n"
                  "NqPointEndEffector::insertSparsityComponent(): bad label on point end effector: "
                  "lost.\n");
    const std::vector<bool> row = {false, false, true, false, false, false, true, true};
    EXPECT_EQ(sparsity[0], row) << "the base columns don't depend on the link";
}

TEST_F(NqPlanarPoint, EditableWordsAndFlagsAreReadLeniently) {
    const auto apply = [&](unsigned index, const std::string& text) {
        endEffector.setEditableValue(index, text);
        endEffector.setEditableValues();
        return endEffector.editableValues()[index].value();
    };
    EXPECT_EQ(apply(6, "PROPORTIONAL"), "proportional");
    EXPECT_EQ(apply(6, "threehalves"), "threeHalves");
    EXPECT_EQ(apply(6, "sideways"), "threeHalves") << "an unknown word leaves the mode";
    EXPECT_EQ(apply(8, "0"), "0");
    EXPECT_EQ(apply(8, "00"), "1") << "only the exact text 0 is false";
    EXPECT_EQ(apply(9, "no number"), "0");

    const NqPointEndEffector before = endEffector;
    endEffector.setEditableValue(10, "1");
    endEffector.setEditableValues();
    EXPECT_TRUE(endEffector == before);
    NqPointEndEffector fresh;
    fresh.setEditableValue(0, "0.5"); // fills the empty cache first
    fresh.setEditableValues();
    EXPECT_EQ(fresh.point(), NqVector(0.5, 0.0, 0.0));
}

} // namespace
