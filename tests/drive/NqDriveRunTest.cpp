#include "NqDriveTesting.h"

namespace {

using Outcome = NqDriveRecord::Outcome;

class NqDrive : public NqDriveFixture {};

TEST_F(NqDrive, SlowsAtRateLimitsAndStaysOnTheStraightWay) {
    load("arm7.urdf", pointXml("hand", "0 0 0", 3.0, 15.0), {"--relative", "0.1,0.5,-0.3"});
    NqDriveRun run = loadedRun();
    const NqVector start = run.loop().placements()[0].translation();
    const NqVector way = NqVector(0.1, 0.5, -0.3).unitVector();
    reachAll(run);
    EXPECT_GT(watcher.slowed, 100u);
    for (std::size_t row = 0; row < run.recorder().rows(); ++row) {
        ASSERT_LT((run.recorder().point(row, 0) - start).cross(way).mag(), 2.0e-3)
            << run.recorder().time(row);
    }
    EXPECT_LE(run.record().parts[0].error, 1.0e-4);
    EXPECT_NEAR(run.record().parts[0].pathLength, NqVector(0.1, 0.5, -0.3).mag(), 2.0e-3);
}

TEST_F(NqDrive, HoldsOneEndEffectorWhileAnotherMoves) {
    load("twin9.urdf", pointXml("left_tip", "0 0 0", 0.4, 2.0) + pointXml("right_tip", "0 0 0", 0.4, 2.0),
         {"--relative", "0.05,-0.1,0.15/hold", "--relative", "0,0,0/0,0.02,0"});
    NqDriveRun run = loadedRun();
    const NqVector held = run.loop().placements()[1].translation();
    reachAll(run);
    EXPECT_EQ(watcher.reached, 2u);
    for (std::size_t row = 0; run.recorder().wayPoint(row) == 1.0; ++row) {
        ASSERT_LT((run.recorder().point(row, 1) - held).mag(), 1.0e-4);
    }
    EXPECT_NEAR((run.loop().placements()[1].translation() - held).y(), 0.02, 1.0e-4);
}

/// Free joints drift to the posture; one with a large weight hardly takes part in the motion.
TEST_F(NqDrive, PostureAndMetricRuleTheFreeJoints) {
    const auto endOf = [&](const char* posture, const char* metric) {
        load("arm7.urdf", pointXml("hand", "0 0 0", 0.2, 2.0),
             {"--relative", "0,0.2,0", "--start", "0.2,0.3,0.4,-1.8,0.5,1.7,0", "--posture", posture,
              "--metric", metric, "--gain", "3"});
        NqDriveRun run = loadedRun();
        reachAll(run);
        return run.loop().positions();
    };
    const auto lazy = endOf("none", "1,1,1,1,1,1,1");
    EXPECT_LT(std::abs(endOf("none", "1,1,1,1,1,1,1000")[6]), 1.0e-9);
    EXPECT_LT(std::abs(endOf("none", "1000,1,1,1,1,1,1")[0] - 0.2), 0.1 * std::abs(lazy[0] - 0.2));
    EXPECT_LT(std::abs(endOf("0,0.3,0,-1.8,0,1.7,0.5", "1,1,1,1,1,1,1")[6] - 0.5), 0.05);
    EXPECT_LT(std::abs(lazy[6]), 1.0e-9);
}

TEST_F(NqDrive, SaysWhatIsInTheWay) {
    load("arm7.urdf", pointXml("hand", "0 0 0", 1.0, 5.0), {"--target", "-0.3,0,0.3"});
    NqDriveRun atLimit(task);
    atLimit.execute(watcher);
    EXPECT_EQ(atLimit.record().outcome, Outcome::JointAtLimit);
    EXPECT_NE(atLimit.record().verdict.find("'joint4' is at its limit"), std::string::npos);

    // All bars in line: the first row of the Jacobian is zero, and a velocity along it asks for infinite
    // rates.
    load("lift4.urdf", pointXml("tip", "0 0 0", 0.3, 1.0), {"--target", "0.5,0.5,0.6"});
    NqDriveRun singular(task);
    singular.execute(watcher);
    EXPECT_EQ(singular.record().outcome, Outcome::NoSolution);
    EXPECT_NE(singular.record().verdict.find("no joint moves 'tip' along x"), std::string::npos);
    EXPECT_EQ(singular.loop().positions(), task.start());
}

TEST_F(NqDrive, RefusesWhatCannotBeStacked) {
    load("lift4.urdf", pointXml("tip", "0 0 0", 1, 1) + pointXml("bar2", "0 0 0", 1, 1),
         {"--target", "hold/hold"});
    EXPECT_FALSE(isLoaded);
    EXPECT_EQ(task.complaint(), "the end-effectors constrain 6 coordinates, but the robot has only 4 joints");
    load("arm7.urdf", pointXml("base", "0 0 0", 1, 1), {"--target", "0,0,0"});
    EXPECT_FALSE(isLoaded);
    EXPECT_EQ(task.complaint(), "no joint moves end-effector 'base'");
    load("arm7.urdf", pointXml("hand", "0 0 0", std::nan(""), 1), {"--target", "0,0,0"});
    EXPECT_FALSE(isLoaded);
    EXPECT_EQ(task.complaint(), "end-effector 'hand' has a speed or acceleration limit that isn't above 0");
}

TEST(NqDriveRecorder, ThinsWhenFullAndKeepsWhatIsAskedFor) {
    NqDriveRecorder recorder(1, 1, 1, 8);
    const NqVector point(1.0, 2.0, 3.0);
    const NqCoordinateSystemTransformation frame(point, NqOrientation(1.0, point));
    for (int step = 0; step < 100; ++step) {
        const double value = step;
        recorder.add({value, 1.0, 2.0 * value, 1.0, &value, &value, &frame, &value, &value, &value},
                     step == 99);
        ASSERT_LE(recorder.rows(), 8u);
    }
    EXPECT_EQ(recorder.stride(), 16u);
    EXPECT_EQ(recorder.column(&NqDriveRecorder::time),
              (std::vector<double>{0.0, 16.0, 32.0, 48.0, 64.0, 80.0, 96.0, 99.0}));
    EXPECT_EQ(recorder.determinant(2), 64.0);
    EXPECT_EQ(recorder.placement(3, 0), frame);
    EXPECT_EQ(recorder.acceleration(2, 0), 32.0);
}

} // namespace
