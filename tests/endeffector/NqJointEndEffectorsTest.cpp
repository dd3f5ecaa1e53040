#include "support/NqPrintCapture.h"
#include "support/NqTestModels.h"

#include <nqControlCore/core/NqControlParameters.h>
#include <nqControlCore/endeffector/special/NqCoordinatedJointEndEffector.h>
#include <nqControlCore/endeffector/special/NqOneDofGripperEndEffector.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

/// A model with its joints where they are put.
class Robot {
public:
    explicit Robot(std::size_t model) : manipulator(*nqTestModels()[model].manipulator), state(manipulator) {}

    const NqXmlRealVector& positions() const { return state.positionState().jointPositions(); }
    void place(const NqXmlRealVector& positions) { state.setPositionState(NqPositionState(positions)); }

    NqReArray rows(const NqEndEffector& endEffector) {
        NqReArray j;
        endEffector.insertJacobianComponent(manipulator, 0, {}, true, state, j);
        return j;
    }
    NqXmlRealVector velocity(const NqEndEffector& endEffector) {
        NqXmlRealVector v;
        endEffector.calculateVelocity(manipulator, state, v, 0);
        return v;
    }
    NqXmlRealVector error(const NqEndEffector& endEffector, const NqEndEffectorPlacement& target) {
        NqXmlRealVector error;
        endEffector.calculateEndEffectorError(manipulator, target, state, error);
        return error;
    }
    NqXmlRealVector filtered(const NqEndEffector& endEffector, const NqEndEffectorPlacement& target,
                             const NqXmlRealVector& previous, double timeStep = 1e-3) {
        NqXmlRealVector filtered(9, 7.0);
        endEffector.filterEndEffectorVelocity(manipulator, target, {}, previous, timeStep, state, filtered);
        return filtered;
    }

    const NqIndividualManipulator& manipulator;
    NqManipulatorActiveState state;
};

NqEndEffectorPlacement jointsAt(const NqXmlRealVector& values) {
    NqEndEffectorPlacement placement;
    placement.setDataVector(values);
    return placement;
}

/// Two joints of the planar arm, with limits of speed 1 and of acceleration 4.
NqCoordinatedJointEndEffector twoJoints() {
    NqCoordinatedJointEndEffector joints;
    joints.setLinkLabels({std::string("upper"), std::string("lower")});
    joints.setProfileAccelerations({4.0, 4.0});
    return joints;
}

TEST(NqCoordinatedJoints, RandomMovesEndTogetherWithinTheLimits) {
    constexpr double timeStep = 1e-3;
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    Robot robot(2);
    const unsigned n = robot.manipulator.numberOfJoints();
    const auto drawn = [&](double middle, double width) {
        NqXmlRealVector values(n);
        std::generate(values.begin(), values.end(), [&] { return middle + width * uniform(random); });
        return values;
    };
    NqCoordinatedJointEndEffector joints =
        NqCoordinatedJointEndEffector::defaultJointControlEndEffector(robot.manipulator, 1.0);
    for (unsigned move = 0; move < 15; ++move) {
        const NqXmlRealVector speeds = drawn(1.0, 0.7);
        const NqXmlRealVector accelerations = drawn(3.0, 2.0);
        joints.setMaxVelocities(speeds);
        joints.setProfileAccelerations(accelerations);
        const NqEndEffectorPlacement target = jointsAt(drawn(0.0, 2.0));
        const NqXmlRealVector start = robot.positions();
        NqXmlRealVector v(n), fastest(n);
        std::vector<unsigned> arrival(n, 0);
        for (unsigned step = 1; std::count(arrival.begin(), arrival.end(), 0U) > 0 && step < 20000; ++step) {
            const NqXmlRealVector before = v;
            v = robot.filtered(joints, target, before, timeStep);
            NqXmlRealVector q = robot.positions();
            for (unsigned i = 0; i < n; ++i) {
                const double change = accelerations[i] * timeStep;
                fastest[i] = std::max(fastest[i], std::fabs(v[i]));
                ASSERT_TRUE(std::fabs(v[i] - before[i]) <= change * (1.0 + 1e-9) ||
                            std::fabs(v[i]) < 2.0 * change) // where the filter counts it as slow
                    << "joint " << i << ", move " << move << ", step " << step;
                q[i] += v[i] * timeStep;
                if (arrival[i] == 0 && std::fabs(q[i] - target.dataVector()[i]) < 1e-9) {
                    arrival[i] = step;
                }
            }
            robot.place(q);
        }
        // Braking in steps a filter ends at the speed sqrt(v a h), before or behind its target.
        const double time = joints.minimumTime(jointsAt(start), target);
        for (unsigned i = 0; i < n; ++i) {
            const double lost = 2.0 * std::sqrt(fastest[i] * timeStep / accelerations[i]) + 2.0 * timeStep;
            EXPECT_NEAR(arrival[i] * timeStep, time, lost) << "joint " << i << ", move " << move;
            EXPECT_LE(fastest[i], speeds[i] * (1.0 + 1e-12)) << "joint " << i << ", move " << move;
        }
    }
}

