#include "support/NqTesting.h"

#include <nqControlCore/core/NqControlParameters.h>
#include <nqControlCore/core/NqCoreResult.h>
#include <nqControlCore/core/NqManipulatorEndEffectorAcceleration.h>
#include <nqControlCore/core/NqManipulatorEndEffectorForce.h>
#include <nqControlCore/core/NqSupplementalControlState.h>
#include <nqControlCore/core/NqVelocityControlData.h>

#include <regex>

namespace {

using Reals = std::vector<double>;

/// The names of a document's elements, in order.
std::string elements(const NqXmlObject& object) {
    const std::string document = nqWritten(object);
    const std::regex start("<([a-z]\\w*)");
    std::string names;
    for (std::sregex_iterator at(document.begin(), document.end(), start), end; at != end; ++at) {
        names += at->str(1) + ' ';
    }
    return names;
}

/// An object has these elements. Each of the changes makes it differ from a default one, and goes along into
/// copies.
template <typename Object, typename... Changes>
void expectRecord(const std::string& names, const Changes&... changes) {
    if constexpr (std::is_base_of_v<NqXmlObject, Object>) {
        EXPECT_EQ(elements(Object()), names);
    }
    const auto expectDiffers = [](const auto& change) {
        Object changed, assigned;
        change(changed);
        assigned = changed;
        EXPECT_TRUE(changed == assigned && changed == Object(changed) && !(changed == Object()));
    };
    (expectDiffers(changes), ...);
}

TEST(ControlRecords, HaveTheirElementsAndCompareTheirFields) {
    const NqXmlVectorType<NqXmlRealVector> vectors{NqXmlRealVector{1.0}};
    const NqXmlRealVector vector{1.0};
    expectRecord<NqCoreResult>(
        "coreResultToken baseComponent nullSpaceComponent primaryDeterminant coreIsAB ",
        [&](auto& result) { result.setBaseComponent(vector); },
        [&](auto& result) { result.setNullSpaceComponent(vector); },
        [&](auto& result) { result.setPrimaryDeterminant(1.0); });
    expectRecord<NqControlParameters>(
        "controlParameters accelerationLimits decelerationLimits velocityLimits ",
        [&](auto& limits) { limits.setAccelerationLimits(vector); },
        [&](auto& limits) { limits.setDecelerationLimits(vector); },
        [&](auto& limits) { limits.setVelocityLimits(vector); },
        [&](auto& limits) { limits.setSingularityProximityThreshold(1.0); });
    expectRecord<NqManipulatorEndEffectorVelocity>(
        "manipulatorEndEffectorVelocityToken generalEndEffectorVelocities ",
        [&](auto& velocity) { velocity.setGeneralEndEffectorVelocities(vectors); });
    expectRecord<NqManipulatorEndEffectorForce>(
        "manipulatorEndEffectorForce generalEndEffectorForces ",
        [&](auto& force) { force.setGeneralEndEffectorForces(vectors); });
    expectRecord<NqManipulatorEndEffectorAcceleration>(
        "manipulatorEndEffectorAcceleration offsetTransformations generalEndEffectorAccelerations ",
        [&](auto& acceleration) { acceleration.generalEndEffectorAccelerations() = vectors; },
        [&](auto& acceleration) { acceleration.setOffsetTransformations({{}}); });
    expectRecord<NqSupplementalControlState>(
        "",
        [&](auto& state) { state.setPreviousEndEffectorVelocities({NqManipulatorEndEffectorVelocity()}); },
        [&](auto& state) { state.setPreviousActualVelocityStates({NqVelocityState()}); },
        [&](auto& state) { state.previousState().setPositionStates({NqPositionState()}); });
}

TEST(NqCoreResult, SplitsRatesAndFindsTheirCoordinates) {
    NqCoreResult result;
    result.setComponentsFromTotalAndNull({3.0, 1.0, 2.0, 9.0}, {1.0, -1.0, 0.5});
    EXPECT_EQ(result.baseComponent(), (Reals{2.0, 2.0, 1.5}));
    EXPECT_FALSE(result.isNullSpaceComponentZero());
    NqReArray rates;
    rates = Reals{4.0, 8.0, 3.5};
    double x = 9.0, y = 9.0;
    result.setNullSpaceComponent({0.0, 0.0, 0.0});
    EXPECT_TRUE(result.isNullSpaceComponentZero() && result.getComponentCoordinates(rates, x, y));
    EXPECT_NEAR(x, (4.0 * 2.0 + 8.0 * 2.0 + 3.5 * 1.5) / 10.25, 1e-14);
    EXPECT_EQ(y, 0.0);
    result.setNullSpaceComponent({4.0, 4.0, 3.0});
    EXPECT_FALSE(result.getComponentCoordinates(rates, x, y)) << "parallel";
    EXPECT_FALSE(NqCoreResult().getComponentCoordinates(rates, x, y));
    EXPECT_TRUE(x == 0.0 && y == 0.0);
    NqCoreResult other = result;
    other.setCoreIsAB(true);
    other.setMatrix(rates);
    EXPECT_TRUE(other == result && nqThroughXml(other).coreIsAB() && nqThroughXml(other) == result);
}

TEST(NqCoreResult, CoordinatesNeitherOverflowNorVanish) {
    for (const double scale : {1e-250, 1.0, 1e250}) {
        NqCoreResult result;
        result.setBaseComponent({2.0 * scale, 0.0, scale});
        result.setNullSpaceComponent({0.0, -4.0 * scale, scale});
        NqReArray rates;
        rates = Reals{6.0 * scale, 8.0 * scale, scale};
        double x = 9.0, y = 9.0;
        EXPECT_TRUE(result.getComponentCoordinates(rates, x, y));
        EXPECT_NEAR(x, 3.0, 1e-14);
        EXPECT_NEAR(y, -2.0, 1e-14);
        // All rates count for the scale, those beyond the components too: here the rest vanishes beside it.
        rates = Reals{6.0 * scale, 8.0 * scale, scale, scale * 1e200};
        EXPECT_FALSE(result.getComponentCoordinates(rates, x, y));
        // And so do all entries of the components.
        result.setBaseComponent({0.0, 2.0 * scale, scale});
        result.setNullSpaceComponent({0.0, scale, -scale});
        rates = Reals{0.0, 0.0, 0.0};
        EXPECT_TRUE(result.getComponentCoordinates(rates, x, y) && x == 0.0 && y == 0.0);
    }
}

TEST(NqVelocityControlData, KnowsWhetherItsDeterminantWasSet) {
    NqVelocityControlData data;
    data = NqXmlVectorType<NqXmlRealVector>{NqXmlRealVector{1.0, 2.0}};
    EXPECT_TRUE(data.primaryDeterminant() == -1.0 && data[0][1] == 2.0);
    data.setPrimaryDeterminant(0.0);
    data = Reals{1.0};
    EXPECT_TRUE(data.primaryDeterminant() == 0.0 && !(data == NqVelocityControlData()));
    EXPECT_TRUE(data == NqVelocityControlData(data));
    NqVelocityControlData unset;
    unset = Reals{1.0};
    EXPECT_FALSE(data == unset);
}

TEST(NqControlParameters, FillTheTailAndKeepTheThresholdOutOfFiles) {
    NqControlParameters parameters;
    parameters.setVelocityLimits({3.0});
    parameters.createDefaultFromManipulator(*nqTestModels()[0].manipulator);
    EXPECT_EQ(parameters.velocityLimits(), (Reals{3.0, 1.0}));
    EXPECT_EQ(parameters.accelerationLimits(), (Reals{1e300, 1e300}));
    EXPECT_TRUE(parameters.decelerationLimits().empty() && nqThroughXml(parameters) == parameters);
    parameters.setSingularityProximityThreshold(0.1);
    EXPECT_FALSE(nqThroughXml(parameters) == parameters);
}

TEST(NqMotionSets, StackTheirVectors) {
    NqManipulatorEndEffectorVelocity velocity({NqXmlRealVector{1.0, 2.0}, NqXmlRealVector{3.0}});
    Reals stacked(9);
    velocity.getSingleVector(stacked);
    EXPECT_EQ(stacked, (Reals{1.0, 2.0, 3.0}));
    velocity.getSingleVector({1, 0, 1}, stacked);
    EXPECT_EQ(stacked, (Reals{3.0, 1.0, 2.0, 3.0}));
    EXPECT_TRUE(velocity.doc() == 3 && velocity.doc({1, 1}) == 2);
    EXPECT_FALSE(velocity.setGeneralEndEffectorVelocity(2, {}));
    EXPECT_TRUE(velocity.setGeneralEndEffectorVelocity(1, {}) && nqThroughXml(velocity) == velocity);

    NqManipulatorEndEffectorAcceleration acceleration;
    acceleration.setGeneralEndEffectorAccelerations(velocity.generalEndEffectorVelocities());
    EXPECT_TRUE(acceleration.offsetTransformations().size() == 2 && acceleration.doc() == 2);
}

} // namespace
