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
/// within their limits.
TEST_F(NqDriveKinds, FrameAndCoupledJointsReachTheirTargetsWithinTheirLimits) {
    load("arm7.urdf", "arm7.frame.endeffectors.xml",
         {"--start", kBent, "--relative", "0.05,0.2,-0.1@0,0,45/hold", "--relative", "@20,0,0/0.3"});
    const NqDriveRun run = reachAll();
    const NqCoordinateSystemTransformation start = run.recorder().placement(0, 0);
    const auto expectAt = [&](const NqCoordinateSystemTransformation& actual, const NqVector& shift,
                              const NqOrientation& turn) {
        EXPECT_LT((actual.translation() - start.translation() - shift).mag(), 1.0e-4);
        EXPECT_LT(angleBetween(actual.orientation(), turn * start.orientation()), 1.0e-4);
    };
    const double pi = std::acos(-1.0);
    expectAt(run.recorder().placement(rowsOfFirstWay(run), 0), {0.05, 0.2, -0.1},
             {0.25 * pi, NqVector::zVector(1.0)});
    // The place, left out, is as at the start.
    expectAt(run.loop().placements()[0], {}, {pi / 9.0, NqVector::xVector(1.0)});
    EXPECT_NEAR(run.loop().positions()[2] - run.loop().positions()[4], 0.3, 1.0e-4);

    ASSERT_EQ(run.record().parts.size(), 3u);
    for (std::size_t p = 0; p < 3; ++p) {
        const NqDriveRecord::Part& part = run.record().parts[p];
        EXPECT_LE(part.peakSpeed, part.limits.speedLimit * (1.0 + 1.0e-9)) << part.name;
        EXPECT_LE(part.peakAcceleration, part.limits.accelerationLimit * (1.0 + 1.0e-6)) << part.name;
        EXPECT_GT(part.peakAcceleration, 0.9 * part.limits.accelerationLimit) << part.name;
    }
}

/// The straight way drives the fourth joint into the end of its range; the metric leads around it.
TEST_F(NqDriveKinds, JointsNearTheirLimitsLeaveSoftEndEffectorsToTheOthers) {
    loadPoints("arm7.urdf", softPoint("hand", "0 0 0", 1.0), {"--target", "-0.3,0,0.3", "--posture", "none"});
    const NqDriveRun run = reachAll();
    EXPECT_LE(run.loop().errors()[0], 1.0e-4);
    EXPECT_LT(run.record().joints[3].least, -3.0) << "which is near its limit of -3.07";
    EXPECT_EQ(run.record().parts[0].name, "hand");
}

TEST_F(NqDriveKinds, SoftEndEffectorsAloneMeetTheirTargetsAndShareByTheirWeights) {
    loadPoints("lift4.urdf", softPoint("tip", "0 0 0", 1.0) + softPoint("tip", "0 0 0", 3.0),
               {"--start", "0.1,0.3,0.5,0.5", "--relative", "-0.05,0.1,0.1/-0.05,0.1,0.1", "--relative",
                "-0.05,0.1,0.14/-0.05,0.1,0.1", "--profile", "proportional", "--posture", "none"});
    const NqDriveRun run = reachAll();
    EXPECT_TRUE(run.loop().rows() == 0 && run.loop().joints() == 4);
    EXPECT_LE(run.recorder().error(rowsOfFirstWay(run) - 1, 0), 1.0e-4);
    EXPECT_NEAR(run.loop().errors()[0], 0.03, 1.0e-3) << "weighs 1: three quarters of the 0.04 m";
    EXPECT_NEAR(run.loop().errors()[1], 0.01, 1.0e-3) << "weighs 3";
}

TEST_F(NqDriveKinds, OrientationAndDistanceLeaveTheRestFree) {
    load("arm7.urdf", "arm7.orientation.endeffectors.xml", {"--target", "@0,120,0"});
    const NqVector z = reachAll().loop().placements()[0].orientation().zAxis();
    EXPECT_LT((z - NqVector(std::sqrt(0.75), 0.0, -0.5)).mag(), 1.0e-4);

    load("twin9.urdf", "twin9.grip.endeffectors.xml", {"--relative", "0,0,0.1/-0.1", "--target", "hold/0.3"});
    const auto hands = reachAll().record().sketch.last.endEffectors;
    ASSERT_EQ(hands.size(), 3u) << "the left point, and the two ends of the distance";
    EXPECT_NEAR((hands[2] - hands[1]).mag(), 0.3, 1.0e-4);
}

TEST_F(NqDriveKinds, RefusesTargetsThatDoNotSuit) {
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"arm7.urdf", "arm7.endeffectors.xml", "1,2,3@0,0,9", "end-effector 'hand' needs X,Y,Z or hold"},
        {"arm7.urdf", "arm7.frame.endeffectors.xml", "1/1", "'hand' needs X,Y,Z@RX,RY,RZ or hold"},
        {"arm7.urdf", "arm7.frame.endeffectors.xml", "hold/@0,0,9", "'linearConstraint' needs one number"},
        {"arm7.urdf", "arm7.frame.endeffectors.xml", "hold", "has 1 target for 2 end-effectors"},
        {"arm7.urdf", "arm7.orientation.endeffectors.xml", "1,2,3@0,0,9", "'hand' needs @RX,RY,RZ or hold"},
        {"twin9.urdf", "twin9.grip.endeffectors.xml", "hold/0.001",
         "cannot be 0.001: it lies between 0.005"}};
    for (const auto& [robot, effectors, target, words] : cases) {
        const std::string file = writeTemporary("targets.txt", std::string("# one\n") + target + "\n");
        load(robot, effectors, {"--targets", file.c_str()});
        expectRefused("way point 1 (" + file + ":2)");
        expectRefused(words);
    }
}

} // namespace