TEST(NqCoordinatedJoints, SpeedsAreFoundOncePerTarget) {
    Robot robot(0);
    robot.place({0.0, 0.0});
    NqCoordinatedJointEndEffector joints = twoJoints();
    EXPECT_EQ(joints.minimumTime(jointsAt({0.0, 0.0}), jointsAt({2.0, 1.0})), 0.0) << "before the first use";
    // The far joint needs 2 / 1 + 1 / 4; c of the near one solves c^2 - 4 * 2.25 c + 4 = 0.
    const double near = 0.5 * (9.0 - std::sqrt(81.0 - 16.0));
    const auto limits = [&](double second) {
        return robot.filtered(joints, jointsAt({2.0, second}), {1.0, near});
    };
    robot.filtered(joints, jointsAt({2.0, 1.0}), {0.0, 0.0});
    EXPECT_EQ(limits(1.0)[0], 1.0) << "the slowest keeps its limit";
    EXPECT_NEAR(limits(1.0)[1], near, 1e-14);
    EXPECT_EQ(joints.minimumTime(jointsAt({0.0, 0.0}), jointsAt({2.0, 1.0})), 2.25);

    robot.place({1.0, 0.25});
    EXPECT_NEAR(limits(1.0 + 5e-10)[1], near, 1e-14) << "the same target";
    EXPECT_GT(limits(1.0 + 1e-8)[1], near + 0.001) << "another one, of which the near joint has more left";

    // Without a target the limits are the joints' own again, until the next target.
    NqXmlRealVector plain;
    joints.filterEndEffectorVelocity({5.0, 5.0}, {1.0, 1.0}, 1e-3, plain);
    EXPECT_EQ(plain, NqXmlRealVector({1.0, 1.0}));
    EXPECT_EQ(robot.filtered(joints, jointsAt({2.0, 1.0 + 1e-8}), {1.0, 1.0}), NqXmlRealVector({1.0, 1.0}));

    // A joint without a way gets no speed at all.
    robot.place({0.0, 1.0});
    EXPECT_EQ(robot.filtered(joints, jointsAt({2.0, 1.0}), {0.0, 0.0})[1], 0.0);
    NqXmlRealVector fed;
    joints.filterEndEffectorVelocity(robot.manipulator, jointsAt({2.0, 1.0}), {0.0, 0.5}, {0.0, 0.5}, 1e-3,
                                     robot.state, fed);
    EXPECT_EQ(fed[1], 0.0) << "not even by feed-forward";

    // Of equal times the first is the slowest: it keeps its limit, and the other one gets one that it just
    // reaches.
    joints.setMaxVelocities({9.0, 9.0});
    robot.place({0.0, 0.0});
    robot.filtered(joints, jointsAt({1.0, 1.0}), {0.0, 0.0});
    const NqXmlRealVector equal = robot.filtered(joints, jointsAt({1.0, 1.0}), {std::sqrt(8.0), 2.0});
    EXPECT_NEAR(equal[0], std::sqrt(8.0), 1e-14);
    EXPECT_EQ(equal[1], 2.0);
}

TEST(NqCoordinatedJoints, SpeedFactorBelongsToTheFilters) {
    Robot robot(0);
    robot.place({0.0, 0.0});
    NqCoordinatedJointEndEffector joints = twoJoints();
    joints.setSpeedFactor(0.5);
    EXPECT_EQ(joints.speedFactor(), 1.0) << "there are no filters yet";
    robot.rows(joints);
    joints.setSpeedFactor(0.5);
    joints.setFilteringActive(false);
    EXPECT_EQ(joints.speedFactor(), 0.5);
    EXPECT_FALSE(joints.filteringActive());
    joints.setFilteringActive(true);

    // T = 2 / 0.5 + 0.5 / 2, and c^2 - 2 T c + 2 = 0.
    robot.filtered(joints, jointsAt({2.0, 1.0}), {0.0, 0.0});
    const double near = 0.5 * (8.5 - std::sqrt(8.5 * 8.5 - 8.0));
    const NqXmlRealVector v = robot.filtered(joints, jointsAt({2.0, 1.0}), {0.5, near});
    EXPECT_EQ(v[0], 0.5);
    EXPECT_NEAR(v[1], near, 1e-14);

    joints.setSpeedFactor(0.0);
    EXPECT_EQ(robot.filtered(joints, jointsAt({2.0, 1.5}), {0.0, 0.0}), NqXmlRealVector({0.0, 0.0}));
    joints.setMaxVelocities({});
    robot.rows(joints);
    EXPECT_EQ(joints.speedFactor(), 1.0);

    // A copy begins without joints; an assigned object keeps those that it has.
    const NqCoordinatedJointEndEffector copy = joints;
    EXPECT_GT(joints.minimumTime(jointsAt({0.0}), jointsAt({1.0})), 0.0);
    EXPECT_EQ(copy.minimumTime(jointsAt({0.0}), jointsAt({1.0})), 0.0);
    joints = NqCoordinatedJointEndEffector();
    EXPECT_EQ(robot.velocity(joints).size(), 2U);
    EXPECT_EQ(robot.rows(joints).rows(), 0U) << "but writes no rows that it hasn't got";
}

