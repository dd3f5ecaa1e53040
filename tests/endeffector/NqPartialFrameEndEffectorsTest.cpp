#include "support/NqPrintCapture.h"
#include "support/NqTestModels.h"

#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/endeffector/special/NqFreeSpinInZEndEffector.h>
#include <nqControlCore/endeffector/special/NqLookAtEndEffector.h>
#include <nqControlCore/endeffector/special/NqPlanarEndEffector.h>
#include <nqControlCore/endeffector/special/NqRCMEndEffector.h>
#include <nqControlCore/endeffector/special/NqSlideXSpinZEndEffector.h>
#include <nqControlCore/endeffector/special/NqSlidingEndEffector.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// An arm of 7 joints in a pose at random, with a frame, placed obliquely in its hand, for all end-effectors.
class NqPartialFrames : public testing::Test {
protected:
    NqPartialFrames() {
        NqGeneralMotionFilter filter;
        filter.setAngularVelocityThreshold(0.7);
        for (NqFrameBasedEndEffector* each : all) {
            each->setLinkIdentifier(model.link);
            each->setFrame({NqVector(0.1, -0.2, 0.3), NqOrientation(0.9, {1.0, 2.0, -0.5})});
            each->setMotionFilter(filter);
        }
        NqEndEffectorPlacement placement;
        whole.calculatePlacement(arm, state, placement);
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
    NqFrameEndEffector whole;
    std::vector<NqFrameBasedEndEffector*> all{&planar, &sliding, &slideSpin, &freeSpin,
                                              &rcm,    &lookAt,  &whole};
    NqCoordinateSystemTransformation here;
    NqOrientation axes;
};

TEST_F(NqPartialFrames, TheCommandIsThatOfTheWholeFrameInItsOwnAxes) {
    const NqEndEffectorPlacement target = away({0.02, -0.01, 0.03}, NqOrientation(0.05, {0.3, -0.2, 0.5}));
    const NqXmlRealVector unused(5, 0.6);
    struct Case {
        const NqEndEffector& endEffector;
        std::vector<unsigned> rows;
    };
    for (const auto& [endEffector, rows] :
         {Case{planar, {2, 3, 4}}, Case{sliding, {1, 2, 3, 4, 5}}, Case{slideSpin, {1, 2, 3, 4}}}) {
        NqXmlRealVector desired;
        NqVector parts[2];
        for (unsigned row : rows) {
            desired.pushBack(0.01 * (row + 1));
            parts[row / 3][row % 3] = 0.01 * (row + 1);
        }
        const NqVector linear = axes * parts[0];
        const NqVector angular = axes * parts[1];
        const NqXmlRealVector out =
            filter(whole, target, {linear[0], linear[1], linear[2], angular[0], angular[1], angular[2]}, {});
        const NqGeneralMotion own =
            axes.inverse() * NqGeneralMotion({out[0], out[1], out[2]}, {out[3], out[4], out[5]});
        std::vector<double> expected;
        for (unsigned row : rows) {
            expected.push_back(own[row]);
        }
        expectNear(filter(endEffector, target, desired, unused), expected);
    }
}

TEST_F(NqPartialFrames, VelocitiesOfTheWrongSizeAreRefused) {
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
    EXPECT_EQ(capture.text(), "");
    NqReArray rows;
    for (const NqEndEffector* each :
         {static_cast<NqEndEffector*>(&planar), static_cast<NqEndEffector*>(&freeSpin)}) {
        NqEndEffectorPlacement placement(NqVector(1.0, 2.0, 3.0));
        each->insertJacobianComponent(arm, 0, {}, true, state, rows);
        each->calculatePlacement(arm, state, placement);
        EXPECT_EQ(placement.coordSysXForm().translation(), NqVector(1.0, 2.0, 3.0));
    }
    EXPECT_EQ(
        capture.text(),
        "NqFrameEndEffector::insertJacobianComponent(): bad label on frame end effector: lost.\n"
        "NqPlanarEndEffector::calculateFramePlacement():  bad label on frame end effector: lost.\n"
        "NqFreeSpinInZEndEffector::insertJacobianComponent(): bad label on frame end effector: lost.\n"
        "NqFreeSpinInZEndEffector::calculateFramePlacement():  bad label on frame end effector: lost.\n");
}

TEST_F(NqPartialFrames, AFreeSpinIsNeitherAskedForNorCommanded) {
    const NqEndEffectorPlacement spun = away({}, NqOrientation::aboutZ(1.2));
    NqXmlRealVector error;
    freeSpin.calculateEndEffectorError(arm, spun, state, error);
    expectNear(error, {0.0, 0.0, 0.0, 0.0, 0.0});
    EXPECT_NEAR(freeSpin.difference(here, spun), 0.0, 1e-7) << "of an angle near acos(1)";

    // At the target the feed-forward passes, where the step before had it too. A sixth entry is passed over.
    const NqXmlRealVector desired{0.1, -0.2, 0.3, 0.2, -0.1};
    expectNear(filter(freeSpin, spun, {0.1, -0.2, 0.3, 0.2, -0.1, 7.0}, desired), desired.values());
    // From rest the change is limited.
    EXPECT_NEAR(filter(freeSpin, here, desired, NqXmlRealVector(5), 0.01)[4], -0.08 * 0.1 / std::sqrt(0.05),
                1e-12);

    const NqEndEffectorPlacement tilted = away({0.3, 0.4, 0.0}, NqOrientation(0.4, {1.0, 0.0, 0.0}));
    EXPECT_NEAR(freeSpin.difference(here, tilted), 0.5 + 0.2 * 0.4, 1e-12);
    freeSpin.calculateEndEffectorError(arm, tilted, state, error);
    expectNear(error, {0.3, 0.4, 0.0, 0.4, 0.0});
}

TEST_F(NqPartialFrames, ARemoteCentreIsReachedInOneStepAcrossTheLastAxis) {
    const NqEndEffectorPlacement target = away({5.0, 0.3, -0.4});
    EXPECT_NEAR(rcm.difference(here, target),
                std::hypot((axes * NqVector(5.0, 0.3, -0.4)).y(), (axes * NqVector(5.0, 0.3, -0.4)).z()),
                1e-12)
        << "not evaluated yet: the axes of the system";
    expectNear(filter(rcm, target, {}, {}, 0.01), {30.0, -40.0});
    EXPECT_NEAR(rcm.difference(here, target), 0.5, 1e-12);
    rcm.setSpeedFactor(0.5);
    EXPECT_NEAR(rcm.minimumTime(here, target), 0.5, 1e-12) << "the speed factor doesn't count";
    expectNear(filter(rcm, here, {}, {}, 0.0), {0.0, 0.0});
    EXPECT_GT(filter(rcm, target, {}, {}, 0.0)[0], 1e299);

    // Jacobian and velocity take the frame along, the placement doesn't.
    const NqManipulatorActiveState former = state;
    for (unsigned way = 0; way < 3; ++way) {
        NqManipulatorActiveState moved = nqRandomState(model, random);
        NqEndEffectorPlacement there;
        rcm.calculatePlacement(arm, moved, there);
        EXPECT_NEAR(rcm.difference(here, target), 0.5, 1e-12);
        const NqEndEffectorPlacement along =
            there.coordSysXForm() * NqCoordinateSystemTransformation(NqVector(2.0, 0.0, 0.0));
        EXPECT_GT(rcm.difference(there, along), 0.1);
        NqReArray j;
        NqXmlRealVector v;
        if (way == 0) {
            rcm.insertJacobianComponent(arm, 0, {}, true, moved, j);
        } else {
            rcm.calculateVelocity(arm, moved, v, 0);
        }
        EXPECT_NEAR(rcm.difference(there, along), 0.0, 1e-12);
        filter(rcm, target, {}, {});
    }
}

TEST_F(NqPartialFrames, DifferencesAndTimesGoTheirOwnWays) {
    const NqEndEffectorPlacement target(here.translation() + NqVector(0.3, 0.4, -1.2));
    EXPECT_NEAR(planar.difference(here, target), 1.2, 1e-12) << "along z of the system";
    EXPECT_NEAR(sliding.difference(here, target), 1.3, 1e-12);
    EXPECT_NEAR(slideSpin.difference(here, target), 1.3, 1e-12);
    for (NqFrameBasedEndEffector* each : all) {
        each->setSpeedFactor(0.5);
    }
    EXPECT_NEAR(planar.minimumTime(here, target), 2.4, 1e-12);
    EXPECT_NEAR(slideSpin.minimumTime(here, target), 2.6, 1e-12);
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

    expectNear(filter(lookAt, away({5.0, 0.0, 0.0}), {0.5, 0.5}, {0.5, 0.5}), {0.0, 0.0});
    lookAt.setFilteringActive(false);
    expectNear(filter(lookAt, away({5.0, 0.03, -0.04}), {}, {}), {3.0, -4.0});

    const NqEndEffectorPlacement aside = away({2.0, 2.0, 0.0});
    EXPECT_EQ(lookAt.difference(focus, aside), 0.0);
    EXPECT_EQ(lookAt.minimumTime(focus, aside), 0.0);
    ScaledLookAt scaled;
    scaled.setFocusDistance(2.0);
    EXPECT_NEAR(scaled.difference(focus, aside), 3.0 * std::atan(1.0), 1e-12);
    EXPECT_EQ(NqLookAtEndEffector().linearErrorWeight(), 0.1);
}

TEST_F(NqPartialFrames, ACameraKnowsNoRelativeLinkAndNoBase) {
    NqEndEffectorRelativeLinkData relative;
    relative.setRelativeMode(NqEndEffectorRelativeLinkData::relativeModeInternal);
    relative.setRelativeLinkID(model.secondLink);
    NqReArray plain, related;
    NqPrintCapture capture;
    lookAt.insertJacobianComponent(arm, 0, {}, false, state, plain);
    lookAt.insertJacobianComponent(arm, 0, relative, false, state, related);
    EXPECT_EQ(related, plain);
    EXPECT_EQ(plain[1].back(), 0.0);
    NqEndEffector::SparsityDescription sparsity;
    lookAt.insertSparsityComponent(arm, 0, {}, false, sparsity);
    EXPECT_EQ(sparsity[1], std::vector<bool>(13, true));
    relative.setRelativeLinkID("lost");
    lookAt.insertJacobianComponent(arm, 0, relative, false, state, related);
    lookAt.insertSparsityComponent(arm, 0, relative, false, sparsity);
    EXPECT_EQ(capture.text(),
              "NqLookAtEndEffector::insertSparsityComponent(): bad index on relative link: lost.\n");

    NqLabelVector values = lookAt.editableValues();
    values[16] = std::string("0.75");
    values.pushBack(std::string("1"));
    lookAt.setEditableValues(values);
    EXPECT_EQ(lookAt.focusDistance(), 0.75) << "a longer list is taken";
}

} // namespace
