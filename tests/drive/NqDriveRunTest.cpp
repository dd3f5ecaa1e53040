#include "NqDriveTesting.h"

namespace {

class NqDrive : public NqDriveFixture {};

TEST_F(NqDrive, HoldsOneEndEffectorWhileAnotherMoves) {
    loadPoints("twin9.urdf",
               pointXml("left_tip", "0 0 0", 0.4, 2.0) + pointXml("right_tip", "0 0 0", 0.4, 2.0),
               {"--relative", "0.05,-0.1,0.15/hold", "--relative", "0,0,0/0,0.02,0"});
    const NqDriveRun run = reachAll();
    const NqVector held = run.recorder().point(0, 1);
    EXPECT_EQ(watcher.reached, 2u);
    for (std::size_t row = 0; run.recorder().wayPoint(row) == 1.0; ++row) {
        ASSERT_LT((run.recorder().point(row, 1) - held).mag(), 1.0e-4);
    }
    EXPECT_NEAR((run.loop().placements()[1].translation() - held).y(), 0.02, 1.0e-4);
}

/// Free joints drift to the posture; one with a large weight hardly takes part in the motion.
TEST_F(NqDrive, PostureAndMetricRuleTheFreeJoints) {
    const auto endOf = [&](const char* posture, const char* metric) {
        loadPoints("arm7.urdf", pointXml("hand", "0 0 0", 0.2, 2.0),
                   {"--relative", "0,0.2,0", "--start", "0.2,0.3,0.4,-1.8,0.5,1.7,0", "--posture", posture,
                    "--metric", metric, "--gain", "3"});
        return reachAll().loop().positions();
    };
    const auto lazy = endOf("none", "1,1,1,1,1,1,1");
    EXPECT_LT(std::abs(endOf("none", "1000,1,1,1,1,1,1")[0] - 0.2), 0.1 * std::abs(lazy[0] - 0.2));
    EXPECT_LT(std::abs(endOf("0,0.3,0,-1.8,0,1.7,0.5", "1,1,1,1,1,1,1")[6] - 0.5), 0.05);
    EXPECT_LT(std::abs(lazy[6]), 1.0e-9);
}

/// Near singular postures a soft elbow that pulls the other way doesn't take the hard tip from its target.
TEST_F(NqDrive, SoftEndEffectorsDontOutweighWhatIsDamped) {
    std::string elbow = pointXml("forearm", "0 0 0", 0.5, 2.0);
    elbow.insert(elbow.find("<pointMotionFilter>"), "<isHardConstraint>false</isHardConstraint>");
    loadPoints("arm6.urdf", pointXml("flange", "0 0 0.12", 0.5, 2.0) + elbow,
               {"--start", "-2.9729,2.5310,-1.4796,0.7462,-5.1414,-2.1274", "--target",
                "0.289206,-0.043565,0.239999/0.202690,-0.149461,0.431508", "--no-detour"});
    reachAll();
}

/// A run that is over names the joints that slow the arm, also those that keep a damped direction from going
/// on.
TEST_F(NqDrive, NamesTheLimitsOfADampedDirection) {
    loadPoints("arm7.urdf", "<frameEndEffector><linkIdentifier>hand</linkIdentifier></frameEndEffector>",
               {"--start", "-1.25255,-1.33841,-1.82067,-2.47804,-0.69390,2.29,2.01273", "--target",
                "0.622831,0.671985,0.330738@-9.552443,89.150980,57.573181", "--no-detour", "--time", "12"});
    NqDriveRun run(task);
    run.execute(watcher);
    EXPECT_NE(run.record().verdict.find("joint 'joint4' slowed the arm"), std::string::npos)
        << run.record().verdict;
}

TEST_F(NqDrive, RefusesWhatCannotBeStacked) {
    loadPoints("lift4.urdf", pointXml("tip", "0 0 0", 1, 1) + pointXml("bar2", "0 0 0", 1, 1),
               {"--target", "hold/hold"});
    expectRefused("the end-effectors constrain 6 coordinates, but the robot has only 4 joints");
    loadPoints("arm7.urdf", pointXml("base", "0 0 0", 1, 1), {"--target", "0,0,0"});
    expectRefused("no joint moves end-effector 'base'");
    loadPoints("arm7.urdf", pointXml("hand", "0 0 0", std::nan(""), 1), {"--target", "0,0,0"});
    expectRefused("end-effector 'hand' has a speed or acceleration limit that isn't above 0");
    load("arm7.urdf", "arm7.orientation.endeffectors.xml", {"--target", "@0,0,1", "--free-base"});
    expectRefused("can't be used with a free base");
}

TEST(NqDriveRecorder, ThinsWhenFullAndKeepsWhatIsAskedFor) {
    NqDriveRecorder recorder(1, 1, 1, false, 8);
    const NqVector point(1.0, 2.0, 3.0);
    const NqCoordinateSystemTransformation frame(point, NqOrientation(1.0, point));
    for (int step = 0; step < 100; ++step) {
        const double value = step;
        recorder.add({value, 1.0, 2.0 * value, 0.5, &value, &value, &frame, &value, &value, &value},
                     step == 99);
        ASSERT_LE(recorder.rows(), 8u);
    }
    EXPECT_EQ(recorder.stride(), 16u);
    EXPECT_EQ(recorder.column(&NqDriveRecorder::time),
              (std::vector<double>{0.0, 16.0, 32.0, 48.0, 64.0, 80.0, 96.0, 99.0}));
    EXPECT_EQ(recorder.determinant(2), 64.0) << "the least from step 32 to 63";
    EXPECT_EQ(recorder.determinant(3), 126.0) << "the greatest";
    EXPECT_TRUE(recorder.slowing(3) == 0.5 && recorder.position(3, 0) == 48.0);
    EXPECT_EQ(recorder.placement(3, 0), frame);
    EXPECT_EQ(recorder.acceleration(2, 0), 32.0);
}

} // namespace
