#include "endeffector/NqEndEffectorTest.h"

#include <nqControlCore/core/NqControlParameters.h>

namespace {

struct NqCoordinatedJoints : NqEndEffectorTest {
    explicit NqCoordinatedJoints(std::size_t model = 2)
        : NqEndEffectorTest(nqTestModels()[model].manipulator) {}

    static Placement at(const Reals& joints) {
        Placement placement;
        placement.setDataVector(joints);
        return placement;
    }
    Reals towards(const Placement& target, const Reals& previous, const Reals& desired = {},
                  double timeStep = 1e-3) {
        return filtered(joints, target, desired, previous, timeStep, Reals(9, 7.0));
    }

    NqCoordinatedJointEndEffector joints;
};

TEST_F(NqCoordinatedJoints, TargetsAreOfTheListedJointsOrOfAll) {
    const Reals all = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7};
    joints.setLinkLabels(
        {std::string("link6"), std::string("nowhere"), std::string("base"), std::string("link2")});
    joints.setMaxVelocities({0.5, 9.0, 9.0, 0.25});
    NqPrintCapture capture;
    EXPECT_EQ(error(joints, at(all)), Reals({0.6, 0.2}));
    EXPECT_EQ(error(joints, at({1.0, 2.0})), Reals({1.0, 2.0}));
    EXPECT_EQ(error(joints, at({1.0})), Reals(2));
    EXPECT_EQ(towards(at({1.0}), {0.1, 0.1}), Reals(2));
    EXPECT_EQ(error(joints, at({8.0, 9.0, 3.0})), Reals({1.0, 9.0})) << "the sixth is missing, and stays";
    NqReArray expected(4, 7);
    expected[0][5] = expected[1][1] = 1.0;
    EXPECT_EQ(rows(joints), expected);
    EXPECT_EQ(limited(joints, {9.0, 9.0}, {0.5, 0.25}, 1.0), Reals({0.5, 0.25})) << "limits belong to labels";
    EXPECT_EQ(joints.difference(at({1.0, -1.0}), at({0.0, 1.0})), 3.0);
    EXPECT_EQ(joints.difference(at({1.0}), at({0.0, 1.0})), 1000.0);
    EXPECT_EQ(capture.text(), "");

    const NqIndividualManipulator other("other", "root");
    NqReArray j;
    joints.insertJacobianComponent(other, 0, {}, true, state, j);
    EXPECT_TRUE(capture.contains("NqCoordinatedJointEndEffector::insertJacobianComponent(): Indices out of "
                                 "range: row 0 and column 5\n"));
}

TEST_F(NqCoordinatedJoints, DefaultsComeFromTheRateLimits) {
    NqIndividualManipulator robot("robot", "base");
    NqJointDescription joint(NqJointDescription::Revolute, "wrist");
    joint.setRateLimit(999.0);
    robot.addLink("base", "hand", joint, {});
    joint.setRateLimit(1000.0); // as good as none
    robot.addLink("hand", "finger", joint, {});
    const auto all = NqCoordinatedJointEndEffector::defaultJointControlEndEffector(robot, 0.5);
    EXPECT_EQ(all.maxVelocities(), Reals({499.5, 0.5}));
    EXPECT_EQ(all.profileAccelerations(), Reals({999.0, 1.0}));
}

TEST_F(NqCoordinatedJoints, ControlParametersLimitByJointIndex) {
    NqControlParameters parameters;
    parameters.setVelocityLimits({0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7});
    parameters.setAccelerationLimits(Reals(7, 2.0));
    joints.setLinkLabels({std::string("link6"), std::string("link2")});
    const auto limits = [&] {
        joints.initializeWithControlParams(manipulator, parameters);
        rows(joints);
        return limited(joints, {9.0, 9.0}, {}, 100.0);
    };
    EXPECT_EQ(limits(), Reals({1.0, 1.0})) << "not asked for";
    joints.setUseControlParameters(true);
    EXPECT_EQ(limits(), Reals({0.6, 0.2}));
    joints.setSpeedFactor(0.5);
    EXPECT_EQ(limits(), Reals({0.3, 0.1})) << "the same parameters change nothing";
    parameters.setVelocityLimits({0.1, 0.3});
    joints.setDefaultMaxVelocity(0.8);
    EXPECT_EQ(limits(), Reals({0.8, 0.3})) << "filters anew, the missing limit by default";
}

