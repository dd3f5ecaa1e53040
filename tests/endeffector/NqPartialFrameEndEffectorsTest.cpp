#include "support/NqPrintCapture.h"
#include "support/NqTestModels.h"

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// An arm of 7 joints in a pose at random, with a frame, placed obliquely in its hand, for all end-effectors.
class NqPartialFrames : public testing::Test {
protected:
    NqPartialFrames() {
        for (NqFrameBasedEndEffector* each : all) {
            each->setLinkIdentifier(model.link);
            each->setFrame({NqVector(0.1, -0.2, 0.3), NqOrientation(0.9, {1.0, 2.0, -0.5})});
        }
        NqEndEffectorPlacement placement;
        planar.calculatePlacement(arm, state, placement);
        here = placement;
        axes = here.orientation();
    }

    /// The present frame, moved and turned in its own axes.
    NqEndEffectorPlacement away(const NqVector& way, const NqOrientation& turn = {}) const {
        return here * NqCoordinateSystemTransformation(way, turn);
    }

    NqXmlRealVector filter(const NqEndEffector& endEffector, const NqEndEffectorPlacement& target,
                           const NqXmlRealVector& desired, const NqXmlRealVector& previous, double h = 0.01) {
        NqXmlRealVector filtered(1, 9.0);
        endEffector.filterEndEffectorVelocity(arm, target, desired, previous, h, state, filtered);
        return filtered;
    }

    static void expectNear(const NqXmlRealVector& actual, const std::vector<double>& expected) {
        ASSERT_EQ(actual.size(), expected.size());
        for (unsigned i = 0; i < expected.size(); ++i) {
            EXPECT_NEAR(actual[i], expected[i], 1e-12) << "entry " << i;
        }
    }

    const NqTestModel& model = nqTestModels()[2];
    const NqIndividualManipulator& arm = *model.manipulator;
    std::mt19937_64 random{7};
    NqManipulatorActiveState state = nqRandomState(model, random);
    NqPlanarEndEffector planar;
    NqSlidingEndEffector sliding;
    NqSlideXSpinZEndEffector slideSpin;
    NqFreeSpinInZEndEffector freeSpin;
    NqRCMEndEffector rcm;
    NqLookAtEndEffector lookAt;
    std::vector<NqFrameBasedEndEffector*> all{&planar, &sliding, &slideSpin, &freeSpin, &rcm, &lookAt};
    NqCoordinateSystemTransformation here;
    NqOrientation axes;
};

TEST_F(NqPartialFrames, CommandsAreTheRowsInTheFramesOwnAxes) {
    const double way[] = {0.02, -0.01, 0.03, 0.2, -0.1, 0.3};
    const NqVector turn(way[3], way[4], way[5]);
    const NqEndEffectorPlacement target = away({way[0], way[1], way[2]}, NqOrientation(turn.mag(), turn));
    const auto check = [&](NqFrameBasedEndEffector& endEffector, std::initializer_list<unsigned> rows) {
        std::vector<double> expected;
        for (const unsigned row : rows) {
            expected.push_back(way[row]);
        }
        expectNear(filter(endEffector, here, expected, {}, 1.0), expected); // as feed-forward
        NqXmlRealVector fast(expected.size());
        fast[0] = 1.0;
        EXPECT_NEAR(filter(endEffector, here, fast, fast)[0], 0.08, 1e-12) << "every step is from rest";
        endEffector.setFilteringActive(false);
        expectNear(filter(endEffector, target, fast, {}, 1.0), expected);
    };
    check(planar, {2, 3, 4});
    check(sliding, {1, 2, 3, 4, 5});
    check(slideSpin, {1, 2, 3, 4});
}

TEST_F(NqPartialFrames, VelocitiesOfTheWrongSizeAndLostLinksAreRefused) {
    NqPrintCapture capture;
    const NqXmlRealVector untouched(1, 9.0);
    EXPECT_EQ(filter(planar, {}, NqXmlRealVector(4), {}), untouched);
    EXPECT_EQ(filter(sliding, {}, NqXmlRealVector(4), {}), untouched);
    EXPECT_EQ(filter(slideSpin, {}, NqXmlRealVector(5), {}), untouched);
    EXPECT_EQ(filter(freeSpin, {}, NqXmlRealVector(5), NqXmlRealVector(4)), untouched);
    const std::string tail = "EndEffector::filterEndEffectorVelocity input velocity size wrong.";
    EXPECT_EQ(capture.text(),
              "NqPlanar" + tail + "NqSliding" + tail + "NqSlideXSpinZ" + tail + "NqFreeSpinInZ" + tail);
    capture.clear();
    for (NqFrameBasedEndEffector* each : all) {
        each->setLinkIdentifier("lost");
    }
    EXPECT_EQ(filter(sliding, {}, NqXmlRealVector(5), {}), untouched);
    EXPECT_EQ(filter(freeSpin, {}, NqXmlRealVector(6), NqXmlRealVector(5)), untouched);
    EXPECT_EQ(filter(rcm, {}, {}, {}).size(), 2u);
    NqReArray rows;
    NqEndEffectorPlacement placement;
    planar.insertJacobianComponent(arm, 0, {}, true, state, rows);
    freeSpin.insertJacobianComponent(arm, 0, {}, true, state, rows);
    rcm.calculatePlacement(arm, state, placement);
    EXPECT_EQ(capture.text(),
              "NqFrameEndEffector::insertJacobianComponent(): bad label on frame end effector: lost.\n"
              "NqFreeSpinInZEndEffector::insertJacobianComponent(): bad label on frame end effector: lost.\n"
              "NqRCMEndEffector::calculateFramePlacement():  bad label on frame end effector: lost.\n");
}

