#include "endeffector/NqEndEffectorTest.h"

namespace {

/// The hand of a planar arm, links of 0.5 and 0.4, turned by 0.3 about x against the lower link; joints at
/// 0.4 and 0.7. The end-effectors sit a further 0.1 out.
struct NqPlanarHand : NqEndEffectorTest {
    NqPlanarHand() : NqEndEffectorTest(nqTestModels()[0].manipulator) {
        setLink("hand");
        point.setPoint({0.1, 0.0, 0.0});
        frame.setFrame({NqVector(0.1, 0.0, 0.0), NqOrientation(0.5, {0.0, 1.0, 0.0})});
        setJoints({0.4, 0.7}, {2.0, -1.0});
    }

    void setLink(const std::string& label) {
        for (NqEndEffector* each : std::initializer_list<NqEndEffector*>{&point, &frame, &orientation}) {
            each->setLinkIdentifier(label);
        }
    }
    NqVector place() {
        NqVector at(1.0, 2.0, 3.0);
        point.calculatePointPlacement(manipulator, state, at);
        return at;
    }

    NqPointEndEffector point;
    NqFrameEndEffector frame;
    NqOrientationEndEffector orientation;
};

TEST_F(NqPlanarHand, OffsetsComposeInTheFramesOwnAxesAndMoveThePointInThoseOfTheHand) {
    const NqOrientation hand = NqOrientation::aboutZ(1.1) * NqOrientation(0.3, {1.0, 0.0, 0.0});
    const NqOrientation own = hand * NqOrientation(0.5, {0.0, 1.0, 0.0});
    const NqVector offset(0.0, 0.2, 0.2);
    const Pose lent(offset, NqOrientation(-0.5, {0.0, 1.0, 0.0}));
    const NqVector tip(0.5 * std::cos(0.4) + 0.5 * std::cos(1.1), 0.5 * std::sin(0.4) + 0.5 * std::sin(1.1),
                       0.1);
    const auto expectFrame = [&](const NqVector& origin, const NqOrientation& axes) {
        const Pose here = placement(frame);
        expectNear(here.translation(), origin, 1e-15);
        expectNear(here.orientation().zAxis(), axes.zAxis(), 1e-15);
    };
    expectFrame(tip, own);
    point.setUseExternalOffset(true);
    expectNear(place(), tip, 1e-15); // nothing lent, nothing moved

    frame.setExternalOffsetPointer(&lent);
    frame.setUseExternalOffset(true);
    expectFrame(tip + own * offset, hand);
    point.setExternalOffsetPointer(&lent);
    expectNear(place(), tip + hand * offset, 1e-15);
    EXPECT_EQ(placement(NqPointEndEffector(point)), Placement(place())) << "a copy borrows the same offset";
}

TEST_F(NqPlanarHand, ATurnCountsByItsWeight) {
    const Placement turned(Pose(NqVector(0.3, 0.4, 0.0), NqOrientation(-1.5, {1.0, 0.0, 0.0})));
    EXPECT_NEAR(frame.difference({}, turned), 0.5 + 0.2 * 1.5, 1e-15);
    EXPECT_NEAR(orientation.difference({}, turned), 0.2 * 1.5, 1e-15);
    const auto timeOf = [&](NqEndEffector& e) {
        e.setMotionThreshold(0.125);
        e.setSpeedFactor(2.0);
        return e.minimumTime({}, turned);
    };
    EXPECT_NEAR(timeOf(point), 0.5 / 0.25, 1e-15);
    EXPECT_NEAR(timeOf(orientation), 0.3 / 0.25, 1e-15);
    EXPECT_NEAR(timeOf(frame), 0.8 / 2.0, 1e-15)
        << "by the filter's old threshold, 1, not its limit of speed";
}

TEST_F(NqPlanarHand, VelocityCutsAndAccelerationKeepsTheTail) {
    for (const NqEndEffector* e : std::initializer_list<const NqEndEffector*>{&frame, &orientation}) {
        const Reals kept = acceleration(*e, Reals(10, 7.0), 1);
        EXPECT_TRUE(kept.size() == 10u && kept[0] == 7.0 && kept[1 + e->doc()] == 7.0);
        const Reals cut = velocity(*e, kept, 1);
        EXPECT_EQ(cut.size(), 1 + e->doc());
        EXPECT_NEAR(cut[e->doc()], 1.0, 1e-15) << "rates of 2 and -1 about z";
    }
}

TEST_F(NqPlanarHand, MissingEntriesOfAVelocityAreZero) {
    EXPECT_EQ(limited(frame, {0.1, 0.2, 0.0, 0.5}, {0.1, 0.2, 0.0, 0.0, 0.0, 0.3, 9.0}, 1.0),
              Reals({0.1, 0.2, 0.0, 0.5, 0.0, 0.0}));
    EXPECT_EQ(limited(orientation, {0.1}, {}, 1.0), Reals({0.1, 0.0, 0.0}));
    EXPECT_EQ(limited(point, {0.1}, {}, 1.0), Reals({0.1, 0.0, 0.0}));
}

TEST_F(NqPlanarHand, BadLabelLeavesFramesAndBringsThePointToTheOrigin) {
    NqPrintCapture capture;
    setLink("lost");
    const Placement before(Pose(NqVector(1.0, 2.0, 3.0), NqOrientation(1.0, {1.0, 0.0, 0.0})));
    EXPECT_EQ(placement(frame, before), before);
    EXPECT_EQ(placement(orientation, before), before);
    EXPECT_EQ(placement(point, before), Placement());
    EXPECT_EQ(place(), NqVector(1.0, 2.0, 3.0)) << "left alone";
    const std::vector<bool> row = {false, false, true, false, false, false, true, true};
    EXPECT_EQ(bits(point, {}, false)[0], row) << "the base columns don't depend on the link";
    EXPECT_EQ(capture.text(),
              R"(NqFrameEndEffector::calculateFramePlacement():  bad label on frame end effector: lost.
NqOrientationEndEffector::calculateFramePlacement():  bad label on frame end effector: lost.
NqPointEndEffector::calculatePointPlacement(): bad label on point end effector: lost.
NqPointEndEffector::calculatePointPlacement(): bad label on point end effector: lost.
NqPointEndEffector::insertSparsityComponent(): bad label on point end effector: lost.
)");
}

TEST_F(NqPlanarHand, RowsOfAFreeBase) {
    const NqReArray j = rows(orientation, {}, false); // has its ones in the columns of the translation
    EXPECT_EQ(j[0], Row({0, 0, 1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(j[1], Row({0, 0, 0, 1, 0, 0, 0, 0}));
    EXPECT_EQ(j[2], Row({1, 1, 0, 0, 1, 0, 0, 0}));
    EXPECT_EQ(rows(point, internalTo("lower"), false), NqReArray(3, 8)) << "the hand is fixed to that link";
}

TEST_F(NqPlanarHand, ALongerListOfValuesIsTakenByTheFrameAlone) {
    EXPECT_EQ(edited(frame, 0, "0.75"), "0.75");
    EXPECT_EQ(edited(orientation, 4, "0.75"), "1");
}

TEST_F(NqPlanarHand, EditableFlagsAndNumbersAreReadLeniently) {
    const auto apply = [&](unsigned index, const std::string& text) {
        point.setEditableValue(index, text);
        point.setEditableValues();
        return point.editableValues()[index].value();
    };
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
