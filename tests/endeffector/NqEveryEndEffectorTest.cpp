#include "endeffector/NqEndEffectorSamples.h"
#include "support/NqPrintCapture.h"
#include "support/NqSchemaValidator.h"
#include "support/NqXmlRoundTrip.h"

#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/foundation/xml/NqXmlCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/xml/NqXmlOrientation.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>

namespace {

using RelativeData = NqEndEffectorRelativeLinkData;
using Sparsity = NqEndEffector::SparsityDescription;

/// One type on one model. The seed of a test is printed when it fails.
class EveryEndEffector : public testing::TestWithParam<std::tuple<std::size_t, std::size_t>> {
protected:
    static constexpr unsigned poses = 5;
    static constexpr unsigned seed = 20240731;

    const NqEndEffectorKind& kind = nqEndEffectorKinds()[std::get<0>(GetParam())];
    const NqTestModel& model = nqTestModels()[std::get<1>(GetParam())];
    const NqIndividualManipulator& manipulator = *model.manipulator;
    const bool fixedBase = !model.movesBase;
    std::mt19937_64 random{seed};
    std::unique_ptr<NqEndEffector> endEffector = kind.make(model);

    static RelativeData relativeTo(const std::string& link, RelativeData::RelativeMode mode) {
        RelativeData data;
        data.setRelativeMode(mode);
        data.setRelativeLinkID(link);
        return data;
    }

    NqReArray jacobian(NqManipulatorActiveState& state, const RelativeData& relative = {}) const {
        NqReArray j;
        endEffector->insertJacobianComponent(manipulator, 0, relative, fixedBase, state, j);
        return j;
    }

    NqXmlRealVector velocity(NqManipulatorActiveState& state) const {
        NqXmlRealVector v;
        endEffector->calculateVelocity(manipulator, state, v, 0);
        return v;
    }

    /// Joint rates, then the motion of a free base: what the columns of the Jacobian multiply.
    std::vector<double> rates(NqManipulatorActiveState& state) const {
        std::vector<double> x = state.velocityState().jointVelocities();
        for (unsigned i = 0; i < 6 && !fixedBase; ++i) {
            x.push_back(state.velocityState().baseMotion()[i]);
        }
        return x;
    }

    static void expectNear(const NqXmlRealVector& actual, const std::vector<double>& expected,
                           double tolerance, const std::string& what) {
        ASSERT_EQ(actual.size(), expected.size()) << what;
        double scale = 1.0;
        for (double x : expected) {
            scale = std::max(scale, std::fabs(x));
        }
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_NEAR(actual[i], expected[i], tolerance * scale)
                << what << ", row " << i << ", seed " << seed;
        }
    }

    /// A state at random. The base and sliding joints rest where their columns aren't their motion.
    NqManipulatorActiveState randomState(bool movesBase) {
        NqManipulatorActiveState state = nqRandomState(model, random);
        state.setAccelerationState(NqAccelerationState(manipulator.numberOfJoints()));
        NqVelocityState velocities = state.velocityState();
        if (!movesBase) {
            velocities.setBaseMotion({});
        }
        for (unsigned j = 0; j < manipulator.numberOfJoints() && !kind.traits.whyNoSliding.empty(); ++j) {
            if (manipulator.linkByIndex(j)->joint().type() == NqJointDescription::Prismatic) {
                velocities.setJointVelocity(j, 0.0);
            }
        }
        state.setVelocityState(velocities);
        return state;
    }

    /// Central differences of what `valueOf` gives.
    template <typename ValueOf>
    static NqXmlRealVector differences(NqManipulatorActiveState& state, ValueOf valueOf) {
        constexpr double h = 1e-5;
        NqManipulatorActiveState earlier = nqMoved(state, -h);
        NqManipulatorActiveState later = nqMoved(state, h);
        const NqXmlRealVector before = valueOf(earlier);
        NqXmlRealVector change = valueOf(later);
        for (std::size_t i = 0; i < change.size(); ++i) {
            change[i] = (change[i] - before[i]) / (2.0 * h);
        }
        return change;
    }