TEST_F(NqPartialFrames, AFreeSpinIsNeitherAskedForNorCommanded) {
    const NqEndEffectorPlacement spun = away({}, NqOrientation::aboutZ(1.2));
    NqXmlRealVector error;
    freeSpin.calculateEndEffectorError(arm, spun, state, error);
    expectNear(error, {0.0, 0.0, 0.0, 0.0, 0.0});
    EXPECT_NEAR(freeSpin.difference(here, spun), 0.0, 1e-7) << "of an angle near acos(1)";

    // At the target the feed-forward passes, where the step before had it too. A sixth entry is passed over.
    const NqXmlRealVector desired{0.1, -0.2, 0.3, 0.2, -0.1, 7.0};
    expectNear(filter(freeSpin, spun, desired, desired), {0.1, -0.2, 0.3, 0.2, -0.1});
    EXPECT_LT(filter(freeSpin, spun, desired, NqXmlRealVector(5))[0], 0.05) << "from rest it is limited";

    const NqEndEffectorPlacement tilted = away({0.3, 0.4, 0.0}, NqOrientation(0.4, {1.0, 0.0, 0.0}));
    EXPECT_NEAR(freeSpin.difference(here, tilted), 0.5 + 0.2 * 0.4, 1e-12);
    freeSpin.calculateEndEffectorError(arm, tilted, state, error);
    expectNear(error, {0.3, 0.4, 0.0, 0.4, 0.0});
}

TEST_F(NqPartialFrames, ARemoteCentreIsReachedInOneStepAcrossTheLastAxis) {
    const NqEndEffectorPlacement target = away({5.0, 0.3, -0.4});
    expectNear(filter(rcm, target, {}, {}, 0.01), {30.0, -40.0});
    rcm.setSpeedFactor(0.5);
    EXPECT_NEAR(rcm.minimumTime(here, target), 0.5, 1e-12) << "the speed factor doesn't count";
    EXPECT_GT(filter(rcm, target, {}, {}, 0.0)[0], 1e299);

    // Jacobian and velocity take the axes along, placement and acceleration don't.
    for (const bool byRows : {true, false}) {
        NqManipulatorActiveState moved = nqRandomState(model, random);
        NqEndEffectorPlacement there;
        NqXmlRealVector values;
        NqReArray rows;
        rcm.calculatePlacement(arm, moved, there);
        rcm.calculateAcceleration(arm, moved, values, 0);
        const NqCoordinateSystemTransformation& frame = there;
        const NqEndEffectorPlacement along(frame * NqVector(2.0, 0.0, 0.0));
        EXPECT_GT(rcm.difference(there, along), 0.1);
        byRows ? rcm.insertJacobianComponent(arm, 0, {}, true, moved, rows)
               : rcm.calculateVelocity(arm, moved, values, 0);
        EXPECT_NEAR(rcm.difference(there, along), 0.0, 1e-12);
    }
}

TEST_F(NqPartialFrames, DifferencesAndTimesGoTheirOwnWays) {
    const NqEndEffectorPlacement target(here.translation() + NqVector(0.3, 0.4, -1.2));
    EXPECT_NEAR(planar.difference(here, target), 1.2, 1e-12) << "along z of the system";
    EXPECT_NEAR(sliding.difference(here, target), 1.3, 1e-12);
    slideSpin.setSpeedFactor(0.5);
    EXPECT_NEAR(slideSpin.minimumTime(here, target), 2.6, 1e-12);
    sliding.setSpeedFactor(0.5);
    EXPECT_NEAR(sliding.minimumTime(here, target), 1.3, 1e-12) << "the speed factor doesn't count";
}

TEST_F(NqPartialFrames, BitsOfAnEarlierCallAreCleared) {
    NqEndEffector::SparsityDescription sparsity(1, std::vector<bool>(9, true));
    planar.setLinkIdentifier(arm.linkByIndex(0)->linkLabel());
    planar.insertSparsityComponent(arm, 0, {}, true, sparsity);
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
    NqEndEffectorPlacement focus;
    lookAt.calculatePlacement(arm, state, focus);
    EXPECT_NEAR((focus.coordSysXForm().translation() - here * NqVector(2.0, 0.0, 0.0)).mag(), 0.0, 1e-12);

    // From rest, and as if there were no way ahead.
    expectNear(filter(lookAt, away({5.0, 0.03, -0.04}), {0.5, 0.5}, {0.5, 0.5}), {0.048, -0.064});
    lookAt.setFilteringActive(false);
    expectNear(filter(lookAt, away({5.0, 0.03, -0.04}), {}, {}), {3.0, -4.0});

    const NqEndEffectorPlacement aside = away({2.0, 2.0, 0.0});
    EXPECT_EQ(lookAt.difference(focus, aside), 0.0);
    ScaledLookAt scaled;
    scaled.setFocusDistance(2.0);
    EXPECT_NEAR(scaled.difference(focus, aside), 3.0 * std::atan(1.0), 1e-12);
}

TEST_F(NqPartialFrames, ACameraKnowsNoRelativeLinkAndNoBase) {
    NqEndEffectorRelativeLinkData relative;
    relative.setRelativeMode(NqEndEffectorRelativeLinkData::relativeModeInternal);
    relative.setRelativeLinkID(model.secondLink);
    NqReArray plain, related;
    lookAt.insertJacobianComponent(arm, 0, {}, false, state, plain);
    lookAt.insertJacobianComponent(arm, 0, relative, false, state, related);
    EXPECT_EQ(related, plain);
    EXPECT_EQ(plain[1].back(), 0.0);
    NqEndEffector::SparsityDescription sparsity;
    lookAt.insertSparsityComponent(arm, 0, {}, false, sparsity);
    EXPECT_EQ(sparsity[1], std::vector<bool>(13, true));
}

} // namespace
