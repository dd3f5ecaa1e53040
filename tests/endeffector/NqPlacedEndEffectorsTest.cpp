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

} // namespace
