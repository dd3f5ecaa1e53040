#include "controlloop/NqControlLoopTesting.h"
#include "support/NqTesting.h"

#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/endeffector/special/NqCoordinatedJointEndEffector.h>

namespace {

/// Steps until the first part is at its target.
bool reaches(NqControlLoop& loop, double seconds) {
    while (loop.errors()[0] > 1.0e-4 && loop.time() < seconds && loop.step()) {
    }
    return loop.errors()[0] <= 1.0e-4;
}

TEST(NqControlLoop, TakesTargetsByNameInBothFrames) {
    const NqIndividualManipulator robot = nqTestManipulator("twin9");
    NqControlLoop loop(robot);
    NqPointEndEffector right = nqOn("right_tip");
    NqEndEffectorRelativeLinkData relative;
    relative.setRelativeMode(NqEndEffectorRelativeLinkData::relativeModeInternal);
    relative.setRelativeLinkID("left_tip");
    right.setRelativeLinkData(relative);
    ASSERT_TRUE(loop.addEndEffector("right", right));
    ASSERT_TRUE(loop.addEndEffector("left", nqOn("left_tip")));
    const NqPrintCapture messages;
    EXPECT_FALSE(loop.addEndEffector("left", right)) << "the name is taken";
    loop.setPositions({0.0, 0.4, 0.8, -1.3, 0.4, 0.1, 0.2, -0.8, 0.9});
    loop.setTarget("left", NqControlTarget::place(loop.placements()[1].translation()));

    const NqVector inSystem = loop.placements()[0].translation() + NqVector(0.02, 0.0, 0.03);
    ASSERT_TRUE(loop.setTarget("right", NqControlTarget::place(inSystem).inSystem()));
    ASSERT_TRUE(reaches(loop, 5.0));
    EXPECT_LT((loop.placements()[0].translation() - inSystem).mag(), 1.1e-4);

    const NqVector inLeft =
        loop.relativePlacement(0).coordSysXForm().translation() + NqVector(0.0, 0.03, 0.0);
    ASSERT_TRUE(loop.setTarget("right", NqControlTarget::place(inLeft)));
    ASSERT_TRUE(reaches(loop, 10.0));
    EXPECT_LT((loop.relativePlacement(0).coordSysXForm().translation() - inLeft).mag(), 1.1e-4);

    auto turned = nqOn<NqFrameEndEffector>("right_tip");
    turned.setRelativeLinkData(relative);
    loop.addEndEffector("turned", turned);
    loop.setTarget("turned", NqControlTarget::frame(loop.placements()[2]).inSystem());
    loop.setTarget("turned", NqControlTarget::place(inLeft));
    EXPECT_NEAR(loop.errors()[3], 0.0, 1.0e-9) << "the orientation stays what it was in the system";
    loop.removeEndEffector("turned");

    auto listed = NqCoordinatedJointEndEffector::defaultJointControlEndEffector(robot, 1.0);
    listed.setLinkLabels({listed.linkLabels()[5]});
    loop.addEndEffector("listed", listed);
    loop.setTarget("listed", NqControlTarget::values(loop.positions()));
    EXPECT_EQ(loop.errors()[2], 0.0) << "of the listed joint among all";

    EXPECT_FALSE(loop.setTarget("middle", NqControlTarget::place(inLeft)));
    EXPECT_FALSE(loop.setTarget("left", NqControlTarget::number(1.0)));
    EXPECT_FALSE(loop.setTarget("left", NqControlTarget::place({0.0, std::nan(""), 0.0})));
    EXPECT_FALSE(loop.setTarget("left", NqControlTarget::place(inLeft).withVelocity({1.0})));
    EXPECT_FALSE(loop.setTarget(2, NqControlTarget::place(inLeft))) << "there are two";
    EXPECT_FALSE(loop.setTarget(1, NqEndEffectorPlacement(NqVector(std::nan(""), 0.0, 0.0))));
    EXPECT_FALSE(loop.setTarget(2, NqEndEffectorPlacement(inLeft))) << "it takes values";
    EXPECT_EQ(messages.lines().size(), 8u);
    NqEndEffectorVector more;
    more.pushBack(nqOn("left"));
    loop.addEndEffectors(more);
    EXPECT_LT(loop.find("left 2"), loop.endEffectors());
    loop.removeEndEffector("left 2");
    NqControlLoopSettings settings;
    settings.setIsBaseFixed(false);
    loop.setSettings(settings);
    EXPECT_TRUE(loop.step()) << "one link moves against the other as before";

    const double time = loop.time();
    loop.setSettings(nqSettingsOf(std::nan("")));
    loop.setSettings(nqSettingsOf(0.02));
    EXPECT_EQ(loop.time(), time) << "longer steps don't change those that were made";
}

TEST(NqControlLoop, GoesOnWithoutAnEndEffector) {
    const NqIndividualManipulator robot = nqTestManipulator("twin9");
    NqControlLoop loop(robot);
    loop.addEndEffector("left", nqOn("left_tip"));
    loop.addEndEffector("right", nqOn("right_tip"));
    const std::vector<double> start = {0.0, 0.4, 0.8, -1.3, 0.4, 0.1, 0.2, -0.8, 0.9};
    loop.setPositions(start);
    const NqVector target = loop.placements()[1].translation() + NqVector(0.1, 0.0, 0.1);
    loop.setTarget("right", NqControlTarget::place(target));
    ASSERT_TRUE(nqMakesSteps(loop, 60));
    const double speed = loop.speeds()[1];
    EXPECT_TRUE(loop.removeEndEffector("left"));
    EXPECT_EQ(loop.speeds()[0], speed);
    loop.addEndEffector("also", nqOn("right_tip"));
    EXPECT_NEAR(loop.speeds()[1], speed, 0.01) << "it moves already";
    loop.removeEndEffector("also");
    ASSERT_TRUE(loop.step());
    EXPECT_EQ(loop.jacobian().rows(), 3u);
    EXPECT_GT(loop.speeds()[0], speed);
    ASSERT_TRUE(reaches(loop, 5.0));
    EXPECT_LT((loop.placements()[0].translation() - target).mag(), 1.1e-4);

    const NqPrintCapture messages;
    EXPECT_FALSE(loop.removeEndEffector("left"));
    ASSERT_TRUE(loop.goTo(start));
    ASSERT_TRUE(loop.step());
    EXPECT_EQ(loop.status().kind, NqControlLoopStatus::Running) << "it is still far from there";
    ASSERT_TRUE(nqMakesSteps(loop, 5000));
    EXPECT_EQ(loop.status().kind, NqControlLoopStatus::Reached);
    std::vector<double> other = start;
    other[1] += 0.3;
    ASSERT_TRUE(loop.goTo(other));
    ASSERT_TRUE(loop.step());
    NqControlLoopSettings settings = loop.settings();
    NqControlLoopSettings::Labels held;
    held.pushBack(NqXmlBasicType<std::string>(robot.linkByIndex(1)->joint().name()));
    settings.setHeldJoints(held);
    loop.setSettings(settings);
    ASSERT_TRUE(nqMakesSteps(loop, 5000));
    EXPECT_TRUE(loop.status().isStuck()) << "a joint on the way can't move any more";
    EXPECT_EQ(loop.status().joints.at(0).joint, 1u);
    EXPECT_FALSE(loop.goTo(other));
    EXPECT_EQ(messages.lines().size(), 2u);
}

/// The target moves along at constant velocity: with feed-forward the point keeps up with it.
TEST(NqControlLoop, FollowsATargetThatMoves) {
    NqArm7Loop arm((NqControlLoopSettings()));
    NqControlLoop& loop = arm.loop;
    const NqVector start = loop.placements()[0].translation(), velocity(0.0, 0.1, 0.0);
    for (int i = 0; i < 2000; ++i) {
        loop.setTarget("hand", NqControlTarget::place(start + loop.time() * velocity)
                                   .withVelocity({velocity.x(), velocity.y(), velocity.z()}));
        ASSERT_TRUE(loop.step());
    }
    EXPECT_LT((loop.placements()[0].translation() - start - loop.time() * velocity).mag(), 1.0e-3);
}

/// A free base takes part with six unknowns of its own, and the loop integrates its pose: a turn of the base
/// alone is the one that its rates say.
TEST(NqControlLoop, MovesAFreeBase) {
    NqControlLoopSettings settings;
    settings.setIsBaseFixed(false);
    settings.setJointWeights(NqXmlRealVector(7, 1.0e6));
    NqArm7Loop arm(settings);
    NqControlLoop& loop = arm.loop;
    const NqVector target = loop.placements()[0].translation() + NqVector(0.3, 0.6, 0.2);
    ASSERT_TRUE(loop.setTarget("hand", NqControlTarget::place(target)));
    ASSERT_TRUE(reaches(loop, 5.0));
    NqManipulatorActivePositionState& at = loop.state().activePositionState();
    EXPECT_LT((arm.robot.linkByLabel("hand")->primaryFrameInSystem(at).translation() - target).mag(), 1.1e-4);
    EXPECT_GT(arm.robot.baseFrameInSystem(at).translation().mag(), 0.1);
    EXPECT_NEAR(loop.positions()[1], 0.3, 1.0e-2) << "the joints are heavy";

    const NqPrintCapture messages;
    loop.addEndEffector("far", nqOn("link1"), false);
    for (const double far : {1.0e170, 1.0e308}) {
        loop.setTarget("far", NqControlTarget::place(NqVector(far, 0.0, 0.0)));
        EXPECT_FALSE(loop.step());
        EXPECT_TRUE(std::isfinite(loop.rates()[7])) << "of the base";
    }
    loop.removeEndEffector("far");

    loop.setTarget("hand", NqControlTarget::place(target + NqVector(0.1, 0.0, 0.0)));
    ASSERT_TRUE(nqMakesSteps(loop, 50));
    settings.setIsBaseFixed(true);
    loop.setSettings(settings);
    ASSERT_TRUE(loop.step());
    NqXmlRealVector velocity;
    loop.endEffector(0).calculateVelocity(arm.robot, loop.state(), velocity, 0);
    EXPECT_NEAR(velocity[0], loop.speeds()[0], 1.0e-2) << "of the joints alone";
}

} // namespace