/// Two joints with limits of speed 1 and of acceleration 4.
struct NqTwoCoordinatedJoints : NqCoordinatedJoints {
    NqTwoCoordinatedJoints() : NqCoordinatedJoints(0) {
        joints.setLinkLabels({std::string("upper"), std::string("lower")});
        joints.setProfileAccelerations({4.0, 4.0});
    }
};

TEST_F(NqTwoCoordinatedJoints, SpeedsAreFoundOncePerTarget) {
    EXPECT_EQ(joints.minimumTime(at({0.0}), at({1.0})), 0.0) << "before the first use";
    // The far joint needs T = 2 / 1 + 1 / 4; for the near one c^2 - 4 T c + 4 = 0.
    const double near = 0.5 * (9.0 - std::sqrt(81.0 - 16.0));
    const auto limits = [&](double second) { return towards(at({2.0, second}), {1.0, near}); };
    towards(at({2.0, 1.0}), {});
    EXPECT_EQ(limits(1.0)[0], 1.0) << "the slowest keeps its limit";
    EXPECT_NEAR(limits(1.0)[1], near, 1e-14);
    EXPECT_EQ(joints.minimumTime(at({0.0, 0.0}), at({2.0, 1.0})), 2.25);
    setJoints({1.98, 0.0});
    EXPECT_NEAR(towards(at({2.0, 1.0}), {0.4, 0.0})[0], 0.4, 1e-14) << "the square root of 2 x 4 x 0.02";
    setJoints({1.0, 0.25});
    EXPECT_NEAR(limits(1.0 + 5e-10)[1], near, 1e-14) << "the same target";
    EXPECT_GT(limits(1.0 + 1e-8)[1], near + 0.001) << "another one, of which the near joint has more left";
    EXPECT_EQ(limited(joints, {5.0, 5.0}, {1.0, 1.0}, 1e-3), Reals({1.0, 1.0}))
        << "without a target, its own";
    EXPECT_NEAR(limits(1.0 + 1e-8)[1], near + 4e-3, 1e-14) << "until the next target";

    setJoints({0.0, 1.0});
    towards(at({2.0, 1.0}), {});
    EXPECT_EQ(towards(at({2.0, 1.0}), {0.0, 0.5}, {0.0, 0.5})[1], 0.0) << "nothing to go, no speed";

    // Already on the way T = 2 + 1 / 8, and c^2 - (4 T + 0.25) c + 4 + 0.25^2 / 2 = 0.
    const double moving = 0.5 * (8.75 - std::sqrt(8.75 * 8.75 - 4.0 * (4.0 + 0.03125)));
    setJoints({0.0, 0.0});
    towards(at({-2.0, -1.0}), {-1.0, -0.25});
    EXPECT_NEAR(towards(at({-2.0, -1.0}), {-1.0, -moving})[1], -moving, 1e-14);

    // Of equal times the first is the slowest: it keeps its limit, the other one gets what it just reaches.
    joints.setMaxVelocities({9.0, 9.0});
    setJoints({0.0, 0.0});
    towards(at({1.0, 1.0}), {});
    const Reals equal = towards(at({1.0, 1.0}), {std::sqrt(8.0), 2.0});
    EXPECT_NEAR(equal[0], std::sqrt(8.0), 1e-14);
    EXPECT_EQ(equal[1], 2.0);

    // The second one is slower, by the root of 0.2, and c^2 - 4 T c + 0.4 = 0 for the first.
    const double slower = 0.5 * (std::sqrt(3.2) - std::sqrt(1.6));
    towards(at({0.1, 0.2}), {});
    EXPECT_NEAR(towards(at({0.1, 0.2}), {slower, 1.0})[0], slower, 1e-14);
}

