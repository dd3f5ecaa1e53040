#include "support/NqPrintCapture.h"
#include "support/NqTestModels.h"

#include <nqControlCore/endeffector/special/NqSewAngleEndEffector.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

/// base - shoulder - swing, both about z - wrist, along z: the elbow swings by the second joint.
NqIndividualManipulator swingArm(const std::string& shoulder = "shoulder",
                                 const std::string& swing = "swing") {
    const NqJointDescription revolute(NqJointDescription::Revolute), sliding(NqJointDescription::Prismatic);
    NqIndividualManipulator arm("arm", "base");
    arm.addLink("base", shoulder, revolute, NqVector(0.2, 0.1, 0.0));
    arm.addLink(shoulder, swing, revolute, NqVector(0.0, 0.0, 0.1));
    arm.addLink(swing, "wrist", sliding, NqVector(0.0, 0.0, 0.5));
    return arm;
}

NqSewAngleEndEffector swingAngle() {
    NqSewAngleEndEffector sew;
    sew.setShoulderLink("shoulder");
    sew.setElbowLink("swing");
    sew.setWristLink("wrist");
    sew.setElbowPoint({0.3, 0.0, 0.2});
    return sew;
}

class NqSewAngle : public testing::Test {
protected:
    double angle(const NqXmlRealVector& positions) {
        state.setPositionState(NqPositionState(positions));
        NqEndEffectorPlacement placement(NqVector(1.0, 2.0, 9.0));
        sew.calculatePlacement(arm, state, placement);
        EXPECT_EQ(placement.coordSysXForm().translation().y(), 2.0);
        return placement.coordSysXForm().translation().z();
    }
    std::vector<double> row(const NqIndividualManipulator& manipulator) {
        NqManipulatorActiveState own(manipulator);
        NqReArray j;
        sew.insertJacobianComponent(manipulator, 0, {}, true, &manipulator == &arm ? state : own, j);
        return j[0];
    }
    double rate(const NqXmlRealVector& rates) {
        state.setVelocityState(NqVelocityState(rates));
        NqXmlRealVector v;
        sew.calculateVelocity(arm, state, v, 0);
        return v[0];
    }

    const NqIndividualManipulator arm = swingArm();
    NqManipulatorActiveState state{arm};
    NqSewAngleEndEffector sew = swingAngle();
};

TEST_F(NqSewAngle, IsThatOfTheSwing) {
    for (const double swing : {0.0, 0.7, -2.0, 3.0}) {
        EXPECT_NEAR(angle({1.1, swing, 0.05}), swing, 1e-15);
        const std::vector<double> j = row(arm);
        EXPECT_EQ(j[0], 0.0);
        EXPECT_NEAR(j[1], 1.0, 1e-14);
        EXPECT_NEAR(j[2], 0.0, 1e-15);
        EXPECT_NEAR(rate({0.0, 0.5, 0.3}), 0.5, 1e-14);
        EXPECT_NEAR(rate({2.0, 0.5, 0.3}), 2.5, 1e-14) << "the shoulder's own joint counts";
    }
    EXPECT_NEAR(angle({0.0, 3.5, 0.0}), 3.5 - 2.0 * std::numbers::pi, 1e-15);

    // No shorter way round, and a limit that the speed factor has no part in.
    sew.setGain(0.1);
    sew.setSpeedFactor(0.5);
    NqXmlRealVector filtered;
    const auto filter = [&] {
        angle({0.0, -3.1, 0.0});
        const NqEndEffectorPlacement target(NqVector(0.0, 0.0, 3.1));
        sew.filterEndEffectorVelocity(arm, target, {5.0}, {5.0}, 0.1, state, filtered);
        EXPECT_NEAR(sew.minimumTime(target, NqEndEffectorPlacement(NqVector(0.0, 0.0, -3.1))),
                    6.2 / (0.5 * sew.motionThreshold()), 1e-14);
        return filtered;
    };
    EXPECT_NEAR(filter()[0], 0.62, 1e-14);
    sew.setMotionThreshold(0.25);
    EXPECT_EQ(filter(), NqXmlRealVector({0.25}));
    sew.filterEndEffectorVelocity({1.0, 2.0}, {}, 0.1, filtered);
    EXPECT_EQ(filtered, NqXmlRealVector({1.0, 2.0})) << "passed as it is";
}

TEST_F(NqSewAngle, StraightArmHasNoAngle) {
    sew.setElbowPoint({0.0, 0.0, 0.2});
    angle({0.0, 0.3, 0.0});
    EXPECT_FALSE(std::isfinite(row(arm)[1]));
}

TEST_F(NqSewAngle, LinksMustFollowEachOtherWhenFirstFound) {
    NqPrintCapture capture;
    sew.setShoulderLink("swing");
    EXPECT_NEAR(angle({0.0, 0.4, 0.0}), 0.0, 1e-15) << "the shoulder may be the elbow";
    sew.setShoulderLink("shoulder");
    sew.setElbowLink("base");
    EXPECT_EQ(row(arm), std::vector<double>(3));
    const std::string message = "NqSewAngleEndEffector::setLinkPointers(): bad link label: ";
    EXPECT_EQ(capture.text(), message + "shoulder, base, or wrist.\n");
    EXPECT_EQ(angle({0.0, 0.0, 0.0}), 9.0) << "left alone";
    NqXmlRealVector v = {5.0, 6.0, 7.0};
    sew.calculateVelocity(arm, state, v, 1);
    EXPECT_EQ(v, NqXmlRealVector({5.0, 0.0, 7.0})) << "lengthened, but not cut";

    // Once found they need only be there.
    sew.setElbowLink("swing");
    EXPECT_NEAR(row(arm)[1], 1.0, 1e-14);
    capture.clear();
    const NqIndividualManipulator swapped = swingArm("swing", "shoulder");
    NqEndEffector::SparsityDescription bits;
    sew.insertSparsityComponent(swapped, 0, {}, true, bits);
    EXPECT_EQ(bits[0], std::vector<bool>({false, false, true})) << "in another order, of another arm";
    EXPECT_EQ(row(swingArm("shoulder", "else")), std::vector<double>(3));
    EXPECT_EQ(capture.text(), "");
    EXPECT_EQ(row(swapped), std::vector<double>(3));
    EXPECT_EQ(capture.text(), message + "shoulder, swing, or wrist.\n");
}

/// The arm of 7 joints as a man's arm: shoulder in link 2, elbow in link 4, wrist in link 6.
TEST(NqSewAngleOfArm7, RateIsThatOfTheRowWithTheShoulderAtRest) {
    const NqTestModel& model = nqTestModels()[2];
    NqSewAngleEndEffector sew;
    sew.setShoulderLink("link2");
    sew.setElbowLink("link4");
    sew.setWristLink("link6");
    std::mt19937_64 random(11);
    for (unsigned pose = 0; pose < 20; ++pose) {
        NqManipulatorActiveState state = nqRandomState(model, random);
        NqVelocityState rates = state.velocityState();
        rates.setJointVelocity(1, 0.0); // joint 1, before the shoulder, moves
        state.setVelocityState(rates);
        NqReArray j;
        sew.insertJacobianComponent(*model.manipulator, 0, {}, true, state, j);
        std::vector<double> product;
        ASSERT_TRUE(j.transform(rates.jointVelocities().values(), product));
        NqXmlRealVector velocity;
        sew.calculateVelocity(*model.manipulator, state, velocity, 0);
        EXPECT_NEAR(velocity[0], product[0], 1e-10 * (1.0 + std::fabs(product[0])));
    }
}

} // namespace