    /// The rows for a motion of the end-effector's frame, in the present state, or what `rows` gives instead.
    NqXmlRealVector rowsOf(NqManipulatorActiveState& state, const NqGeneralMotion& motion,
                           const NqOrientation& reference,
                           const decltype(NqEndEffectorTraits::rows)& rows) const {
        const NqManipulatorLink* link = manipulator.linkByLabel(endEffector->linkIdentifier());
        NqRowAxes axes{link->primaryFrameInSystem(state.activePositionState()).orientation(), reference};
        if (const auto* onFrame = dynamic_cast<const NqFrameBasedEndEffector*>(endEffector.get())) {
            axes.own = axes.own * onFrame->motionFrame().orientation();
        }
        return NqXmlRealVector(rows(*endEffector, motion, axes));
    }

    /// The rows for the change of the placement, by central differences: in the system, or in the frame of a
    /// link.
    NqXmlRealVector placementRates(NqManipulatorActiveState& state, const NqManipulatorLink* reference,
                                   const decltype(NqEndEffectorTraits::rows)& rows) {
        const auto placementIn = [&](NqManipulatorActiveState& moved) {
            NqEndEffectorPlacement placement;
            if (reference) {
                endEffector->calculatePlacementInRelative(manipulator, moved, placement);
            } else {
                endEffector->calculatePlacement(manipulator, moved, placement);
            }
            return placement.coordSysXForm();
        };
        const NqCoordinateSystemTransformation present = placementIn(state);
        const NqOrientation turn =
            reference ? reference->primaryFrameInSystem(state.activePositionState()).orientation()
                      : NqOrientation();
        const NqXmlRealVector rate = differences(state, [&](NqManipulatorActiveState& moved) {
            const NqCoordinateSystemTransformation there = placementIn(moved);
            const NqVector linear = turn * there.translation();
            double q[4];
            (there.orientation() * present.orientation().inverse()).getQuaternion(q[0], q[1], q[2], q[3]);
            const NqVector angular = turn * NqVector(q[1], q[2], q[3]) * (q[0] > 0.0 ? 2.0 : -2.0);
            return NqXmlRealVector{linear[0], linear[1], linear[2], angular[0], angular[1], angular[2]};
        });
        return rowsOf(state, {{rate[0], rate[1], rate[2]}, {rate[3], rate[4], rate[5]}}, turn, rows);
    }

    /// The Jacobian against central differences of the error, and of the placement or the number in it, in
    /// the direction of the state's velocity, and against the velocity.
    void expectJacobianMatches() {
        for (unsigned pose = 0; pose < poses; ++pose) {
            NqManipulatorActiveState state = randomState(kind.traits.whyNoBaseMotion.empty());
            const NqReArray j = jacobian(state);
            std::vector<double> product;
            ASSERT_TRUE(j.transform(rates(state), product));
            const std::size_t rows = kind.traits.whyOnlyTheFirstRow.empty() ? product.size() : 1;
            product.resize(rows);
            const auto compared = [&](NqXmlRealVector values) {
                values.resize(std::min(values.size(), rows));
                return values;
            };
            if (kind.traits.whyNoVelocity.empty()) {
                expectNear(compared(velocity(state)), product, 1e-10,
                           "velocity against Jacobian times rates");
            }
            NqEndEffectorPlacement here;
            endEffector->calculatePlacement(manipulator, state, here);
            const NqXmlRealVector change = differences(state, [&](NqManipulatorActiveState& moved) {
                NqXmlRealVector error;
                endEffector->calculateEndEffectorError(manipulator, here, moved, error);
                for (double& entry : error) {
                    entry *= kind.traits.errorSign;
                }
                return error;
            });
            if (kind.traits.whyNoError.empty()) {
                expectNear(compared(change), product, 1e-6, "differences of the error");
            } else if (kind.traits.errorRows) {
                expectNear(change, placementRates(state, nullptr, kind.traits.errorRows), 1e-6,
                           "differences of the error that isn't that of the rows");
            }
            if (kind.traits.rows) {
                expectNear(placementRates(state, nullptr, kind.traits.rows), product, 1e-6,
                           "differences of the placement");
            } else if (kind.traits.hasNumber) {
                const NqXmlRealVector rate = differences(state, [&](NqManipulatorActiveState& moved) {
                    endEffector->calculatePlacement(manipulator, moved, here);
                    return NqXmlRealVector{here.coordSysXForm().translation().z()};
                });
                expectNear(rate, product, 1e-6, "differences of the number");
            } else if (kind.traits.whyNoPlacement.empty()) {
                const NqXmlRealVector rate = differences(state, [&](NqManipulatorActiveState& moved) {
                    endEffector->calculatePlacement(manipulator, moved, here);
                    return here.dataVector();
                });
                expectNear(rate, product, 1e-6, "differences of the list in the placement");
            }
        }
    }
};