TEST(NqCoordinatedJoints, TargetsAreOfTheListedJointsOrOfAll) {
    Robot robot(2);
    const NqXmlRealVector all = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7};
    NqCoordinatedJointEndEffector joints;
    joints.setLinkLabels(
        {std::string("link6"), std::string("nowhere"), std::string("base"), std::string("link2")});
    joints.setMaxVelocities({0.5, 9.0, 9.0, 0.25});
    NqPrintCapture capture;
    EXPECT_EQ(robot.error(joints, jointsAt(all)), NqXmlRealVector({0.6, 0.2}));
    EXPECT_EQ(robot.error(joints, jointsAt({1.0, 2.0})), NqXmlRealVector({1.0, 2.0}));
    EXPECT_EQ(robot.error(joints, jointsAt({1.0})), NqXmlRealVector({0.0, 0.0}));
    EXPECT_EQ(robot.filtered(joints, jointsAt({1.0}), {0.1, 0.1}), NqXmlRealVector({0.0, 0.0}));
    EXPECT_EQ(robot.error(joints, jointsAt({8.0, 9.0, 3.0})), NqXmlRealVector({1.0, 9.0}))
        << "of the seven the sixth is missing";

    EXPECT_EQ(joints.doc(), 4U);
    NqReArray expected(4, 7);
    expected[0][5] = expected[1][1] = 1.0;
    EXPECT_EQ(robot.rows(joints), expected);
    NqXmlRealVector limits;
    joints.filterEndEffectorVelocity({9.0, 9.0}, {0.5, 0.25}, 1.0, limits);
    EXPECT_EQ(limits, NqXmlRealVector({0.5, 0.25})) << "limits belong to labels";
    EXPECT_EQ(joints.difference(jointsAt({1.0, -1.0}), jointsAt({0.0, 1.0})), 3.0);
    EXPECT_EQ(joints.difference(jointsAt({1.0}), jointsAt({0.0, 1.0})), 1000.0);
    EXPECT_EQ(capture.text(), "");

    const NqIndividualManipulator other("other", "root");
    NqManipulatorActiveState otherState(other);
    NqReArray j;
    joints.insertJacobianComponent(other, 0, {}, true, otherState, j);
    EXPECT_TRUE(capture.contains("NqCoordinatedJointEndEffector::insertJacobianComponent(): Indices out of "
                                 "range: row 0 and column 5\n"));
}

TEST(NqCoordinatedJoints, ControlParametersLimitByJointIndex) {
    Robot robot(2);
    NqControlParameters parameters;
    parameters.setVelocityLimits({0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7});
    parameters.setAccelerationLimits(NqXmlRealVector(7, 2.0));
    NqCoordinatedJointEndEffector joints;
    joints.setLinkLabels({std::string("link6"), std::string("link2")});
    const auto limits = [&] {
        joints.initializeWithControlParams(robot.manipulator, parameters);
        robot.rows(joints);
        NqXmlRealVector v;
        joints.filterEndEffectorVelocity({9.0, 9.0}, {}, 100.0, v);
        return v;
    };
    EXPECT_EQ(limits(), NqXmlRealVector({1.0, 1.0})) << "not asked for";
    joints.setUseControlParameters(true);
    EXPECT_EQ(limits(), NqXmlRealVector({0.6, 0.2}));
    joints.setSpeedFactor(0.5);
    EXPECT_EQ(limits(), NqXmlRealVector({0.3, 0.1})) << "the same parameters change nothing";
    parameters.setVelocityLimits({0.1, 0.3});
    joints.setDefaultMaxVelocity(0.8);
    EXPECT_EQ(limits(), NqXmlRealVector({0.8, 0.3})) << "filters anew, the missing limit by default";
}

/// The hand of the planar arm as the master of the upper arm, at 0.4 and 0.7.
class NqGripper : public testing::Test {
protected:
    NqGripper() {
        robot.state.setPositionState(NqPositionState(NqXmlRealVector{0.4, 0.7}));
        robot.state.setVelocityState(NqVelocityState(NqXmlRealVector{2.0, -1.0}));
        gripper.setLinkIdentifier("hand");
        gripper.setSlaveJointLabels({std::string("upper")});
    }