TEST_F(NqTwoCoordinatedJoints, SpeedFactorAndJointsBelongToTheFilters) {
    joints.setSpeedFactor(0.5);
    EXPECT_EQ(joints.speedFactor(), 1.0) << "there are no filters yet";
    rows(joints);
    joints.setSpeedFactor(0.5);
    towards(at({2.0, 1.0}), {});
    const double near =
        0.5 * (8.5 - std::sqrt(8.5 * 8.5 - 8.0)); // T = 2 / 0.5 + 0.5 / 2, c^2 - 2 T c + 2 = 0
    const Reals v = towards(at({2.0, 1.0}), {0.5, near});
    EXPECT_EQ(v[0], 0.5);
    EXPECT_NEAR(v[1], near, 1e-14);
    joints.setSpeedFactor(0.0);
    EXPECT_EQ(towards(at({2.0, 1.5}), {}), Reals(2)) << "no division by it";
    joints.setFilteringActive(false);
    EXPECT_EQ(towards(at({2.0, 1.5}), {}, {}, 0.5), Reals({4.0, 3.0}));

    const NqCoordinatedJointEndEffector copy = joints;
    EXPECT_EQ(copy.speedFactor(), 1.0) << "a copy begins without joints";
    joints = NqCoordinatedJointEndEffector();
    EXPECT_EQ(joints.speedFactor(), 0.0) << "an assigned object keeps those that it has";
    EXPECT_EQ(velocity(joints).size(), 2U);
    NqPrintCapture capture;
    EXPECT_EQ(rows(joints).rows(), 0U) << "but writes no rows that aren't its own";
    EXPECT_TRUE(capture.contains("Indices out of range: row 1 and column 1\n"));
    NqReArray others(2, 2);
    joints.insertJacobianComponent(manipulator, 0, {}, true, state, others);
    EXPECT_EQ(others, NqReArray(2, 2));
}

/// The hand of the planar arm as the master of the upper arm, at 0.4 and 0.7.
struct NqGripper : NqEndEffectorTest {
    NqGripper() : NqEndEffectorTest(nqTestModels()[0].manipulator) {
        setJoints({0.4, 0.7}, {2.0, -1.0});
        gripper.setLinkIdentifier("hand");
        gripper.setSlaveJointLabels({std::string("upper")});
    }

    NqOneDofGripperEndEffector gripper;
};

TEST_F(NqGripper, SlavesFollowInTheirRatios) {
    gripper.setSlaveJointWeights({-2.0});
    std::vector<double> product;
    ASSERT_TRUE(rows(gripper).transform({-2.0 * 0.3, 0.3}, product));
    EXPECT_EQ(product, std::vector<double>({0.3, 0.0})) << "the slave at -2 times the master's rate";
    EXPECT_EQ(velocity(gripper), Reals({-1.0, 0.0})) << "whatever the slave does";
    EXPECT_NEAR(error(gripper, at(0.5))[0], 0.2, 1e-15);

    gripper.setSlaveJointLabels({std::string("upper"), std::string("upper")});
    EXPECT_EQ(rows(gripper)[2], std::vector<double>({-1.0, 1.0})) << "without a weight of its own";
    gripper.setSlaveJointWeights({0.0});
    EXPECT_EQ(rows(gripper)[1], std::vector<double>({0.0, 0.0}));
    EXPECT_EQ(bits(gripper)[1], std::vector<bool>({true, true}));

    EXPECT_EQ(acceleration(gripper, Reals(8, 7.0), 1), Reals({7.0, 0.0})) << "of the master alone";
    EXPECT_EQ(filtered(gripper, at(0.5), {}, {}, 0.1), Reals({-1.0, 0.0, 0.0}));
    EXPECT_EQ(limited(gripper, {9.0, 9.0}, {1.0}), Reals({1.0, 0.0, 0.0}));
}

TEST_F(NqGripper, SlavesPileUpWhileTheMasterIsLost) {
    NqPrintCapture capture;
    gripper.setLinkIdentifier("base");
    const Placement before(NqVector(1.0, 2.0, 3.0));
    EXPECT_EQ(placement(gripper, before), before);
    EXPECT_EQ(filtered(gripper, at(0.5), {}, {0.5}), Reals(2)) << "no feed-forward either";
    gripper.setLinkIdentifier("hand");
    EXPECT_EQ(velocity(gripper).size(), 1U + 3U) << "once for each evaluation";
    EXPECT_EQ(capture.text(), "");
    EXPECT_EQ(rows(gripper).rows(), 2U);
    EXPECT_TRUE(capture.contains("Indices out of range: row 2 and column 0\n")) << "no rows for them";
    NqReArray stacked(4, 2);
    gripper.insertJacobianComponent(manipulator, 0, {}, true, state, stacked);
    EXPECT_EQ(stacked[2], std::vector<double>(2)) << "nor those of others";
    gripper.setLinkIdentifier("base");
    EXPECT_EQ(velocity(gripper)[0], -1.0) << "the master is remembered";
    gripper = NqOneDofGripperEndEffector(gripper);
    EXPECT_EQ(velocity(gripper), Reals(2)) << "but not by a copy";
}

} // namespace