std::string describe(const testing::TestParamInfo<std::tuple<std::size_t, std::size_t>>& info) {
    return nqEndEffectorKinds()[std::get<0>(info.param)].name + "_" +
           nqTestModels()[std::get<1>(info.param)].name;
}

INSTANTIATE_TEST_SUITE_P(Types, EveryEndEffector,
                         testing::Combine(testing::Range<std::size_t>(0, nqEndEffectorKinds().size()),
                                          testing::Range<std::size_t>(0, nqTestModels().size())),
                         describe);

TEST_P(EveryEndEffector, JacobianMatchesDifferencesAndVelocity) {
    expectJacobianMatches();
}

TEST_P(EveryEndEffector, ExternalOffsetActsInAllOperationsAlike) {
    const NqCoordinateSystemTransformation offset = nqRandomFrame(random);
    NqManipulatorActiveState state = nqRandomState(model, random);
    NqEndEffectorPlacement without;
    endEffector->calculatePlacement(manipulator, state, without);
    endEffector->setExternalOffsetPointer(&offset);
    NqEndEffectorPlacement unused;
    endEffector->calculatePlacement(manipulator, state, unused);
    EXPECT_EQ(unused.coordSysXForm(), without.coordSysXForm()) << "an offset that is not to be used";
    endEffector->setUseExternalOffset(true);
    NqEndEffectorPlacement with;
    endEffector->calculatePlacement(manipulator, state, with);
    EXPECT_EQ(with.coordSysXForm() == without.coordSysXForm(), !kind.traits.usesExternalOffset);
    expectJacobianMatches();
}

TEST_P(EveryEndEffector, AccelerationIsTheChangeOfVelocity) {
    if (!kind.traits.whyNoAcceleration.empty()) {
        RecordProperty("leftOut", kind.traits.whyNoAcceleration);
        return;
    }
    for (unsigned pose = 0; pose < poses; ++pose) {
        NqManipulatorActiveState state = nqRandomState(model, random);
        NqXmlRealVector change;
        if (kind.traits.hasOwnAxes) {
            // The whole motion of the frame, in axes that rest.
            NqFrameEndEffector whole;
            whole.setLinkIdentifier(endEffector->linkIdentifier());
            whole.setFrame(dynamic_cast<const NqFrameBasedEndEffector&>(*endEffector).frame());
            const NqXmlRealVector a = differences(state, [&](NqManipulatorActiveState& moved) {
                NqXmlRealVector v;
                whole.calculateVelocity(manipulator, moved, v, 0);
                return v;
            });
            change =
                rowsOf(state, {{a[0], a[1], a[2]}, {a[3], a[4], a[5]}}, NqOrientation(), kind.traits.rows);
        } else {
            change = differences(state, [&](NqManipulatorActiveState& moved) { return velocity(moved); });
        }
        NqXmlRealVector acceleration;
        endEffector->calculateAcceleration(manipulator, state, acceleration, 0);
        expectNear(acceleration, change, 1e-5, "acceleration");
    }
}

TEST_P(EveryEndEffector, InternalRelativeModeTakesTheRelativeMotionAway) {
    if (!kind.traits.whyNoRelativeMotion.empty()) {
        RecordProperty("leftOut", kind.traits.whyNoRelativeMotion);
        return;
    }
    const RelativeData relative = relativeTo(model.relativeLink, RelativeData::relativeModeInternal);
    endEffector->setRelativeLinkData(relative);
    const NqManipulatorLink* reference = manipulator.linkByLabel(model.relativeLink);
    for (unsigned pose = 0; pose < poses; ++pose) {
        NqManipulatorActiveState state = randomState(false); // the base's columns stay zero in this mode
        if (!kind.traits.whyOnlyFromSystem.empty()) {
            NqPositionState positions = state.positionState();
            positions.setBaseFrame({});
            state.setPositionState(positions);
        }
        const NqReArray j = jacobian(state, relative);
        std::vector<double> product;
        ASSERT_TRUE(j.transform(rates(state), product));

        expectNear(placementRates(state, reference, kind.traits.rows), product, 1e-6, "relative velocity");

        NqEndEffectorPlacement there;
        NqEndEffectorPlacement back;
        endEffector->calculatePlacementInRelative(manipulator, state, there);
        ASSERT_TRUE(endEffector->convertPlacementFromRelativeToSystem(manipulator, there,
                                                                      state.activePositionState(), back));
        NqEndEffectorPlacement here;
        endEffector->calculatePlacement(manipulator, state, here);
        double q[4];
        const NqCoordinateSystemTransformation apart = here.coordSysXForm().inverse() * back.coordSysXForm();
        apart.orientation().getQuaternion(q[0], q[1], q[2], q[3]);
        EXPECT_NEAR(apart.translation().mag(), 0.0, 1e-12);
        EXPECT_NEAR(NqVector(q[1], q[2], q[3]).mag(), 0.0, 1e-12);
    }
}

