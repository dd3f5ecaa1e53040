#include "endeffector/NqEndEffectorTest.h"

namespace {

/// An arm of 7 joints in a pose at random, with a frame, placed obliquely in its hand, for all end-effectors.
struct NqPartialFrames : NqEndEffectorTest {
    NqPartialFrames() : NqEndEffectorTest(nqTestModels()[2], 7) {
        for (NqFrameBasedEndEffector* each : all) {
            each->setLinkIdentifier(nqTestModels()[2].link);
            each->setFrame({NqVector(0.1, -0.2, 0.3), NqOrientation(0.9, {1.0, 2.0, -0.5})});
        }
        here = placement(planar);
    }

    /// The present frame, moved and turned in its own axes.
    Placement away(const NqVector& way, const NqOrientation& turn = {}) const {
        return here * Pose(way, turn);
    }

    NqPlanarEndEffector planar;
    NqSlidingEndEffector sliding;
    NqSlideXSpinZEndEffector slideSpin;
    NqFreeSpinInZEndEffector freeSpin;
    NqRCMEndEffector rcm;
    NqLookAtEndEffector lookAt;
    std::vector<NqFrameBasedEndEffector*> all{&planar, &sliding, &slideSpin, &freeSpin, &rcm, &lookAt};
    Pose here;
};

TEST_F(NqPartialFrames, CommandsAreTheRowsInTheFramesOwnAxes) {
    const double way[] = {0.02, -0.01, 0.03, 0.2, -0.1, 0.3};
    const NqVector turn(way[3], way[4], way[5]);
    const Placement target = away({way[0], way[1], way[2]}, NqOrientation(turn.mag(), turn));
    const auto check = [&](NqFrameBasedEndEffector& e, std::initializer_list<unsigned> rows) {
        Row expected;
        for (const unsigned row : rows) {
            expected.push_back(way[row]);
        }
        Reals fast(expected.size());
        fast[0] = 1.0;
        expectNear(filtered(e, here, expected, {}, 1.0), expected); // as feed-forward
        EXPECT_NEAR(filtered(e, here, fast, fast)[0], 0.08, 1e-12) << "every step is from rest";
        e.setFilteringActive(false);
        expectNear(filtered(e, target, fast, {}, 1.0), expected);
    };
    check(planar, {2, 3, 4});
    check(sliding, {1, 2, 3, 4, 5});
    check(slideSpin, {1, 2, 3, 4});
}

TEST_F(NqPartialFrames, VelocitiesOfTheWrongSizeAndLostLinksAreRefused) {
    NqPrintCapture capture;
    const auto expectRefused = [&](const NqEndEffector& e, unsigned desired, unsigned previous) {
        EXPECT_EQ(filtered(e, {}, Reals(desired), Reals(previous), 0.01, {9.0}), Reals({9.0}));
    };
    expectRefused(planar, 4, 0);
    expectRefused(sliding, 4, 0);
    expectRefused(slideSpin, 5, 0);
    expectRefused(freeSpin, 5, 4);
    const std::string tail = "EndEffector::filterEndEffectorVelocity input velocity size wrong.";
    EXPECT_EQ(capture.text(),
              "NqPlanar" + tail + "NqSliding" + tail + "NqSlideXSpinZ" + tail + "NqFreeSpinInZ" + tail);
    capture.clear();
    for (NqFrameBasedEndEffector* each : all) {
        each->setLinkIdentifier("lost");
    }
    expectRefused(sliding, 5, 0);
    expectRefused(freeSpin, 6, 5);
    EXPECT_EQ(filtered(rcm, {}).size(), 2u);
    rows(planar);
    rows(freeSpin);
    placement(rcm);
    EXPECT_EQ(capture.text(),
              "NqFrameEndEffector::insertJacobianComponent(): bad label on frame end effector: lost.\n"
              "NqFreeSpinInZEndEffector::insertJacobianComponent(): bad label on frame end effector: lost.\n"
              "NqRCMEndEffector::calculateFramePlacement():  bad label on frame end effector: lost.\n");
}

TEST_F(NqPartialFrames, AFreeSpinIsNeitherAskedForNorCommanded) {
    const Placement spun = away({}, NqOrientation::aboutZ(1.2));
    expectNear(error(freeSpin, spun), {0.0, 0.0, 0.0, 0.0, 0.0});
    EXPECT_NEAR(freeSpin.difference(here, spun), 0.0, 1e-7) << "of an angle near acos(1)";

    // At the target the feed-forward passes, where the step before had it too. A sixth entry is passed over.
    const Reals desired{0.1, -0.2, 0.3, 0.2, -0.1, 7.0};
    expectNear(filtered(freeSpin, spun, desired, desired), {0.1, -0.2, 0.3, 0.2, -0.1});
    EXPECT_LT(filtered(freeSpin, spun, desired, Reals(5))[0], 0.05) << "from rest it is limited";

    const Placement tilted = away({0.3, 0.4, 0.0}, NqOrientation(0.4, {1.0, 0.0, 0.0}));
    EXPECT_NEAR(freeSpin.difference(here, tilted), 0.5 + 0.2 * 0.4, 1e-12);
    expectNear(error(freeSpin, tilted), {0.3, 0.4, 0.0, 0.4, 0.0});
}

TEST_F(NqPartialFrames, ARemoteCentreIsReachedInOneStepAcrossTheLastAxis) {
    const Placement target = away({5.0, 0.3, -0.4});
    expectNear(filtered(rcm, target), {30.0, -40.0});
    rcm.setSpeedFactor(0.5);
    EXPECT_NEAR(rcm.minimumTime(here, target), 0.5, 1e-12) << "the speed factor doesn't count";
    EXPECT_GT(filtered(rcm, target, {}, {}, 0.0)[0], 1e299);

    // Jacobian and velocity take the axes along, placement and acceleration don't.
    for (const bool byRows : {true, false}) {
        state = nqRandomState(nqTestModels()[2], random);
        const Pose there = placement(rcm);
        acceleration(rcm);
        const Placement along(there * NqVector(2.0, 0.0, 0.0));
        EXPECT_GT(rcm.difference(there, along), 0.1);
        byRows ? void(rows(rcm)) : void(velocity(rcm));
        EXPECT_NEAR(rcm.difference(there, along), 0.0, 1e-12);
    }
}

TEST_F(NqPartialFrames, DifferencesAndTimesGoTheirOwnWays) {
    const Placement target(here.translation() + NqVector(0.3, 0.4, -1.2));
    EXPECT_NEAR(planar.difference(here, target), 1.2, 1e-12) << "along z of the system";
    EXPECT_NEAR(sliding.difference(here, target), 1.3, 1e-12);
    slideSpin.setSpeedFactor(0.5);
    EXPECT_NEAR(slideSpin.minimumTime(here, target), 2.6, 1e-12);
    sliding.setSpeedFactor(0.5);
    EXPECT_NEAR(sliding.minimumTime(here, target), 1.3, 1e-12) << "the speed factor doesn't count";
}

TEST_F(NqPartialFrames, BitsOfAnEarlierCallAreCleared) {
    Sparsity sparsity(1, std::vector<bool>(9, true));
    planar.setLinkIdentifier(manipulator.linkByIndex(0)->linkLabel());
    planar.insertSparsityComponent(manipulator, 0, {}, true, sparsity);
    std::vector<bool> row(7, false);
    row[0] = true;
    EXPECT_EQ(sparsity[1], row);
    row.insert(row.end(), {true, true});
    EXPECT_EQ(sparsity[0], row) << "what lies behind the columns stays";
}

/// With an angular scale, which files don't have.
class ScaledLookAt : public NqLookAtEndEffector {
public:
    ScaledLookAt() { m_AngularScale = 3.0; }
};

TEST_F(NqPartialFrames, ACameraSeesOnlyWhatIsAcross) {
    lookAt.setFocusDistance(2.0);
    const Pose focus = placement(lookAt);
    expectNear(focus.translation(), here * NqVector(2.0, 0.0, 0.0), 1e-12);

    // From rest, and as if there were no way ahead.
    expectNear(filtered(lookAt, away({5.0, 0.03, -0.04}), {0.5, 0.5}, {0.5, 0.5}), {0.048, -0.064});
    lookAt.setFilteringActive(false);
    expectNear(filtered(lookAt, away({5.0, 0.03, -0.04})), {3.0, -4.0});

    const Placement aside = away({2.0, 2.0, 0.0});
    EXPECT_EQ(lookAt.difference(focus, aside), 0.0);
    ScaledLookAt scaled;
    scaled.setFocusDistance(2.0);
    EXPECT_NEAR(scaled.difference(focus, aside), 3.0 * std::atan(1.0), 1e-12);

    // It knows no relative link and no base.
    const NqReArray plain = rows(lookAt, {}, false);
    EXPECT_EQ(rows(lookAt, internalTo(nqTestModels()[2].secondLink), false), plain);
    EXPECT_EQ(plain[1].back(), 0.0);
    EXPECT_EQ(bits(lookAt, {}, false)[1], std::vector<bool>(13, true));
}

} // namespace
