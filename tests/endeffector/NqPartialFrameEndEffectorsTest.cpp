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

    // It knows no relative link and no base.
    const NqReArray plain = rows(lookAt, {}, false);
    EXPECT_EQ(rows(lookAt, internalTo(nqTestModels()[2].secondLink), false), plain);
    EXPECT_EQ(plain[1].back(), 0.0);
    EXPECT_EQ(bits(lookAt, {}, false)[1], std::vector<bool>(13, true));
}

} // namespace