TEST_P(EveryEndEffector, SparsityCoversTheJacobian) {
    for (const auto mode : {RelativeData::relativeModeNone, RelativeData::relativeModeInternal,
                            RelativeData::relativeModeExternal}) {
        const RelativeData relative = relativeTo(model.relativeLink, mode);
        Sparsity sparsity;
        endEffector->insertSparsityComponent(manipulator, 2, relative, fixedBase, sparsity);
        ASSERT_EQ(sparsity.size(), 2 + endEffector->doc());
        for (unsigned pose = 0; pose < poses; ++pose) {
            NqManipulatorActiveState state = nqRandomState(model, random);
            const NqReArray j = jacobian(state, relative);
            for (unsigned r = 0; r < endEffector->doc(); ++r) {
                ASSERT_EQ(sparsity[2 + r].size(), j[r].size());
                for (unsigned c = 0; c < j.columns(); ++c) {
                    EXPECT_TRUE(j[r][c] == 0.0 || sparsity[2 + r][c])
                        << "mode " << mode << ", row " << r << ", column " << c << ", seed " << seed;
                }
            }
        }
    }
}

TEST_P(EveryEndEffector, RowsLieWhereTheyShouldAndNowhereElse) {
    const unsigned doc = endEffector->doc();
    NqManipulatorActiveState state = nqRandomState(model, random);
    const NqReArray expected = jacobian(state);
    NqReArray stacked(doc + 4, 2);
    stacked.setToValue(doc + 4, 2, 7.0);
    endEffector->insertJacobianComponent(manipulator, 3, {}, fixedBase, state, stacked);
    for (unsigned r = 0; r < stacked.rows(); ++r) {
        const bool isOwn = r >= 3 && r < 3 + doc;
        EXPECT_EQ(stacked[r], isOwn ? expected[r - 3] : std::vector<double>(2, 7.0)) << "row " << r;
    }

    NqReArray square(2, 2);
    endEffector->insertErrorWeightComponent(2, square);
    NqReArray column;
    endEffector->insertErrorWeightComponent(2, column);
    ASSERT_EQ(square.rows(), 2 + doc);
    ASSERT_EQ(square.columns(), 2 + doc);
    ASSERT_EQ(column.columns(), 1u);
    for (unsigned r = 0; r < 2 + doc; ++r) {
        for (unsigned c = 0; c < 2 + doc; ++c) {
            EXPECT_EQ(square[r][c], r == c ? column[r][0] : 0.0);
        }
        EXPECT_EQ(column[r][0] != 0.0, r >= 2);
    }

    NqReArray narrow(2 + doc, 2);
    endEffector->insertErrorWeightComponent(2, narrow);
    NqReArray blank(2 + doc, 0);
    endEffector->insertErrorWeightComponent(2, blank);
    EXPECT_EQ(narrow[1 + doc].back(), column[1 + doc][0]);
    EXPECT_EQ(blank[1 + doc].back(), column[1 + doc][0]);

    NqXmlRealVector v(1, 9.0);
    endEffector->calculateVelocity(manipulator, state, v, 1);
    const NqXmlRealVector alone = velocity(state);
    EXPECT_EQ(v.values()[0], 9.0);
    EXPECT_TRUE(std::equal(alone.begin(), alone.end(), v.begin() + 1, v.end()));
}