    std::vector<std::vector<bool>> bits() {
        std::vector<std::vector<bool>> bits;
        gripper.insertSparsityComponent(robot.manipulator, 0, {}, true, bits);
        return bits;
    }

    Robot robot{0};
    NqOneDofGripperEndEffector gripper;
    const NqEndEffectorPlacement target{NqVector(0.0, 0.0, 0.5)};
};

TEST_F(NqGripper, SlavesFollowInTheirRatios) {
    gripper.setSlaveJointWeights({-2.0});
    const NqReArray j = robot.rows(gripper);
    std::vector<double> product;
    ASSERT_TRUE(j.transform({-2.0 * 0.3, 0.3}, product));
    EXPECT_EQ(product, std::vector<double>({0.3, 0.0})) << "the slave at -2 times the master's rate";
    EXPECT_EQ(robot.velocity(gripper), NqXmlRealVector({-1.0, 0.0})) << "whatever the slave does";
    EXPECT_NEAR(robot.error(gripper, target)[0], 0.2, 1e-15);
    EXPECT_EQ(robot.error(gripper, target).size(), 2U);

    gripper.setSlaveJointLabels({std::string("upper"), std::string("upper")});
    EXPECT_EQ(robot.rows(gripper)[2], std::vector<double>({-1.0, 1.0})) << "without a weight of its own";
    gripper.setSlaveJointWeights({0.0});
    EXPECT_EQ(robot.rows(gripper)[1], std::vector<double>({0.0, 0.0}));
    EXPECT_EQ(bits()[1], std::vector<bool>({true, true}));

    NqXmlRealVector acceleration(8, 7.0);
    gripper.calculateAcceleration(robot.manipulator, robot.state, acceleration, 1);
    EXPECT_EQ(acceleration, NqXmlRealVector({7.0, 0.0})) << "of the master alone";
    EXPECT_EQ(robot.filtered(gripper, target, {}, 0.1), NqXmlRealVector({-1.0, 0.0, 0.0}));
    NqXmlRealVector plain;
    gripper.filterEndEffectorVelocity({9.0, 9.0}, {1.0}, 0.1, plain);
    EXPECT_EQ(plain, NqXmlRealVector({1.0, 0.0, 0.0}));
}

TEST_F(NqGripper, LostSlavesLeaveTheLastRows) {
    NqPrintCapture capture;
    gripper.setSlaveJointLabels(
        {std::string("lost"), std::string("base"), std::string("upper"), std::string("upper")});
    gripper.setSlaveJointWeights({0.5, 4.0, 8.0, 8.0});
    NqReArray expected(5, 2);
    expected.assign(0, {0.0, 1.0});
    expected.assign(1, {-2.0, 1.0});
    expected.assign(2, {-0.25, 1.0});
    EXPECT_EQ(robot.rows(gripper), expected);
    EXPECT_EQ(robot.velocity(gripper), NqXmlRealVector({-1.0, 0.0, 0.0}));
    EXPECT_EQ(robot.filtered(gripper, target, {}).size(), 5U);
    EXPECT_EQ(capture.text(), "");
}

TEST_F(NqGripper, SlavesPileUpWhileTheMasterIsLost) {
    NqPrintCapture capture;
    gripper.setLinkIdentifier("base");
    NqEndEffectorPlacement placement(NqVector(1.0, 2.0, 3.0));
    gripper.calculatePlacement(robot.manipulator, robot.state, placement);
    EXPECT_EQ(placement.coordSysXForm().translation(), NqVector(1.0, 2.0, 3.0));
    EXPECT_EQ(robot.rows(gripper), NqReArray(2, 2));
    EXPECT_EQ(bits()[0], std::vector<bool>(2));
    EXPECT_EQ(robot.error(gripper, target), NqXmlRealVector(2));
    EXPECT_EQ(robot.filtered(gripper, target, {0.5}), NqXmlRealVector(2)) << "no feed-forward either";

    gripper.setLinkIdentifier("hand");
    EXPECT_EQ(robot.velocity(gripper).size(), 1U + 6U) << "once for each evaluation";
    EXPECT_EQ(robot.rows(gripper).rows(), 2U);
    gripper.setLinkIdentifier("base");
    EXPECT_EQ(robot.velocity(gripper)[0], -1.0) << "the master is remembered";
    const NqOneDofGripperEndEffector copy = gripper;
    EXPECT_EQ(robot.velocity(copy), NqXmlRealVector({0.0, 0.0})) << "but not by a copy";
    EXPECT_EQ(capture.text(), "");
}

} // namespace
