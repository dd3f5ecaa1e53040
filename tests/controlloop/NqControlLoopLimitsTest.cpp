#include "controlloop/NqControlLoopTesting.h"
#include "support/NqStepCheck.h"

#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/endeffector/NqLinearConstraintEndEffector.h>
#include <nqControlCore/endeffector/NqOrientationEndEffector.h>
#include <nqControlLoop/NqPostureSearch.h>

namespace {

using Status = NqControlLoopStatus;

std::vector<double> randomPosture(const NqIndividualManipulator& robot, std::mt19937_64& random) {
    std::vector<double> posture;
    for (unsigned j = 0; j < robot.numberOfJoints(); ++j) {
        const NqJointDescription& joint = robot.linkByIndex(j)->joint();
        posture.push_back(nqDrawn(random, std::max(joint.lowerPositionLimit(), -3.0),
                                  std::min(joint.upperPositionLimit(), 3.0)));
    }
    return posture;
}

struct RobotCase {
    const char* name;
    const char* link;
    bool isFrame;
};

class NqControlLoopOnRobots : public testing::TestWithParam<RobotCase> {};

/// From random postures to random targets, most of them out of reach or behind limits: every step keeps the
/// limits of position, rate and acceleration, no rate flips, and in the end the arm stands still or is there.
TEST_P(NqControlLoopOnRobots, KeepAllLimitsAndComeToRest) {
    const NqIndividualManipulator robot = nqTestManipulator(GetParam().name);
    std::mt19937_64 random(21);
    unsigned reached = 0;
    for (unsigned trial = 0; trial < 12; ++trial) {
        NqControlLoop loop(robot, nqSettingsOf(0.002));
        const bool isFrame = GetParam().isFrame;
        const auto frame = nqOn<NqFrameEndEffector>(GetParam().link);
        const auto point = nqOn<NqPointEndEffector>(GetParam().link);
        loop.addEndEffector("hand", isFrame ? static_cast<const NqEndEffector&>(frame) : point);
        loop.setPositions(randomPosture(robot, random));
        NqCoordinateSystemTransformation target = nqRandomFrame(random);
        target.setTranslation(0.7 * target.translation());
        ASSERT_TRUE(loop.setTarget("hand", isFrame ? NqControlTarget::frame(target)
                                                   : NqControlTarget::place(target.translation())));
        double fastest = 0.0;
        for (unsigned i = 0; i < 6000; ++i) {
            const std::vector<double> positions = loop.positions(), last = loop.rates();
            ASSERT_TRUE(loop.step());
            ASSERT_EQ(nqFaultOf(loop, true, positions, last, 1.0e-12), "") << trial;
            fastest = i < 5900 ? 0.0 : fastest;
            for (unsigned j = 0; j < last.size(); ++j) {
                const double rate = loop.rates()[j];
                ASSERT_FALSE(rate * last[j] < 0.0 && std::min(std::abs(rate), std::abs(last[j])) > 0.05)
                    << trial;
                fastest = std::max(fastest, std::abs(rate));
            }
        }
        EXPECT_LT(fastest, 0.01) << trial << ": at rest after 12 s";
        reached += loop.status().kind == Status::Reached;
        EXPECT_TRUE(loop.status().kind == Status::Reached || loop.status().isStuck()) << loop.status().kind;
    }
    EXPECT_GE(reached, 1u);
}

INSTANTIATE_TEST_SUITE_P(Robots, NqControlLoopOnRobots,
                         testing::Values(RobotCase{"arm6", "flange", true}, RobotCase{"arm7", "hand", false},
                                         RobotCase{"arm7", "hand", true},
                                         RobotCase{"twin9", "left_tip", false}),
                         [](const auto& robot) {
                             return std::string(robot.param.name) + (robot.param.isFrame ? "Frame" : "Point");
                         });

/// Runs towards a place of arm7's hand until nothing moves.
Status ofArm7(const NqVector& target, const NqControlLoopSettings& settings = nqSettingsOf(0.002)) {
    NqArm7Loop arm(settings);
    arm.loop.setTarget("hand", NqControlTarget::place(target));
    nqMakesSteps(arm.loop, 4000);
    return arm.loop.status();
}

TEST(NqControlLoopStatus, NamesTheCause) {
    EXPECT_EQ(ofArm7({0.5, 0.1, 0.5}).kind, Status::Reached);

    const Status far = ofArm7({1.0, 0.0, 0.5});
    EXPECT_EQ(far.kind, Status::OutOfReach);
    EXPECT_NEAR(far.distance, 0.066, 1.0e-3);
    EXPECT_GT(std::abs(far.direction.unitVector().x()), 0.9) << "away from the shoulder";

    NqControlLoopSettings settings = nqSettingsOf(0.002);
    NqControlLoopSettings::Labels labels;
    for (const char* name : {"joint2", "joint3", "joint4", "joint6"}) {
        labels.pushBack(NqXmlBasicType<std::string>(name));
    }
    settings.setHeldJoints(labels);
    const Status held = ofArm7({0.4, 0.1, 0.6}, settings);
    EXPECT_TRUE(held.isStuck());
    ASSERT_FALSE(held.joints.empty());
    EXPECT_EQ(held.joints[0].cause, NqJointBounds::Cause::Rate);

    // Stretched out, with the target straight inwards: what moves the point is of second order.
    const NqIndividualManipulator planar = nqTestManipulator("planar3");
    NqControlLoop line(planar);
    line.addEndEffector("tip", nqOn("tip"));
    line.setPositions({0.0, 0.0, 0.0});
    line.setTarget("tip",
                   NqControlTarget::place(line.placements()[0].translation() - NqVector(0.3, 0.0, 0.0)));
    ASSERT_TRUE(line.step());
    EXPECT_FALSE(line.status().isStuck()) << "it might be about to begin";
    ASSERT_TRUE(nqMakesSteps(line, 100));
    EXPECT_TRUE(line.status().isStuck());
    EXPECT_EQ(line.status().kind, Status::Singular);
    EXPECT_NEAR(std::abs(line.status().direction.x()), 1.0, 1.0e-9);
    EXPECT_LT(line.leastSingularValue(), 1.0e-12);
    line.setTarget("tip",
                   NqControlTarget::place(line.placements()[0].translation() + NqVector(0.3, 0.0, 0.0)));
    ASSERT_TRUE(nqMakesSteps(line, 100));
    EXPECT_EQ(line.status().kind, Status::OutOfReach) << "of the new target";

    // Nearly so, with joints that may not move: with them the little outwards would be a small turn.
    labels = {};
    for (const char* name : {"joint2", "joint3"}) {
        labels.pushBack(NqXmlBasicType<std::string>(name));
    }
    settings.setHeldJoints(labels);
    settings.setTolerance(1.0e-7);
    NqControlLoop stiff(planar, settings);
    stiff.addEndEffector("tip", nqOn("tip"));
    stiff.setPositions({0.0, 0.004, 0.004});
    stiff.setTarget("tip",
                    NqControlTarget::place(stiff.placements()[0].translation() + NqVector(1.0e-5, 0.0, 0.0)));
    ASSERT_TRUE(nqMakesSteps(stiff, 500));
    EXPECT_EQ(stiff.status().kind, Status::Held);

    NqArm7Loop arm;
    NqControlLoop& twice = arm.loop;
    twice.addEndEffector("other", nqOn("hand"));
    const NqVector here = twice.placements()[0].translation();
    twice.setTarget("hand", NqControlTarget::place(here + NqVector(0.0, 0.05, 0.0)));
    twice.setTarget("other", NqControlTarget::place(here - NqVector(0.0, 0.05, 0.0)));
    ASSERT_TRUE(nqMakesSteps(twice, 1000));
    EXPECT_EQ(twice.status().kind, Status::Contradictory);
    EXPECT_NE(twice.status().endEffector, twice.status().other);
    twice.setTarget("hand", NqControlTarget::place({1.0, 0.0, 0.5}));
    twice.setTarget("other", NqControlTarget::place({1.0, 0.0, 0.5}));
    ASSERT_TRUE(nqMakesSteps(twice, 4000));
    EXPECT_EQ(twice.status().kind, Status::OutOfReach) << "they agree";
    settings = nqSettingsOf(0.002);
    settings.setSingularityThreshold(0.0);
    settings.setBlocked(NqControlLoopSettings::Hold);
    twice.setSettings(settings);
    for (const char* name : {"hand", "other"}) {
        twice.setTarget(name, NqControlTarget::place({0.5, 0.1, 0.5}));
    }
    ASSERT_TRUE(nqMakesSteps(twice, 3000));
    EXPECT_EQ(twice.status().kind, Status::Reached) << "without damping";

    // Soft ones alone stop where they come no nearer, and not before.
    NqControlLoop soft(planar);
    for (const char* name : {"tip", "other"}) {
        NqPointEndEffector tip = nqOn("tip");
        tip.setIsHardConstraint(false);
        soft.addEndEffector(name, tip);
    }
    soft.setPositions({0.3, 0.8, 0.5});
    const NqVector start = soft.placements()[0].translation();
    for (const double apart : {0.0, 0.1}) {
        soft.setTarget("tip", NqControlTarget::place(start + NqVector(-0.1, 0.05, 0.0)));
        soft.setTarget("other", NqControlTarget::place(start + NqVector(-0.1 - apart, 0.05, 0.0)));
        do {
            ASSERT_TRUE(soft.step());
        } while (soft.status().kind != Status::Reached && !soft.status().isStuck() && soft.time() < 60.0);
        EXPECT_EQ(soft.status().kind, apart > 0.0 ? Status::OutOfReach : Status::Reached);
        EXPECT_NEAR(soft.status().distance, 0.5 * apart, 1.0e-3);
    }

    NqArm7Loop noisy;
    noisy.loop.setTarget("hand", NqControlTarget::place({1.0, 0.0, 0.5}));
    std::mt19937_64 random(3);
    std::vector<double> truth = noisy.loop.positions();
    unsigned stuck = 0;
    for (unsigned i = 0; i < 4000; ++i) {
        std::vector<double> measured = truth;
        for (double& position : measured) {
            position += nqDrawn(random, -1.0e-6, 1.0e-6);
        }
        noisy.loop.setState(NqPositionState(measured), NqVelocityState(noisy.loop.rates()));
        ASSERT_TRUE(noisy.loop.step());
        for (unsigned j = 0; j < 7; ++j) {
            truth[j] += 0.002 * noisy.loop.rates()[j];
        }
        stuck += i >= 3000 && noisy.loop.status().isStuck() ? 1 : 0;
    }
    EXPECT_GT(stuck, 100u) << "though what is measured trembles";
}

/// Where limits block the way, holding stays on it and sliding comes nearer.
TEST(NqControlLoop, HoldsOrSlides) {
    const NqIndividualManipulator robot = nqTestManipulator("planar3");
    Status statuses[2];
    double aside[2];
    for (const auto blocked : {NqControlLoopSettings::Hold, NqControlLoopSettings::Slide}) {
        NqControlLoopSettings settings = nqSettingsOf(0.002);
        settings.setBlocked(blocked);
        NqControlLoop loop(robot, settings);
        loop.addEndEffector("tip", nqOn("tip"));
        loop.setPositions({2.6, 0.1, 0.0});
        const NqVector start = loop.placements()[0].translation();
        const NqVector target(-0.94, -0.342, 0.0);
        loop.setTarget("tip", NqControlTarget::place(target));
        ASSERT_TRUE(nqMakesSteps(loop, 4000));
        statuses[blocked] = loop.status();
        aside[blocked] =
            (loop.placements()[0].translation() - start).cross((target - start).unitVector()).mag();
    }
    for (const Status& status : statuses) {
        ASSERT_TRUE(status.kind == Status::Held && !status.joints.empty());
        EXPECT_TRUE(status.joints[0].joint == 0u && status.joints[0].cause == NqJointBounds::Cause::Range);
    }
    NqControlLoopSettings settings = nqSettingsOf(0.002);
    settings.setBlocked(NqControlLoopSettings::Hold);
    NqControlLoopSettings::Labels labels;
    for (const char* name : {"joint2", "joint3", "joint4", "joint6"}) {
        labels.pushBack(NqXmlBasicType<std::string>(name));
    }
    settings.setHeldJoints(labels);
    NqArm7Loop arm(settings);
    arm.loop.setTarget("hand", NqControlTarget::place({0.4, 0.1, 0.6}));
    ASSERT_TRUE(nqMakesSteps(arm.loop, 1000));
    settings.setHeldJoints({});
    arm.loop.setSettings(settings);
    ASSERT_TRUE(nqMakesSteps(arm.loop, 3000));
    EXPECT_EQ(arm.loop.status().kind, Status::Reached) << "nothing holds it any more";
    EXPECT_LT(aside[NqControlLoopSettings::Hold], 0.01);
    EXPECT_LT(statuses[NqControlLoopSettings::Slide].distance,
              statuses[NqControlLoopSettings::Hold].distance - 0.01);
}

/// An arm that limits keep from a target finds a posture that reaches it, goes there and is there.
TEST(NqPostureSearch, FindsAWayAroundLimits) {
    const NqIndividualManipulator robot = nqTestManipulator("arm6");
    std::mt19937_64 random(5);
    unsigned found = 0;
    for (unsigned trial = 0; trial < 30 && found < 3; ++trial) {
        NqControlLoop loop(robot, nqSettingsOf(0.002));
        loop.addEndEffector("hand", nqOn<NqFrameEndEffector>("flange"));
        loop.setPositions(randomPosture(robot, random));
        const NqCoordinateSystemTransformation target = loop.placements()[0];
        loop.setPositions(randomPosture(robot, random));
        loop.setTarget("hand", NqControlTarget::frame(target));
        ASSERT_TRUE(nqMakesSteps(loop, 3000));
        if (loop.status().kind == Status::Reached) {
            continue;
        }
        std::vector<double> posture;
        ASSERT_TRUE(NqPostureSearch(loop).find(posture)) << trial;
        ++found;
        ASSERT_TRUE(loop.goTo(posture));
        for (unsigned i = 0; i < 5000 && loop.leftToGo() > 0.02; ++i) {
            ASSERT_TRUE(loop.step());
        }
        loop.follow();
        ASSERT_TRUE(nqMakesSteps(loop, 1000));
        EXPECT_EQ(loop.status().kind, Status::Reached) << trial;
    }
    EXPECT_EQ(found, 3u);

    NqControlLoopSettings settings;
    NqControlLoopSettings::Labels held;
    held.pushBack(NqXmlBasicType<std::string>("joint3"));
    settings.setHeldJoints(held);
    settings.setIsBaseFixed(false);
    settings.setPostureGain(20.0);
    NqArm7Loop arm(settings);
    NqPositionState elsewhere{NqXmlRealVector(arm.loop.positions())};
    elsewhere.setJointPosition(2, arm.loop.limits()[2].upper + 1.0e-6); // as measured
    elsewhere.setBaseFrame(NqVector(3.0, 0.0, 0.0));
    arm.loop.setState(elsewhere, NqVelocityState(7));
    EXPECT_EQ(arm.loop.largestError(), 0.0) << "no step and no target yet";
    const NqVector target(3.3, 0.4, 0.5);
    arm.loop.setTarget("hand", NqControlTarget::place(target));
    std::vector<double> posture;
    ASSERT_TRUE(NqPostureSearch(arm.loop).find(posture));
    EXPECT_EQ(posture[2], arm.loop.limits()[2].upper) << "a joint that is held stays";
    EXPECT_TRUE(arm.loop.goTo(posture));
    ASSERT_TRUE(nqMakesSteps(arm.loop, 3000));
    EXPECT_LT((arm.loop.placements()[0].translation() - target).mag(), 2.0e-4) << "from where the base is";
}

TEST(NqPostureSearch, KeepsTurnsThatAreAskedFor) {
    NqIndividualManipulator robot("robot", "base");
    robot.addLink("base", "wheel", NqJointDescription(NqJointDescription::Revolute, "axle"), {});
    NqControlLoop loop(robot);
    NqLinearConstraintEndEffector axle;
    axle.setLinkLabels({NqXmlBasicType<std::string>("wheel")});
    axle.setLinkWeights({1.0});
    loop.addEndEffector("axle", axle);
    loop.setTarget("axle", NqControlTarget::number(6.0));
    std::vector<double> posture;
    ASSERT_TRUE(NqPostureSearch(loop).find(posture));
    EXPECT_NEAR(posture[0], 6.0, 1.0e-4);
}

TEST(NqControlLoopCheck, ListsAllThatIsWrongAtOnce) {
    NqIndividualManipulator robot("robot", "base");
    NqJointDescription joint(NqJointDescription::Revolute, "wrist");
    joint.setRateLimit(-1.0);
    joint.setPositionLimits(1.0, -1.0);
    robot.addLink("base", "hand", joint, NqCoordinateSystemTransformation());
    NqControlLoopSettings settings;
    settings.setTimeStep(std::nan(""));
    settings.setJointWeights(NqXmlRealVector{0.0, 1.0});
    settings.setIsBaseFixed(false);
    auto lost = nqOn("hnad");
    lost.setMotionThreshold(0.0);
    const NqPrintCapture messages;
    NqControlLoop loop(robot, settings);
    loop.addEndEffector("tip", lost);
    loop.addEndEffector("turn", nqOn<NqOrientationEndEffector>("hand"));
    loop.addEndEffector("more", nqOn<NqFrameEndEffector>("hand"));
    loop.addEndEffector("loose", nqOn(""));
    std::string all;
    for (const NqControlLoopCheck::Issue& issue : loop.validate()) {
        all += issue.text + "\n";
    }
    for (const char* words : {"15 coordinates", "'loose' has no link", "joint 'wrist' has a rate limit of -1",
                              "range from 1 to -1", "time step is NaN", "joint weights has 2 entries for 1",
                              "the nearest is 'hand'", "limit that isn't above 0",
                              "'turn' can't be used with a free base", "no target"}) {
        EXPECT_NE(all.find(words), std::string::npos) << words << " in\n" << all;
    }
    EXPECT_FALSE(loop.step());
    EXPECT_EQ(loop.status().kind, Status::BadInput);
    loop.setState(NqPositionState(1), NqVelocityState(1));
    const std::size_t lines = messages.lines().size();
    EXPECT_FALSE(loop.step());
    EXPECT_EQ(messages.lines().size(), lines) << "said once";
}

} // namespace