TEST_P(EveryEndEffector, RowsGrowAndThenStay) {
    const unsigned doc = endEffector->doc();
    NqManipulatorActiveState state = nqRandomState(model, random);
    const NqReArray alone = jacobian(state);
    NqReArray stacked;
    Sparsity fresh;
    endEffector->insertSparsityComponent(manipulator, 0, {}, fixedBase, fresh);
    Sparsity bits;
    for (unsigned use = 0; use < 4; ++use) {
        const unsigned row = use % 2 * doc;
        endEffector->insertJacobianComponent(manipulator, row, {}, fixedBase, state, stacked);
        endEffector->insertSparsityComponent(manipulator, row, {}, fixedBase, bits);
        for (unsigned r = 0; r < doc; ++r) {
            EXPECT_EQ(stacked[row + r], alone[r]) << "use " << use;
            EXPECT_EQ(bits[row + r], fresh[r]) << "use " << use;
        }
        EXPECT_EQ(stacked.rows(), use == 0 ? doc : 2 * doc);
    }

    // Rows that are there lose their old bits, or get more where they are too few.
    Sparsity old(doc, std::vector<bool>(fresh[0].size() + 3, true));
    endEffector->insertSparsityComponent(manipulator, 0, {}, fixedBase, old);
    EXPECT_EQ(old, fresh);
    Sparsity narrow(doc, std::vector<bool>(1, true));
    endEffector->insertSparsityComponent(manipulator, 1, {}, fixedBase, narrow);
    ASSERT_EQ(narrow.size(), doc + 1);
    EXPECT_EQ(narrow[0], std::vector<bool>(1, true)) << "a row of others";
    for (unsigned r = 0; r < doc; ++r) {
        ASSERT_EQ(narrow[1 + r].size(), fresh[r].size());
        for (std::size_t c = 1; c < fresh[r].size(); ++c) {
            EXPECT_EQ(narrow[1 + r][c], fresh[r][c]);
        }
    }
}

TEST_P(EveryEndEffector, LinksOfOtherManipulatorsMoveNoColumns) {
    NqManipulatorActiveState state = nqRandomState(model, random);
    NqPrintCapture capture;
    for (const std::string& label : {model.relativeLink, std::string("on another manipulator")}) {
        EXPECT_EQ(jacobian(state, relativeTo(label, RelativeData::relativeModeExternal)), jacobian(state));
    }
    EXPECT_EQ(capture.text(), "");
}

TEST_P(EveryEndEffector, WithoutFilteringTheWholeWayIsAskedFor) {
    if (!kind.traits.whyNotDriven.empty()) {
        RecordProperty("leftOut", kind.traits.whyNotDriven);
        return;
    }
    constexpr double way = 1e-5; // so short that the way is straight
    constexpr double timeStep = 0.002;
    for (unsigned pose = 0; pose < poses; ++pose) {
        NqManipulatorActiveState state = randomState(kind.traits.whyNoBaseMotion.empty());
        NqManipulatorActiveState there = nqMoved(state, way);
        std::vector<double> expected;
        ASSERT_TRUE(jacobian(state).transform(rates(state), expected));
        endEffector->setFilteringActive(false); // now that filters made for joints are there too
        NqEndEffectorPlacement target;
        endEffector->calculatePlacement(manipulator, there, target);
        const NqXmlRealVector still(endEffector->doc());
        NqXmlRealVector command;
        endEffector->filterEndEffectorVelocity(manipulator, target, still, still, timeStep, state, command);
        for (double& entry : expected) {
            entry *= way / timeStep;
        }
        if (!kind.traits.whyOnlyTheFirstRow.empty()) {
            expected.resize(1);
            command.resize(1);
        }
        expectNear(command, expected, 1e-3 * way / timeStep, "command");
    }
}

TEST_P(EveryEndEffector, ModeWordsAreTakenInAllSpellings) {
    const NqLabelVector& labels = endEffector->editingLabels();
    unsigned place = 0;
    while (place < labels.size() && labels[place].value() != "Velocity Profile Type") {
        ++place;
    }
    if (place == labels.size()) {
        return;
    }
    struct Word {
        const char* word;
        const char* mode;
    };
    const char* third = kind.traits.hasThreeHalves ? "threeHalves" : "";
    for (const Word& each :
         {Word{"proportional", "proportional"}, Word{"Proportional", "proportional"},
          Word{"PROPORTIONAL", "proportional"}, Word{"trapezoidal", "trapezoidal"},
          Word{"Trapezoidal", "trapezoidal"}, Word{"TRAPEZOIDAL", "trapezoidal"}, Word{"threeHalves", third},
          Word{"threehalves", third}, Word{"ThreeHalves", third}, Word{"THREEHALVES", third},
          Word{"TrapeZoidal", ""}, Word{"", ""}}) {
        for (const char* before : {"proportional", "trapezoidal"}) {
            for (const char* word : {before, each.word}) {
                NqLabelVector values = endEffector->editableValues();
                values[place] = std::string(word);
                endEffector->setEditableValues(values);
            }
            EXPECT_EQ(endEffector->editableValues()[place].value(), *each.mode ? each.mode : before)
                << each.word << " after " << before;
        }
    }
}

