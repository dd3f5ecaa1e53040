#include "endeffector/NqEndEffectorTest.h"

namespace {

/// base - shoulder - swing, both about z - wrist, along z: the elbow swings by the second joint.
std::shared_ptr<NqIndividualManipulator> swingArm(const std::string& shoulder = "shoulder",
                                                  const std::string& swing = "swing") {
    const NqJointDescription revolute(NqJointDescription::Revolute), sliding(NqJointDescription::Prismatic);
    auto arm = std::make_shared<NqIndividualManipulator>("arm", "base");
    arm->addLink("base", shoulder, revolute, NqVector(0.2, 0.1, 0.0));
    arm->addLink(shoulder, swing, revolute, NqVector(0.0, 0.0, 0.1));
    arm->addLink(swing, "wrist", sliding, NqVector(0.0, 0.0, 0.5));
    return arm;
}

struct NqSewAngle : NqEndEffectorTest {
    NqSewAngle() : NqEndEffectorTest(swingArm()) {
        sew.setShoulderLink("shoulder");
        sew.setElbowLink("swing");
        sew.setWristLink("wrist");
        sew.setElbowPoint({0.3, 0.0, 0.2});
    }

    double angle(const Reals& positions) {
        setJoints(positions);
        const NqVector number =
            placement(sew, Placement(NqVector(1.0, 2.0, 9.0))).coordSysXForm().translation();
        EXPECT_EQ(number.y(), 2.0);
        return number.z();
    }
    Row rowOn(const NqIndividualManipulator& other) {
        NqManipulatorActiveState there(other);
        NqReArray j;
        sew.insertJacobianComponent(other, 0, {}, true, there, j);
        return j[0];
    }

    NqSewAngleEndEffector sew;
};

TEST_F(NqSewAngle, IsThatOfTheSwing) {
    for (const double swing : {0.0, 0.7, -2.0, 3.0}) {
        EXPECT_NEAR(angle({1.1, swing, 0.05}), swing, 1e-15);
        expectNear(rows(sew)[0], {0.0, 1.0, 0.0}, 1e-14);
        state.setVelocityState(NqVelocityState(Reals{2.0, 0.5, 0.3}));
        expectNear(velocity(sew), {2.5}, 1e-14); // the shoulder's own joint counts
    }
    EXPECT_NEAR(angle({0.0, 3.5, 0.0}), 3.5 - 2.0 * std::numbers::pi, 1e-15);

    // No shorter way round, and a limit that the speed factor has no part in.
    sew.setGain(0.1);
    sew.setSpeedFactor(0.5);
    const auto filter = [&] {
        angle({0.0, -3.1, 0.0});
        EXPECT_NEAR(sew.minimumTime(at(3.1), at(-3.1)), 6.2 / (0.5 * sew.motionThreshold()), 1e-14);
        return filtered(sew, at(3.1), {5.0}, {5.0}, 0.1);
    };
    expectNear(filter(), {0.62}, 1e-14);
    sew.setMotionThreshold(0.25);
    EXPECT_EQ(filter(), Reals({0.25}));
    EXPECT_EQ(limited(sew, {1.0, 2.0}), Reals({1.0, 2.0})) << "passed as it is";
    sew.setElbowPoint({0.0, 0.0, 0.2});
    EXPECT_FALSE(std::isfinite(rows(sew)[0][1])) << "a straight arm has no angle";
}

TEST_F(NqSewAngle, LinksMustFollowEachOtherWhenFirstFound) {
    NqPrintCapture capture;
    sew.setShoulderLink("swing");
    EXPECT_NEAR(angle({0.0, 0.4, 0.0}), 0.0, 1e-15) << "the shoulder may be the elbow";
    sew.setShoulderLink("shoulder");
    sew.setElbowLink("base");
    EXPECT_EQ(rows(sew)[0], Row(3));
    const std::string message = "NqSewAngleEndEffector::setLinkPointers(): bad link label: ";
    EXPECT_EQ(capture.text(), message + "shoulder, base, or wrist.\n");
    EXPECT_EQ(angle({0.0, 0.0, 0.0}), 9.0) << "left alone";
    EXPECT_EQ(velocity(sew, {5.0, 6.0, 7.0}, 1), Reals({5.0, 0.0, 7.0})) << "lengthened, but not cut";

    // Once found they need only be there.
    sew.setElbowLink("swing");
    EXPECT_NEAR(rows(sew)[0][1], 1.0, 1e-14);
    capture.clear();
    const auto swapped = swingArm("swing", "shoulder");
    Sparsity bits;
    sew.insertSparsityComponent(*swapped, 0, {}, true, bits);
    EXPECT_EQ(bits[0], std::vector<bool>({false, false, true})) << "in another order, of another arm";
    EXPECT_EQ(rowOn(*swingArm("shoulder", "else")), Row(3));
    EXPECT_EQ(capture.text(), "");
    EXPECT_EQ(rowOn(*swapped), Row(3));
    EXPECT_EQ(capture.text(), message + "shoulder, swing, or wrist.\n");
}

} // namespace
