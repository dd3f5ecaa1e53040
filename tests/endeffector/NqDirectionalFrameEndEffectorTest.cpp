#include "endeffector/NqEndEffectorTest.h"

namespace {

using Frame = NqDirectionalFrameEndEffector;

constexpr Frame::ThresholdType theTypes[] = {Frame::LinearVelocity,     Frame::AngularVelocity,
                                             Frame::LinearAcceleration, Frame::AngularAcceleration,
                                             Frame::LinearDeceleration, Frame::AngularDeceleration};

struct NqDirectionalFrame : NqEndEffectorTest {
    NqDirectionalFrame() : NqEndEffectorTest(nqTestModels()[2], 5) { frame.setLinkIdentifier("link7"); }

    /// The limits of the filter after a step towards a target, by type.
    std::array<double, 6> limitsTowards(const Placement& target) {
        filtered(frame, target);
        const NqGeneralMotionFilter& f = frame.motionFilter();
        return {f.linearVelocityThreshold(),     f.angularVelocityThreshold(),
                f.linearAccelerationThreshold(), f.angularAccelerationThreshold(),
                f.linearDecelerationThreshold(), f.angularDecelerationThreshold()};
    }

    /// The limit in a direction, from its angles with the axes of the reference frame.
    double expectedLimit(Frame::ThresholdType type, const NqVector& direction,
                         const NqOrientation& reference) {
        NqVector axes[3];
        reference.getDcmColumns(axes[0], axes[1], axes[2]);
        double square = 0.0;
        for (unsigned i = 0; i < 3; ++i) {
            const double cosine = axes[i].dot(direction);
            NqXmlBasicType<double> limit = frame.defaultThreshold(type);
            const auto key = static_cast<unsigned short>(cosine < 0.0 ? 2 * i + 1 : 2 * i);
            frame.directionalThresholdMap(type).lookup(key, limit);
            square += cosine * limit * cosine * limit;
        }
        return std::sqrt(square);
    }

    Frame frame;
};

TEST_F(NqDirectionalFrame, LimitsAreThoseOfTheDirectionInTheReferenceFrame) {
    std::uniform_real_distribution<double> uniform(0.1, 2.0);
    for (unsigned round = 0; round < 50; ++round) {
        for (const Frame::ThresholdType type : theTypes) {
            Frame::ThresholdMap map;
            for (unsigned short key = 0; key < 6; ++key) {
                if (uniform(random) > 0.7) {
                    map.add(key, uniform(random));
                }
            }
            map.add(static_cast<unsigned short>(6), 1e6);
            frame.setDefaultThreshold(type, uniform(random));
            frame.setDirectionalThresholdMap(type, map);
        }
        state = nqRandomState(nqTestModels()[2], random);
        frame.setReferenceOffset(nqRandomFrame(random).orientation());
        frame.setReferenceLinkLabel(round % 3 == 0 ? "link3" : (round % 3 == 1 ? "nowhere" : ""));
        NqOrientation reference = frame.referenceOffset();
        if (const NqManipulatorLink* link = manipulator.linkByLabel(frame.referenceLinkLabel())) {
            reference = link->primaryFrameInSystem(state.activePositionState()).orientation() * reference;
        }
        const NqVector way = nqRandomVector(random), axis = nqRandomVector(random).unitVector();
        const Pose here = placement(frame);
        const std::array<double, 6> limits = limitsTowards(
            Pose(here.translation() + way, NqOrientation(uniform(random), axis) * here.orientation()));
        for (const Frame::ThresholdType type : theTypes) {
            const NqVector direction = type % 2 == 0 ? way.unitVector() : axis;
            EXPECT_NEAR(limits[type], expectedLimit(type, direction, reference), 1e-12)
                << "type " << type << ", round " << round;
        }
    }
}

TEST_F(NqDirectionalFrame, DefaultsComeIntoForceWithTheNextMap) {
    Frame::ThresholdMap map;
    map.add(static_cast<unsigned short>(0), 3.0);
    frame.setDirectionalThresholdMap(Frame::LinearVelocity, map);
    frame.setMotionThreshold(0.25);
    frame.setAccelerationThreshold(0.5);
    EXPECT_EQ(frame.defaultThreshold(Frame::LinearAcceleration), 0.5);
    const Pose here = placement(frame);
    const Pose below(here.translation() - NqVector::zVector(0.1), here.orientation());
    EXPECT_EQ(limitsTowards(below)[0], 1.0);
    EXPECT_EQ(frame.minimumTime(here, below), frame.difference(here, below) / 0.25);
    frame.setDirectionalThresholdMap(Frame::LinearVelocity, map);
    EXPECT_EQ(limitsTowards(below)[0], 0.25);
    EXPECT_EQ(limitsTowards(below)[2], 1.0) << "of another type";
    EXPECT_NEAR(filtered(frame, below, {}, {0.0, 0.0, -0.1})[2], -0.1 - 0.01 * 1.0, 1e-12);
    EXPECT_NEAR(filtered(frame, below, {0.0, 0.0, 0.4}, {0.0, 0.0, -0.05})[2], 0.4 - std::sqrt(0.2), 1e-12);
    EXPECT_EQ(limitsTowards(here)[0], 3.0) << "without a way, along x";
}

TEST_F(NqDirectionalFrame, ListsOfLimitsLeaveOutWhatIsNoNumber) {
    const auto set = [&](const std::string& text) { return edited(frame, 18, text); };
    EXPECT_EQ(set("1,,3"), "1,,3,,,");
    EXPECT_EQ(set("a, 2,1e-3x,inf,5,6,7"), ",,,INF,5,6");
    EXPECT_EQ(set(set("0.1,1e300,0.30000000000000004")), "0.1,1e+300,0.30000000000000004,,,");
    EXPECT_EQ(set(""), "");
}

TEST_F(NqDirectionalFrame, ShortListsOfAFileAreFilledUp) {
    NqPrintCapture capture;
    ASSERT_TRUE(NqXmlDocument::readString(
        "<directionalFrameEndEffector xmlns=\"http://nq.example/namespace/ct#\"><linkIdentifier>link7"
        "</linkIdentifier><defaultThresholds>0.5 0.25</defaultThresholds><thresholdMaps count=\"1\"><element>"
        "<element><key>5</key><value>0.125</value></element></element></thresholdMaps>"
        "</directionalFrameEndEffector>",
        frame));
    EXPECT_EQ(capture.text(), "");
    const Pose here = placement(frame);
    EXPECT_EQ(limitsTowards(Pose(here.translation() - NqVector::zVector(1.0), here.orientation())),
              (std::array<double, 6>{0.125, 0.25, 1.0, 1.0, 1.0, 1.0}));
}

} // namespace