TEST_P(EveryEndEffector, OneSetterSetsAccelerationAndDeceleration) {
    endEffector->setAccelerationThreshold(0.6875);
    const std::string text = nqWritten(*endEffector);
    if (text.find("ccelerationThreshold>0.6875<") != std::string::npos) {
        EXPECT_EQ(endEffector->accelerationThreshold(), 0.6875);
        EXPECT_NE(text.find("ecelerationThreshold>0.6875<"), std::string::npos) << text;
    }
}

TEST_P(EveryEndEffector, UnknownLabelsAreReportedAndHarmless) {
    NqManipulatorActiveState state = nqRandomState(model, random);
    NqPrintCapture capture;
    const RelativeData unknown = relativeTo("nowhere", RelativeData::relativeModeInternal);
    if (kind.traits.whyNoRelativeMotion.empty()) {
        // The chain's own columns stay, and in internal mode those of the base are zero.
        NqReArray own = jacobian(state);
        for (unsigned r = 0; r < own.rows(); ++r) {
            std::fill(own[r].begin() + manipulator.numberOfJoints(), own[r].end(), 0.0);
        }
        EXPECT_EQ(jacobian(state, unknown), own);
        EXPECT_TRUE(capture.contains("relative link: nowhere"));
    }
    endEffector->setRelativeLinkData(unknown);
    NqEndEffectorPlacement out(NqVector(1.0, 2.0, 3.0));
    EXPECT_FALSE(endEffector->convertPlacementFromSystemToRelative(manipulator, NqEndEffectorPlacement(),
                                                                   state.activePositionState(), out));
    EXPECT_EQ(out.coordSysXForm().translation(), NqVector(1.0, 2.0, 3.0));
    if (!kind.traits.whyNoLostLink.empty()) {
        RecordProperty("leftOut", kind.traits.whyNoLostLink);
        return;
    }

    capture.clear();
    NqXmlRealVector error;
    endEffector->calculateEndEffectorError(manipulator, {}, state, error);
    if (kind.traits.whyNoRelativeMotion.empty()) {
        EXPECT_TRUE(endEffector->changeLinkLabel(model.link, "lost"));
    } else {
        NqTestModel lost = model;
        lost.link = lost.secondLink = "lost";
        kind.attach(*endEffector, lost); // a linear constraint keeps what it has looked up
    }
    const NqXmlRealVector before = error;
    const auto expectZeros = [&](const NqXmlRealVector& values) {
        EXPECT_EQ(values, NqXmlRealVector(values.size()));
        EXPECT_TRUE(values.size() == endEffector->doc() || !kind.traits.whySilent.empty());
    };
    endEffector->calculateEndEffectorError(manipulator, {}, state, error);
    if (kind.traits.lostLinkKeepsError) {
        EXPECT_EQ(error, before);
    } else {
        expectZeros(error); // the link's last placement is forgotten
    }
    const NqReArray j = jacobian(state);
    EXPECT_EQ(capture.contains("lost"), kind.traits.whySilent.empty());
    EXPECT_EQ(j, NqReArray(endEffector->doc(), manipulator.numberOfJoints() + (fixedBase ? 0 : 6)));
    // A vector of the right size, which a type may leave as it was.
    NqXmlRealVector v(endEffector->doc(), 7.0);
    endEffector->calculateVelocity(manipulator, state, v, 0);
    if (kind.traits.lostLinkKeepsVelocity) {
        EXPECT_EQ(v, NqXmlRealVector(endEffector->doc(), 7.0));
    } else {
        expectZeros(v);
    }
    for (const auto& line : capture.lines()) {
        EXPECT_EQ(line.first, 4u);
    }
}

