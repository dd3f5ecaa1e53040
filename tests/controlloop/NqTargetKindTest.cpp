#include "endeffector/NqEndEffectorSamples.h"

#include <nqControlLoop/NqTargetKind.h>

namespace {

/// Every type that files can hold is named once, and its parts cover rows that it has.
TEST(NqTargetKind, KnowsEveryTypeOfEndEffector) {
    std::string names;
    for (const NqTargetForm& form : NqTargetForm::all()) {
        names += ", " + NqTargetType::names(form.content);
    }
    names += ",";
    const NqTestModel& model = nqTestModels()[3];
    std::mt19937_64 random(5);
    for (const NqEndEffectorKind& type : nqEndEffectorKinds()) {
        const std::string& token = type.name;
        EXPECT_NE(names.find(", " + token + ","), std::string::npos) << token;
        const std::unique_ptr<NqEndEffector> sample = type.make(model);
        const NqEndEffector& endEffector = *sample;
        NqManipulatorActiveState state = nqRandomState(model, random);
        const NqTargetKind kind(endEffector, *model.manipulator);
        NqEndEffectorPlacement placement;
        endEffector.calculatePlacement(*model.manipulator, state, placement);
        std::vector<double> errors(kind.parts().size(), -1.0);
        kind.measure(*model.manipulator, state, placement, placement, errors.data());
        unsigned rows = 0;
        for (std::size_t p = 0; p < errors.size(); ++p) {
            EXPECT_EQ(kind.parts()[p].row, rows) << token;
            rows += kind.parts()[p].rows;
            if (kind.form().content != NqTargetForm::Nothing) {
                EXPECT_NEAR(errors[p], 0.0, 1.0e-7) << token << ": where it is";
            }
        }
        EXPECT_LE(rows, endEffector.doc()) << token;
        EXPECT_GE(rows, 1u) << token;
    }
    EXPECT_EQ(std::count(names.begin(), names.end(), ','), nqEndEffectorKinds().size() + 1) << names;
}

/// A type that the table doesn't know takes the targets of its base class.
TEST(NqTargetKind, GuessesTypesThatItDoesNotKnow) {
    class Unknown : public NqPointEndEffector {
        const NqToken& token() const override {
            static const NqToken name("unknownEndEffector");
            return name;
        }
    };
    Unknown unknown;
    EXPECT_EQ(NqTargetType::of(unknown).content, NqTargetForm::Place);
    EXPECT_EQ(NqTargetType::of(unknown).linearRows, 3u);
}

} // namespace
