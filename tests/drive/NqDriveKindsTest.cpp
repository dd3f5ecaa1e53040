#include "NqDriveTesting.h"

namespace {

class NqDriveKinds : public NqDriveFixture {};

const char* const kBent = "0,0.3,0.2,-1.8,0.2,2,0.8";

std::string softPoint(const std::string& link, const char* point, double weight) {
    std::string xml = pointXml(link, point, 0.3, 1.5);
    xml.insert(xml.find("<pointMotion"), "<isHardConstraint>false</isHardConstraint>");
    xml.insert(xml.rfind("</point"), "<errorWeight>" + std::to_string(weight) + "</errorWeight>");
    return xml;
}

double angleBetween(const NqOrientation& a, const NqOrientation& b) {
    double angle = 0.0;
    NqVector axis;
    (a.inverse() * b).getAngleAxis(angle, axis);
    return angle;
}

/// A frame turns about the axes of the system while two joints change what is between them, and all stay
/// within their limits. The report has the greatest values of what was recorded.
TEST_F(NqDriveKinds, FrameAndCoupledJointsReachTheirTargetsWithinTheirLimits) {
    loadModel("arm7.urdf", "arm7.frame.endeffectors.xml",
              {"--start", kBent, "--relative", "0.05,0.2,-0.1@0,0,45/hold", "--relative", "@20,0,0/0.3"});
    NqDriveRun run = loadedRun();
    const NqCoordinateSystemTransformation start = run.loop().placements()[0];
    const double sum = run.loop().placements()[1].translation().z();
    reachAll(run);

    const std::size_t first = rowsOfFirstWay(run);
    const NqCoordinateSystemTransformation turned = run.recorder().placement(first, 0);
    const NqOrientation aboutZ(0.25 * std::acos(-1.0), NqVector::zVector(1.0));
    EXPECT_LT((turned.translation() - start.translation() - NqVector(0.05, 0.2, -0.1)).mag(), 1.0e-4);
    EXPECT_LT(angleBetween(turned.orientation(), aboutZ * start.orientation()), 1.0e-4);

    const NqCoordinateSystemTransformation& last = run.loop().placements()[0];
    const NqOrientation aboutX(std::acos(-1.0) / 9.0, NqVector::xVector(1.0));
    EXPECT_LT((last.translation() - start.translation()).mag(), 1.0e-4) << "left out: as at the start";
    EXPECT_LT(angleBetween(last.orientation(), aboutX * start.orientation()), 1.0e-4);
    EXPECT_NEAR(run.loop().positions()[2] - run.loop().positions()[4], sum + 0.3, 1.0e-4);

    ASSERT_EQ(run.record().parts.size(), 3u);
    ASSERT_EQ(run.recorder().stride(), 1u);
    for (std::size_t p = 0; p < 3; ++p) {
        const NqDriveRecord::Part& part = run.record().parts[p];
        EXPECT_LE(part.peakSpeed, part.limits.speedLimit * (1.0 + 1.0e-9)) << part.name;
        EXPECT_LE(part.peakAcceleration, part.limits.accelerationLimit * (1.0 + 1.0e-6)) << part.name;
        double peakSpeed = 0.0;
        double peakAcceleration = 0.0;
        for (std::size_t row = 1; row < run.recorder().rows(); ++row) {
            const double speed = run.recorder().speed(row, p);
            peakSpeed = std::max(peakSpeed, speed);
            if (speed >= 2.0 * part.limits.approach / task.options().rate) {
                peakAcceleration = std::max(peakAcceleration, run.recorder().acceleration(row, p));
            }
        }
        EXPECT_EQ(part.peakSpeed, peakSpeed);
        EXPECT_EQ(part.peakAcceleration, peakAcceleration);
        EXPECT_GT(peakAcceleration, 0.9 * part.limits.accelerationLimit) << part.name;
    }
}

/// Speed against what is left, near the end: a power that the profile is known by.
TEST_F(NqDriveKinds, ProfilesApproachInTheirOwnWays) {
    const std::vector<std::pair<const char*, double>> powers{
        {"proportional", 1.0}, {"trapezoidal", 0.5}, {"threehalves", 2.0 / 3.0}};
    struct Case {
        const char* effectors;
        const char* target;
        std::size_t part; ///< the one that takes longer, which another of the same frame doesn't slow
    };
    const Case cases[] = {{"arm7.endeffectors.xml", "0,0.2,0", 0},
                          {"arm7.orientation.endeffectors.xml", "@0,0,60", 0},
                          {"arm7.frame.endeffectors.xml", "0,0.2,0@0,0,60/hold", 1},
                          {"arm7.frame.endeffectors.xml", "hold/0.3", 2}};
    for (const auto& [profile, power] : powers) {
        for (const Case& each : cases) {
            loadModel("arm7.urdf", each.effectors,
                      {"--start", kBent, "--relative", each.target, "--profile", profile});
            NqDriveRun run = loadedRun();
            reachAll(run);
            // The speed of a row belongs to what was left in the row before.
            const auto rowAt = [&](double left) {
                std::size_t row = 1;
                while (run.recorder().error(row - 1, each.part) > left) {
                    ++row;
                }
                return row;
            };
            const std::size_t far = rowAt(0.01);
            const std::size_t near = rowAt(0.001);
            const double slope =
                std::log(run.recorder().speed(far, each.part) / run.recorder().speed(near, each.part)) /
                std::log(run.recorder().error(far - 1, each.part) /
                         run.recorder().error(near - 1, each.part));
            EXPECT_NEAR(slope, power, 0.01) << profile << " " << run.record().parts[each.part].name;
        }
    }
}

/// A soft elbow that cannot reach its target stops where no motion that the hand allows brings it nearer; one
/// that can reach it does. The hand does not notice.
TEST_F(NqDriveKinds, SoftEndEffectorComesAsNearAsTheHardOnesAllow) {
    loadModel("arm7.urdf", "arm7.elbow.endeffectors.xml",
              {"--start", kBent, "--relative", "0.05,0.2,-0.1@0,0,45/0,-0.3,-0.1", "--posture", "none"});
    NqDriveRun run = loadedRun();
    reachAll(run);
    EXPECT_NE(run.record().verdict.find("'link4' (soft) within 0."), std::string::npos);
    EXPECT_LE(std::max(run.loop().errors()[0], run.loop().errors()[1]), 1.0e-4);
    EXPECT_EQ(run.loop().rows(), 6u);

    const NqEndEffector& elbow = *task.endEffectors()[1];
    NqManipulatorActiveState state(task.manipulator());
    state.setPositionState(NqPositionState(run.loop().positions()));
    NqReArray hard, soft, nullSpace;
    std::vector<unsigned> pivots(7);
    hard.setToZeros(7, 7);
    task.endEffectors()[0]->insertJacobianComponent(task.manipulator(), 0, elbow.relativeLinkData(), true,
                                                    state, hard);
    elbow.insertJacobianComponent(task.manipulator(), 0, elbow.relativeLinkData(), true, state, soft);
    hard.nullSpace(nullSpace, 6, pivots);
    NqVector motion;
    for (unsigned i = 0; i < 3; ++i) {
        for (unsigned j = 0; j < 7; ++j) {
            motion[i] += soft[i][j] * nullSpace[j][0];
        }
    }
    const NqVector left =
        run.loop().systemTarget(1).coordSysXForm().translation() - run.loop().placements()[1].translation();
    EXPECT_GT(motion.mag(), 1.0e-3);
    EXPECT_LT(std::abs(left.unitVector().dot(motion.unitVector())), 2.0e-2);
}

/// The straight way drives the fourth joint into the end of its range; the metric leads around it.
TEST_F(NqDriveKinds, JointsNearTheirLimitsLeaveSoftEndEffectorsToTheOthers) {
    load("arm7.urdf", softPoint("hand", "0 0 0", 1.0), {"--target", "-0.3,0,0.3", "--posture", "none"});
    NqDriveRun run = loadedRun();
    reachAll(run);
    EXPECT_LE(run.loop().errors()[0], 1.0e-4);
    EXPECT_LT(run.record().joints[3].least, -3.0) << "which is near its limit of -3.07";
}

TEST_F(NqDriveKinds, SoftEndEffectorsAloneMeetTheirTargetsAndShareByTheirWeights) {
    load("lift4.urdf", softPoint("tip", "0 0 0", 1.0) + softPoint("tip", "0 0 0", 3.0),
         {"--start", "0.1,0.3,0.5,0.5", "--relative", "-0.05,0.1,0.1/-0.05,0.1,0.1", "--relative",
          "-0.05,0.1,0.14/-0.05,0.1,0.1", "--profile", "proportional", "--posture", "none"});
    NqDriveRun run = loadedRun();
    EXPECT_EQ(run.loop().rows(), 0u);
    EXPECT_EQ(run.loop().joints(), 4u);
    reachAll(run);
    const std::size_t first = rowsOfFirstWay(run);
    EXPECT_LE(run.recorder().error(first - 1, 0), 1.0e-4);
    EXPECT_NEAR(run.loop().errors()[0], 0.03, 1.0e-3) << "weighs 1: three quarters of the 0.04 m";
    EXPECT_NEAR(run.loop().errors()[1], 0.01, 1.0e-3) << "weighs 3";
}

TEST_F(NqDriveKinds, TargetsAreInTheFrameOfTheRelativeLink) {
    for (const char* mode : {"relativeModeInternal", "relativeModeExternal"}) {
        std::string right = pointXml("right_tip", "0 0 0", 0.4, 2.0);
        right.insert(right.find("<pointMotion"),
                     std::string("<relativeLinkData><relativeMode>") + mode +
                         "</relativeMode><relativeLinkId>left_tip</relativeLinkId>"
                         "</relativeLinkData>");
        load("twin9.urdf", pointXml("left_tip", "0 0 0", 0.4, 2.0) + right,
             {"--relative", "0.05,-0.1,0.1/hold", "--relative", "0.05,-0.1,0.1/0,0.05,0.02"});
        const auto inLeftHand = [&](const std::vector<double>& positions) {
            NqManipulatorActivePositionState state(task.manipulator());
            state.setPositionState(NqPositionState(positions));
            const auto tip = [&](const char* label) {
                return task.manipulator().linkByLabel(label)->primaryFrameInSystem(state);
            };
            return tip("left_tip").inverse() * tip("right_tip").translation();
        };
        NqDriveRun run = loadedRun();
        const NqVector wanted = inLeftHand(task.start()) + NqVector(0.0, 0.05, 0.02);
        reachAll(run);
        EXPECT_LT((inLeftHand(run.loop().positions()) - wanted).mag(), 1.0e-4) << mode;
        EXPECT_LE(run.record().parts[1].peakSpeed, 0.4 * (1.0 + 1.0e-6)) << "relative in internal mode";
    }
}

TEST_F(NqDriveKinds, OrientationAndDistanceLeaveTheRestFree) {
    loadModel("arm7.urdf", "arm7.orientation.endeffectors.xml", {"--target", "@0,120,0"});
    NqDriveRun turn = loadedRun();
    reachAll(turn);
    const NqVector z = turn.loop().placements()[0].orientation().zAxis();
    EXPECT_LT((z - NqVector(std::sqrt(0.75), 0.0, -0.5)).mag(), 1.0e-4);

    loadModel("twin9.urdf", "twin9.grip.endeffectors.xml",
              {"--relative", "0,0,0.1/-0.1", "--target", "hold/0.3"});
    NqDriveRun grip = loadedRun();
    reachAll(grip);
    const auto& hands = grip.record().sketch.last.endEffectors;
    ASSERT_EQ(hands.size(), 3u) << "the left point, and the two ends of the distance";
    EXPECT_NEAR((hands[2] - hands[1]).mag(), 0.3, 1.0e-4);
}

TEST_F(NqDriveKinds, RefusesTargetsThatDoNotSuit) {
    struct Case {
        const char* robot;
        const char* effectors;
        const char* target;
        const char* words;
    };
    const Case cases[] = {
        {"arm7.urdf", "arm7.endeffectors.xml", "1,2,3@0,0,9", "end-effector 'hand' needs X,Y,Z or hold"},
        {"arm7.urdf", "arm7.frame.endeffectors.xml", "1/1", "'hand' needs X,Y,Z@RX,RY,RZ or hold"},
        {"arm7.urdf", "arm7.frame.endeffectors.xml", "hold/@0,0,9", "'linearConstraint' needs one number"},
        {"arm7.urdf", "arm7.frame.endeffectors.xml", "hold", "has 1 target for 2 end-effectors"},
        {"arm7.urdf", "arm7.orientation.endeffectors.xml", "1,2,3@0,0,9", "'hand' needs @RX,RY,RZ or hold"},
        {"twin9.urdf", "twin9.grip.endeffectors.xml", "hold/0.001", "cannot be 0.001: it lies between 0.005"},
    };
    for (const Case& each : cases) {
        const std::string file = writeTemporary("targets.txt", std::string("# one\n") + each.target + "\n");
        loadModel(each.robot, each.effectors, {"--targets", file.c_str()});
        EXPECT_FALSE(isLoaded);
        EXPECT_NE(task.complaint().find("way point 1 (" + file + ":2)"), std::string::npos)
            << task.complaint();
        EXPECT_NE(task.complaint().find(each.words), std::string::npos) << task.complaint();
    }
}

} // namespace