template <typename Type, typename Change>
bool changeIf(NqXmlObject* object, Change change) {
    auto* value = dynamic_cast<Type*>(object);
    if (value) {
        change(*value);
    }
    return value != nullptr;
}

/// Changes one value; whether there was one to change.
bool changeValue(NqXmlObject* object) {
    return changeIf<NqXmlBasicType<double>>(object, [](auto& real) { real = real + 1.0; }) ||
           changeIf<NqXmlBasicType<unsigned int>>(object, [](auto& number) { number = number + 1; }) ||
           changeIf<NqXmlEnumType<unsigned int>>(object, [](auto& mode) { mode = mode + 1; }) ||
           changeIf<NqXmlBasicType<bool>>(object, [](auto& flag) { flag = !flag; }) ||
           changeIf<NqXmlBasicType<std::string>>(object, [](auto& text) { text = text.value() + "x"; }) ||
           changeIf<NqXmlVector>(object, [](auto& vector) { vector.value()[2] += 1.0; }) ||
           changeIf<NqXmlOrientation>(object,
                                      [](auto& turn) { turn = turn.value() * NqOrientation::aboutZ(0.1); }) ||
           changeIf<NqXmlCoordinateSystemTransformation>(
               object,
               [](auto& frame) {
                   frame.value().outboardTransformBy({0.0, 0.1, 0.0});
               }) ||
           changeIf<NqXmlRealVector>(object, [](auto& numbers) { numbers.pushBack(1.0); }) ||
           changeIf<NqLabelVector>(object, [](auto& labels) { labels.pushBack(std::string("x")); }) ||
           changeIf<NqXmlVectorType<NqDirectionalFrameEndEffector::ThresholdMap>>(
               object, [](auto& maps) { maps[0].clear(); });
}

/// Changes each persisted field in turn and expects a copy taken before to differ from then on.
void expectEachFieldCounts(NqXmlCompoundType& part, const NqEndEffector& whole) {
    for (const auto& entry : part.componentMap()) {
        if (entry.isReadOnly) {
            continue;
        }
        if (auto* compound = dynamic_cast<NqXmlCompoundType*>(entry.object)) {
            expectEachFieldCounts(*compound, whole);
            continue;
        }
        const std::unique_ptr<NqXmlObject> before(whole.clone());
        EXPECT_TRUE(whole.equality(before.get()));
        ASSERT_TRUE(changeValue(entry.object))
            << entry.token.token() << " is of a kind that this test must learn";
        EXPECT_FALSE(whole.equality(before.get())) << entry.token.token();
    }
}

TEST_P(EveryEndEffector, CopiesKeepTypeAndEachFieldCountsInComparison) {
    const std::unique_ptr<NqXmlObject> copy(endEffector->clone());
    const NqXmlObject& original = *endEffector;
    const NqXmlObject& clone = *copy;
    EXPECT_EQ(typeid(clone), typeid(original));
    const std::unique_ptr<NqXmlObject> blank(endEffector->newObject());
    EXPECT_TRUE(blank->equality(kind.makeDefault().get()));
    EXPECT_FALSE(blank->equality(endEffector.get()));
    EXPECT_FALSE(endEffector->equality(nullptr));
    expectEachFieldCounts(*endEffector, *endEffector);

    // What belongs to the run time doesn't count.
    const std::unique_ptr<NqXmlObject> before(endEffector->clone());
    endEffector->setSoftConstraintMultiplier(2.0);
    endEffector->setSpeedFactor(0.5);
    endEffector->setFilteringActive(false);
    EXPECT_TRUE(endEffector->equality(before.get()));
}

TEST_P(EveryEndEffector, SurvivesXmlBitForBit) {
    NqEndEffectorVector written;
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    for (unsigned i = 0; i < 3; ++i) {
        endEffector->setMotionThreshold(std::ldexp(uniform(random), static_cast<int>(i) * 40));
        endEffector->setLinkIdentifier("<" + model.link + "> & \"it\"");
        written.pushBack(*endEffector);
    }
    const std::string text = nqWritten(written);
    NqEndEffectorVector read;
    ASSERT_TRUE(NqXmlDocument::readString(text, read)) << text;
    EXPECT_TRUE(read == written) << text;
    static const NqSchemaValidator schema(NqEndEffectorVector(), "endEffectors");
    ASSERT_TRUE(schema.isGood());
    EXPECT_TRUE(schema.accepts(text)) << text;
    EXPECT_EQ(nqWritten(read), text);
}

