#include "endeffector/NqEndEffectorSamples.h"
#include "endeffector/NqEndEffectorTest.h"
#include "support/NqSchemaValidator.h"

#include <nqControlCore/endeffector/NqEndEffectorVector.h>

namespace {

/// One type on one model, in a state at random. The seed of a test is printed when it fails.
class EveryEndEffector : public NqEndEffectorTest,
                         public testing::WithParamInterface<std::tuple<std::size_t, std::size_t>> {
protected:
    using Traits = NqEndEffectorTraits;
    static constexpr unsigned poses = 5;
    static constexpr unsigned seed = 20240731;

    EveryEndEffector() : NqEndEffectorTest(nqTestModels()[std::get<1>(GetParam())], seed) {}

    const NqEndEffectorKind& kind = nqEndEffectorKinds()[std::get<0>(GetParam())];
    const NqTestModel& model = nqTestModels()[std::get<1>(GetParam())];
    const bool fixedBase = !model.movesBase;
    std::unique_ptr<NqEndEffector> endEffector = kind.make(model);
    NqEndEffector& e = *endEffector;

    static Relative relativeTo(const std::string& link, Relative::RelativeMode mode) {
        Relative data = internalTo(link);
        data.setRelativeMode(mode);
        return data;
    }

    NqReArray jacobian(const Relative& relative = {}) { return rows(e, relative, fixedBase); }

    /// Jacobian times joint rates and, of a free base, its motion.
    Row rowsTimesRates(const Relative& relative = {}) {
        Row x = state.velocityState().jointVelocities(), product;
        for (unsigned i = 0; i < 6 && !fixedBase; ++i) {
            x.push_back(state.velocityState().baseMotion()[i]);
        }
        EXPECT_TRUE(jacobian(relative).transform(x, product));
        return product;
    }

    static void expectClose(const Reals& actual, const Row& expected, double tolerance,
                            const std::string& what) {
        SCOPED_TRACE(what + ", seed " + std::to_string(seed));
        double scale = 1.0;
        for (const double x : expected) {
            scale = std::max(scale, std::fabs(x));
        }
        expectNear(actual, expected, tolerance * scale);
    }

    /// A new state. The base and sliding joints rest where their columns aren't their motion.
    void draw(bool movesBase) {
        state = nqRandomState(model, random);
        state.setAccelerationState(NqAccelerationState(manipulator.numberOfJoints()));
        NqVelocityState velocities = state.velocityState();
        if (!movesBase) {
            velocities.setBaseMotion({});
        }
        for (unsigned j = 0; j < manipulator.numberOfJoints() && kind.traits.has(Traits::NoSliding); ++j) {
            if (manipulator.linkByIndex(j)->joint().type() == NqJointDescription::Prismatic) {
                velocities.setJointVelocity(j, 0.0);
            }
        }
        state.setVelocityState(velocities);
    }

    static Reals scaled(Reals values, double factor) {
        std::ranges::for_each(values, [=](double& value) { value *= factor; });
        return values;
    }

    /// Central differences of what `valueOf` gives.
    Reals differences(auto valueOf) {
        constexpr double h = 1e-5;
        NqManipulatorActiveState present = state;
        state = nqMoved(present, -h);
        const Reals before = valueOf();
        state = nqMoved(present, h);
        Reals change = valueOf();
        state = present;
        for (std::size_t i = 0; i < change.size(); ++i) {
            change[i] = (change[i] - before[i]) / (2.0 * h);
        }
        return change;
    }

    /// The rows for a motion of the end-effector's frame, in the present state, or what `rows` gives instead.
    Reals rowsOf(const Reals& motion, const NqOrientation& reference, const Traits::Rows& rows) {
        const NqManipulatorLink* link = manipulator.linkByLabel(e.linkIdentifier());
        NqRowAxes axes{link->primaryFrameInSystem(state.activePositionState()).orientation(), reference};
        if (const auto* onFrame = dynamic_cast<const NqFrameBasedEndEffector*>(&e)) {
            axes.own = axes.own * onFrame->motionFrame().orientation();
        }
        return Reals(rows(e, {{motion[0], motion[1], motion[2]}, {motion[3], motion[4], motion[5]}}, axes));
    }

    /// The rows for the change of the placement, by central differences: in the system, or in the frame of a
    /// link.
    Reals placementRates(const NqManipulatorLink* reference, const Traits::Rows& rows) {
        const auto present = [&] {
            Placement result;
            if (reference) {
                e.calculatePlacementInRelative(manipulator, state, result);
            }
            return (reference ? result : placement(e)).coordSysXForm();
        };
        const NqOrientation here = present().orientation();
        const NqOrientation turn =
            reference ? reference->primaryFrameInSystem(state.activePositionState()).orientation()
                      : NqOrientation();
        const Reals rate = differences([&] {
            const Pose there = present();
            const NqVector linear = turn * there.translation();
            double q[4];
            (there.orientation() * here.inverse()).getQuaternion(q[0], q[1], q[2], q[3]);
            const NqVector angular = turn * NqVector(q[1], q[2], q[3]) * (q[0] > 0.0 ? 2.0 : -2.0);
            return Reals{linear[0], linear[1], linear[2], angular[0], angular[1], angular[2]};
        });
        return rowsOf(rate, turn, rows);
    }

    /// The Jacobian against central differences of the error, and of the placement or the number in it, in
    /// the direction of the state's velocity, and against the velocity.
    void expectJacobianMatches() {
        for (unsigned pose = 0; pose < poses; ++pose) {
            draw(!kind.traits.has(Traits::NoBaseMotion));
            Row product = rowsTimesRates();
            const auto expectProduct = [&](Reals values, double tolerance, const char* what) {
                if (kind.traits.has(Traits::OnlyTheFirstRow)) {
                    values.resize(1);
                    product.resize(1);
                }
                expectClose(values, product, tolerance, what);
            };
            if (!kind.traits.has(Traits::NoVelocity)) {
                expectProduct(velocity(e), 1e-10, "velocity against Jacobian times rates");
            }
            const Placement here = placement(e);
            const double sign = kind.traits.has(Traits::PresentLessDesired) ? 1.0 : -1.0;
            const Reals change = differences([&] { return scaled(error(e, here), sign); });
            if (!kind.traits.has(Traits::NoError)) {
                expectClose(error(e, here), Row(e.doc()), 1e-12, "error where it is");
                expectProduct(change, 1e-6, "differences of the error");
            } else if (kind.traits.errorRows) {
                expectClose(change, placementRates(nullptr, kind.traits.errorRows), 1e-6,
                            "differences of the error that isn't that of the rows");
            }
            if (kind.traits.rows) {
                expectProduct(placementRates(nullptr, kind.traits.rows), 1e-6,
                              "differences of the placement");
            } else if (kind.traits.has(Traits::HasNumber)) {
                expectProduct(differences([&] { return Reals{number(e)}; }), 1e-6,
                              "differences of the number");
            } else if (!kind.traits.has(Traits::NoPlacement)) {
                expectProduct(differences([&] { return placement(e, here).dataVector(); }), 1e-6,
                              "differences of the list in the placement");
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
    const Pose offset = nqRandomFrame(random);
    const Placement without = placement(e);
    e.setExternalOffsetPointer(&offset);
    EXPECT_EQ(placement(e), without) << "an offset that is not to be used";
    e.setUseExternalOffset(true);
    EXPECT_EQ(placement(e) == without, kind.traits.has(Traits::NoOffset));
    expectJacobianMatches();
}

TEST_P(EveryEndEffector, AccelerationIsTheChangeOfVelocity) {
    if (kind.traits.has(Traits::NoAcceleration)) {
        return;
    }
    for (unsigned pose = 0; pose < poses; ++pose) {
        state = nqRandomState(model, random);
        Reals change;
        if (kind.traits.has(Traits::OwnAxes)) {
            // The whole motion of the frame, in axes that rest.
            NqFrameEndEffector whole;
            whole.setLinkIdentifier(e.linkIdentifier());
            whole.setFrame(dynamic_cast<const NqFrameBasedEndEffector&>(e).frame());
            change = rowsOf(differences([&] { return velocity(whole); }), {}, kind.traits.rows);
        } else {
            change = differences([&] { return velocity(e); });
        }
        expectClose(acceleration(e), change.values(), 1e-5, "acceleration");
    }
}

TEST_P(EveryEndEffector, InternalRelativeModeTakesTheRelativeMotionAway) {
    if (kind.traits.has(Traits::NoRelativeMotion)) {
        return;
    }
    const Relative relative = internalTo(model.relativeLink);
    e.setRelativeLinkData(relative);
    const NqManipulatorLink* reference = manipulator.linkByLabel(model.relativeLink);
    for (unsigned pose = 0; pose < poses; ++pose) {
        draw(false); // the base's columns stay zero in this mode
        if (kind.traits.has(Traits::OnlyFromSystem)) {
            NqPositionState positions = state.positionState();
            positions.setBaseFrame({});
            state.setPositionState(positions);
        }
        expectClose(placementRates(reference, kind.traits.rows), rowsTimesRates(relative), 1e-6,
                    "relative velocity");
        Placement there, back;
        e.calculatePlacementInRelative(manipulator, state, there);
        ASSERT_TRUE(
            e.convertPlacementFromRelativeToSystem(manipulator, there, state.activePositionState(), back));
        double q[4];
        const Pose apart = placement(e).coordSysXForm().inverse() * back.coordSysXForm();
        apart.orientation().getQuaternion(q[0], q[1], q[2], q[3]);
        EXPECT_NEAR(apart.translation().mag(), 0.0, 1e-12);
        EXPECT_NEAR(NqVector(q[1], q[2], q[3]).mag(), 0.0, 1e-12);
    }
}

TEST_P(EveryEndEffector, SparsityCoversTheJacobian) {
    for (const auto mode :
         {Relative::relativeModeNone, Relative::relativeModeInternal, Relative::relativeModeExternal}) {
        const Relative relative = relativeTo(model.relativeLink, mode);
        const Sparsity set = bits(e, relative, fixedBase);
        for (unsigned pose = 0; pose < poses; ++pose) {
            SCOPED_TRACE("mode " + std::to_string(mode) + ", seed " + std::to_string(seed));
            state = nqRandomState(model, random);
            expectCovers(set, jacobian(relative));
        }
    }
}

TEST_P(EveryEndEffector, RowsLieWhereTheyShouldAndNowhereElse) {
    const unsigned doc = e.doc();
    const NqReArray own = jacobian();
    NqReArray stacked;
    stacked.setToValue(doc + 4, 2, 7.0);
    NqReArray expected = stacked;
    for (unsigned r = 0; r < doc; ++r) {
        expected.assign(3 + r, own[r]);
    }
    e.insertJacobianComponent(manipulator, 3, {}, fixedBase, state, stacked);
    EXPECT_EQ(stacked, expected);

    NqReArray column, square(2, 2), narrow(2 + doc, 2), blank(2 + doc, 0), diagonal(2 + doc, 2 + doc);
    for (NqReArray* weights : {&column, &square, &narrow, &blank}) {
        e.insertErrorWeightComponent(2, *weights);
    }
    ASSERT_TRUE(column.rows() == 2 + doc && column.columns() == 1);
    for (unsigned r = 0; r < 2 + doc; ++r) {
        diagonal[r][r] = column[r][0];
        EXPECT_EQ(column[r][0] != 0.0, r >= 2);
    }
    EXPECT_EQ(square, diagonal);
    EXPECT_EQ(narrow[1 + doc].back(), column[1 + doc][0]);
    EXPECT_EQ(blank[1 + doc].back(), column[1 + doc][0]);

    Row behind = velocity(e).values();
    behind.insert(behind.begin(), 9.0);
    EXPECT_EQ(velocity(e, {9.0}, 1).values(), behind);
}

TEST_P(EveryEndEffector, RowsGrowAndThenStay) {
    const unsigned doc = e.doc();
    const NqReArray alone = jacobian();
    const Sparsity fresh = bits(e, {}, fixedBase);
    NqReArray stacked;
    Sparsity set;
    for (unsigned use = 0; use < 4; ++use) {
        const unsigned row = use % 2 * doc;
        e.insertJacobianComponent(manipulator, row, {}, fixedBase, state, stacked);
        e.insertSparsityComponent(manipulator, row, {}, fixedBase, set);
        for (unsigned r = 0; r < doc; ++r) {
            EXPECT_EQ(stacked[row + r], alone[r]) << "use " << use;
            EXPECT_EQ(set[row + r], fresh[r]) << "use " << use;
        }
        EXPECT_EQ(stacked.rows(), use == 0 ? doc : 2 * doc);
    }

    // Rows that are there lose their old bits, or get more where they are too few.
    Sparsity old(doc, std::vector<bool>(fresh[0].size() + 3, true));
    e.insertSparsityComponent(manipulator, 0, {}, fixedBase, old);
    EXPECT_EQ(old, fresh);
    Sparsity narrow(doc, std::vector<bool>(1, true));
    e.insertSparsityComponent(manipulator, 1, {}, fixedBase, narrow);
    EXPECT_EQ(narrow[0], std::vector<bool>(1, true)) << "a row of others";
    narrow.erase(narrow.begin());
    for (unsigned r = 0; r < doc; ++r) {
        narrow.at(r).at(0) = fresh[r][0];
    }
    EXPECT_EQ(narrow, fresh) << "but for the first bits";
}

TEST_P(EveryEndEffector, LinksOfOtherManipulatorsMoveNoColumns) {
    NqPrintCapture capture;
    for (const std::string& label : {model.relativeLink, std::string("on another manipulator")}) {
        EXPECT_EQ(jacobian(relativeTo(label, Relative::relativeModeExternal)), jacobian());
    }
    EXPECT_EQ(capture.text(), "");
}

TEST_P(EveryEndEffector, WithoutFilteringTheWholeWayIsAskedFor) {
    if (kind.traits.has(Traits::NotDriven)) {
        return;
    }
    constexpr double way = 1e-5; // so short that the way is straight
    constexpr double timeStep = 0.002;
    for (unsigned pose = 0; pose < poses; ++pose) {
        draw(!kind.traits.has(Traits::NoBaseMotion));
        Row expected = scaled(rowsTimesRates(), way / timeStep).values();
        const NqManipulatorActiveState present = state;
        state = nqMoved(state, way);
        const Placement target = placement(e);
        state = present;
        e.setFilteringActive(false); // now that filters made for joints are there too
        const Reals still(e.doc());
        Reals command = filtered(e, target, still, still, timeStep);
        if (kind.traits.has(Traits::OnlyTheFirstRow)) {
            expected.resize(1);
            command.resize(1);
        }
        expectClose(command, expected, 1e-3 * way / timeStep, "command");
    }
}

TEST_P(EveryEndEffector, VelocityAndErrorAtOnceAreThoseOfEach) {
    NqPrintCapture capture; // some targets are none for some types
    for (const bool isFiltering : {true, false}) {
        draw(!kind.traits.has(Traits::NoBaseMotion));
        e.setFilteringActive(isFiltering);
        Placement target = placement(e);
        target.setCoordSysXForm(target.coordSysXForm() *
                                NqCoordinateSystemTransformation(
                                    NqVector(0.1, -0.2, 0.3), NqOrientation(0.7, NqVector(1.0, 2.0, 2.0))));
        const Reals desired(Row(e.doc(), 0.1)), previous(Row(e.doc(), -0.2));
        Reals both(9, 7.0), way(9, 7.0);
        e.calculateFilteredVelocityAndError(manipulator, target, desired, previous, 0.01, state, both, way);
        EXPECT_EQ(both, filtered(e, target, desired, previous, 0.01, Reals(9, 7.0)));
        EXPECT_EQ(way, error(e, target));
    }
}

TEST_P(EveryEndEffector, ModeWordsAreTakenInAllSpellings) {
    const Labels& labels = e.editingLabels();
    const auto label = std::find(labels.begin(), labels.end(), std::string("Velocity Profile Type"));
    if (label == labels.end()) {
        return;
    }
    const auto place = static_cast<unsigned>(label - labels.begin());
    const std::string three = kind.traits.has(Traits::NoThreeHalves) ? "" : "threeHalves";
    const std::pair<std::string, std::string> words[] = {{"proportional", "proportional"},
                                                         {"Proportional", "proportional"},
                                                         {"PROPORTIONAL", "proportional"},
                                                         {"trapezoidal", "trapezoidal"},
                                                         {"Trapezoidal", "trapezoidal"},
                                                         {"TRAPEZOIDAL", "trapezoidal"},
                                                         {"threeHalves", three},
                                                         {"threehalves", three},
                                                         {"ThreeHalves", three},
                                                         {"THREEHALVES", three},
                                                         {"TrapeZoidal", ""},
                                                         {"", ""}};
    for (const auto& [word, mode] : words) {
        for (const std::string before : {"proportional", "trapezoidal"}) {
            for (const std::string& each : {before, word}) {
                e.setEditableValue(place, each);
                e.setEditableValues();
            }
            EXPECT_EQ(e.editableValues()[place].value(), mode.empty() ? before : mode) << word;
        }
    }
}

TEST_P(EveryEndEffector, CopiesKeepTypeAndValues) {
    const std::unique_ptr<NqXmlObject> copy(e.clone());
    const NqXmlObject& original = e;
    const NqXmlObject& clone = *copy;
    EXPECT_EQ(typeid(clone), typeid(original));
    EXPECT_TRUE(e.equality(copy.get()));
    const std::unique_ptr<NqXmlObject> blank(e.newObject());
    EXPECT_TRUE(blank->equality(kind.makeDefault().get()));
    EXPECT_FALSE(blank->equality(&e));
    EXPECT_FALSE(e.equality(nullptr));

    // What belongs to the run time doesn't count.
    e.setSoftConstraintMultiplier(2.0);
    e.setSpeedFactor(0.5);
    e.setFilteringActive(false);
    EXPECT_TRUE(e.equality(copy.get()));
}

/// Defaults are part of each file that leaves them out, and tables are what an editor shows.
TEST_P(EveryEndEffector, DefaultsAndTableStay) {
    const std::unique_ptr<NqEndEffector> plain = kind.makeDefault();
    std::string text = nqWritten(*plain) + plain->endEffectorTooltip().value() + "\n";
    const Labels values = plain->editableValues();
    for (unsigned i = 0; i < values.size(); ++i) {
        text += plain->editingLabels()[i].value() + " | " + plain->tooltipLabels()[i].value() + " | " +
                values[i].value() + "\n";
    }
    EXPECT_EQ(text, nqContentOf(nqGoldenFile("/defaults/" + kind.name + ".txt")));
}

/// The hand-written file has every field, none of them at its default.
TEST_P(EveryEndEffector, GoldenFileReadsAndEachOfItsFieldsCounts) {
    NqPrintCapture capture;
    const std::unique_ptr<NqEndEffector> golden = kind.makeDefault();
    ASSERT_TRUE(NqXmlDocument::readFile(kind.goldenFile(), *golden)) << capture.text();
    EXPECT_EQ(capture.text(), "");
    const std::string text = nqContentOf(kind.goldenFile());
    std::stringstream file(text);
    EXPECT_EQ(nqWritten(*golden), text);

    for (std::string line; std::getline(file, line);) {
        const std::size_t end = line.find("</");
        if (end != std::string::npos && end > line.find('<')) {
            std::string rest = text;
            rest.erase(rest.find(line), line.size());
            const std::unique_ptr<NqEndEffector> other = kind.makeDefault();
            NqXmlDocument::readString(rest, *other);
            EXPECT_FALSE(other->equality(golden.get())) << line;
        }
    }

    NqEndEffectorVector written, read;
    written.pushBack(*golden);
    const std::string document = nqWritten(written);
    ASSERT_TRUE(NqXmlDocument::readString(document, read));
    EXPECT_TRUE(read == written && read[0]->equality(golden.get()));
    static const NqSchemaValidator schema{NqEndEffectorVector()};
    EXPECT_TRUE(schema.accepts(document)) << document;
}

TEST_P(EveryEndEffector, EditableValuesRoundTripAndTakeEffect) {
    const auto hasWord = [&](unsigned i, const char* word) {
        return e.editingLabels()[i].value().find(word) != std::string::npos;
    };
    const auto isFlag = [&](unsigned i) {
        return hasWord(i, "Is ") || hasWord(i, "is_") || hasWord(i, "Use ") || hasWord(i, "project_");
    };
    const auto isOrientation = [&](unsigned i) { return hasWord(i, "Angle") || hasWord(i, "Axis"); };
    const Labels values = e.editableValues();
    ASSERT_EQ(values.size(), e.editingLabels().size());
    ASSERT_EQ(values.size(), e.tooltipLabels().size());
    const std::unique_ptr<NqEndEffector> other = kind.make(model);
    const Labels blanks = kind.makeDefault()->editableValues();
    other->setEditableValues(blanks);
    EXPECT_FALSE(other->equality(&e));
    other->setEditableValues(values);
    const Labels again = other->editableValues();
    bool isExact = true;
    for (unsigned i = 0; i < values.size(); ++i) {
        // An orientation goes through an angle and an axis, and so comes back to rounding.
        double number = 0.0;
        if (isOrientation(i) && nqParseReal(values[i].value(), number)) {
            EXPECT_NEAR(NqSTRING2DOUBLE(again[i]), number, 1e-14) << e.editingLabels()[i].value();
            isExact = false;
        } else {
            EXPECT_EQ(again[i], values[i]) << e.editingLabels()[i].value();
        }
    }
    EXPECT_TRUE(other->equality(&e) || !isExact);

    // Each number on its own: it is printed where it was put, and nothing else changes.
    for (unsigned i = 0; i < values.size(); ++i) {
        double number = 0.0;
        if (nqParseReal(values[i].value(), number) && !isFlag(i) && !isOrientation(i)) {
            Labels changed = e.editableValues();
            changed[i] = NqDOUBLE2STRING(number + 0.125);
            e.setEditableValues(changed);
            EXPECT_EQ(e.editableValues()[i], changed[i]) << e.editingLabels()[i].value();
            EXPECT_FALSE(e.equality(other.get())) << e.editingLabels()[i].value();
        }
    }
    expectJacobianMatches();

    Labels tooShort = values;
    tooShort.resize(values.size() - 1);
    const std::unique_ptr<NqXmlObject> before(e.clone());
    e.setEditableValues(tooShort);
    EXPECT_TRUE(e.equality(before.get()));
}

/// Notes what the operations write, leave and say.
struct NqNotedOperations : NqEndEffectorTest {
    static constexpr std::size_t tree = 4; ///< the model with branches and a free base

    NqNotedOperations() : NqEndEffectorTest(nqTestModels()[tree], 7) {}

    /// What became of lists that were full of sevens: x where there is a number now, and what was printed.
    void note(const std::string& operation, const std::vector<Row>& lists) {
        notes += "  " + operation;
        for (const Row& list : lists) {
            notes += list.empty() ? "" : " ";
            for (const double entry : list) {
                notes += entry == 7.0 ? '7' : std::fabs(entry) < 1e-12 ? '0' : 'x';
            }
        }
        notes += '\n' + prints.text();
        prints.clear();
    }
    void note(const std::string& operation, const Placement& placement) {
        const NqVector& place = placement.coordSysXForm().translation();
        note(operation, {{place[0], place[1], place[2]}, placement.dataVector().values()});
    }
    void noteAll(const std::string& title, const NqEndEffector& e) {
        const Reals sevens(9, 7.0), fitting(e.doc()), tooShort(std::max(1u, e.doc()) - 1, 0.1);
        Placement relative(NqVector(7.0, 7.0, 7.0));
        relative.setDataVector(sevens);
        const Placement at = placement(e, relative);
        notes += title + '\n';
        note("placement", at);
        e.convertPlacementFromSystemToRelative(manipulator, {}, state.activePositionState(), relative);
        note("relative placement", relative);
        note("velocities", {velocity(e, sevens, 1).values(), velocity(e, {}, 1).values()});
        note("accelerations", {acceleration(e, sevens, 1).values(), acceleration(e, {}, 1).values()});
        note("error", {error(e, {}).values()});
        note("commands", {filtered(e, at, fitting, fitting, 0.01, sevens).values(),
                          filtered(e, at, tooShort, tooShort, 0.01, sevens).values(),
                          filtered(e, at, fitting, tooShort, 0.01, sevens).values(),
                          limited(e, tooShort, tooShort, 0.1, sevens).values()});
        std::vector<Row> j, set;
        const NqReArray array = rows(e, e.relativeLinkData(), false);
        for (unsigned r = 0; r < array.rows(); ++r) {
            j.push_back(array[r]);
        }
        for (const std::vector<bool>& row : bits(e, e.relativeLinkData(), false)) {
            set.emplace_back(row.begin(), row.end());
        }
        note("rows", j);
        note("bits", set);
    }

    NqPrintCapture prints;
    std::string notes;
};

/// With all links, relative to one that isn't there, and with its own lost.
TEST_F(NqNotedOperations, AreThoseOfTheFile) {
    NqTestModel lost = nqTestModels()[tree];
    lost.link = "lost";
    for (const NqEndEffectorKind& kind : nqEndEffectorKinds()) {
        const std::unique_ptr<NqEndEffector> e = kind.make(nqTestModels()[tree]);
        noteAll(kind.name, *e);
        e->setRelativeLinkData(internalTo("nowhere"));
        noteAll(kind.name + " relative to nowhere", *e);
        e->setRelativeLinkData({});
        kind.attach(*e, lost);
        noteAll(kind.name + " on a lost link", *e);
    }
    EXPECT_EQ(notes, nqContentOf(nqGoldenFile("/operations.txt")));
}

} // namespace