TEST_P(EveryEndEffector, GoldenFileReads) {
    NqPrintCapture capture;
    const std::unique_ptr<NqEndEffector> blank = kind.makeDefault();
    const std::unique_ptr<NqEndEffector> read = kind.makeDefault();
    ASSERT_TRUE(NqXmlDocument::readFile(kind.goldenFile(), *read)) << capture.text();
    EXPECT_EQ(capture.text(), "");

    // A hand-written file has every field, none of them at its default.
    const auto expectNoDefaults = [](const NqXmlCompoundType& object, const NqXmlCompoundType& theDefault,
                                     const auto& self) -> void {
        for (const auto& entry : object.componentMap()) {
            if (entry.isReadOnly) {
                continue; // of old files alone
            }
            EXPECT_TRUE(entry.object->specified()) << entry.token.token();
            const auto* same = theDefault.componentMap().find(entry.token);
            if (const auto* compound = dynamic_cast<const NqXmlCompoundType*>(entry.object)) {
                self(*compound, dynamic_cast<const NqXmlCompoundType&>(*same->object), self);
            } else {
                EXPECT_FALSE(entry.object->equality(same->object)) << entry.token.token();
            }
        }
    };
    expectNoDefaults(*read, *blank, expectNoDefaults);

    // What was read is written in the same form.
    std::stringstream golden;
    golden << std::ifstream(kind.goldenFile()).rdbuf();
    EXPECT_EQ(nqWritten(*read), golden.str());
}

TEST_P(EveryEndEffector, EditableValuesRoundTripAndTakeEffect) {
    const auto hasWord = [&](unsigned i, const char* word) {
        return endEffector->editingLabels()[i].value().find(word) != std::string::npos;
    };
    const auto isFlag = [&](unsigned i) {
        return hasWord(i, "Is ") || hasWord(i, "is_") || hasWord(i, "Use ") || hasWord(i, "project_");
    };
    const auto isOrientation = [&](unsigned i) { return hasWord(i, "Angle") || hasWord(i, "Axis"); };
    const NqLabelVector values = endEffector->editableValues();
    ASSERT_EQ(values.size(), endEffector->editingLabels().size());
    ASSERT_EQ(values.size(), endEffector->tooltipLabels().size());
    const std::unique_ptr<NqEndEffector> other = kind.make(model);
    const NqLabelVector blanks = kind.makeDefault()->editableValues();
    other->setEditableValues(blanks);
    EXPECT_FALSE(other->equality(endEffector.get()));
    other->setEditableValues(values);
    const NqLabelVector again = other->editableValues();
    bool isExact = true;
    for (unsigned i = 0; i < values.size(); ++i) {
        // An orientation goes through an angle and an axis, and so comes back to rounding.
        double number = 0.0;
        if (isOrientation(i) && nqParseReal(values[i].value(), number)) {
            EXPECT_NEAR(NqSTRING2DOUBLE(again[i]), number, 1e-14) << endEffector->editingLabels()[i].value();
            isExact = false;
        } else {
            EXPECT_EQ(again[i], values[i]) << endEffector->editingLabels()[i].value();
        }
    }
    EXPECT_TRUE(other->equality(endEffector.get()) || !isExact);

    // Each number on its own: it is printed where it was put, and nothing else changes.
    for (unsigned i = 0; i < values.size(); ++i) {
        double number = 0.0;
        if (nqParseReal(values[i].value(), number) && !isFlag(i) && !isOrientation(i)) {
            NqLabelVector changed = endEffector->editableValues();
            changed[i] = NqDOUBLE2STRING(number + 0.125);
            endEffector->setEditableValues(changed);
            EXPECT_EQ(endEffector->editableValues()[i], changed[i])
                << endEffector->editingLabels()[i].value();
            EXPECT_FALSE(endEffector->equality(other.get())) << endEffector->editingLabels()[i].value();
        }
    }
    expectJacobianMatches();

    NqLabelVector tooShort = values;
    tooShort.resize(values.size() - 1);
    const std::unique_ptr<NqXmlObject> before(endEffector->clone());
    endEffector->setEditableValues(tooShort);
    EXPECT_TRUE(endEffector->equality(before.get()));
}

} // namespace
