#include <nqControlCore/xml/NqControlCoreTokens.h>

#include <nqControlCore/core/NqControlParameters.h>
#include <nqControlCore/core/NqCoreResult.h>
#include <nqControlCore/core/NqManipulatorEndEffectorAcceleration.h>
#include <nqControlCore/core/NqManipulatorEndEffectorForce.h>
#include <nqControlCore/core/NqManipulatorEndEffectorVelocity.h>
#include <nqControlCore/endeffector/NqEndEffectorMap.h>
#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/foundation/manipulator/NqAccelerationState.h>
#include <nqControlCore/foundation/manipulator/NqPositionState.h>
#include <nqControlCore/foundation/manipulator/NqVelocityState.h>

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace NqControlCore;

// clang-format off
#define NQ_REGULAR_TOKENS(X) \
    X(AccContWeight) X(AccelerationLimits) X(AccelerationOutputFilter) X(AccelerationThreshold) \
    X(AccelerometerEndEffector) X(ActivationTriggerValues) X(AllowDeviationNearSingularity) X(And) \
    X(AngularAccelerationThreshold) X(AngularDecelerationThreshold) X(AngularErrorWeight) X(AngularGain) \
    X(AngularVelocityThreshold) X(AngularWeight) X(AntiCollisionEndEffectorSet) X(AxisRotateEndEffector) \
    X(BaseComponent) X(CalibrationOffsets) X(CanBecomeSoft) X(CenterOfMassEndEffector) \
    X(CleverPositionControlSystem) X(CollisionForceToSensorReadingConstant) X(ColumnPosition) X(ColumnSize) \
    X(Column) X(ControlParameters) X(CoordinatedJointEndEffector) X(CoreIsAB) X(Cosine) \
    X(DecelerationLimits) X(DecelerationThreshold) X(DefaultMaxVelocity) X(DefaultProfileAcceleration) \
    X(DefaultThresholds) X(DesiredAngularMomentum) X(DesiredLinearMomentum) X(DiagonalMatrix) X(Diagonal) \
    X(DirectionalFrameEndEffector) X(EditableValues) X(EditingLabels) X(ElbowLink) X(ElbowPoint) \
    X(ElementInverse) X(ElementLogN) X(ElementLog) X(ElementPow) X(ElementRoot) X(ElementValue) \
    X(EnabledManipulators) X(EndEffectorMap) X(EndEffectorMetricMatrix) X(EndEffectorVector) X(ErrorWeight) \
    X(Exponent) X(ExpressionContainer) X(ExternalOffsetIndex) X(FilteringMode) X(FocusDistance) \
    X(FrameEndEffector) X(Frame) X(FreeSpinInZEndEffector) X(FullyClosedPosition) X(FullyOpenPosition) \
    X(Gain) X(GeneralColumn) X(GeneralEndEffectorAccelerations) X(GeneralEndEffectorForces) \
    X(GeneralEndEffectorMotionFilters) X(GeneralEndEffectorVelocities) X(GeneralForces) \
    X(GeneralMotionAccelerationFilter) X(GeneralMotionFilter) X(GeneralPrimary) X(GeneralVelocities) \
    X(GravityVector) X(GreaterThanOrEqualTo) X(GreaterThan) X(IdentityMatrix) X(IncludeAngular) \
    X(Initialized) X(IsEditable) X(IsHardConstraint) X(IsInteractive) X(IsRelativeLink) \
    X(JointAccelerationThresholds) X(Ki) X(Kp) X(LabelOne) X(LabelTwo) X(LessThanOrEqualTo) X(LessThan) \
    X(LinearAccelerationThreshold) X(LinearConstraintEndEffector) X(LinearDecelerationThreshold) \
    X(LinearErrorWeight) X(LinearGain) X(LinearVelocityThreshold) X(LinkIdentifier) X(LogN) X(Log) \
    X(LookAtEndEffector) X(ManipulatorConstraints) X(ManipulatorConstraintTool) \
    X(ManipulatorControlParameter) X(ManipulatorEndEffectorAcceleration) X(ManipulatorEndEffectorForce) \
    X(ManipulatorIndex) X(MatrixParameter) X(MaxVelocities) X(Minus) X(MotionFilterSets) X(MotionFilterSet) \
    X(MotionFilter) X(Negative) X(NullSpaceComponent) X(Offset) X(OffsetTransformations) \
    X(OffsetTransformation) X(OneDofGripperEndEffector) X(OrientationEndEffector) X(Orientation) X(Or) \
    X(PlanarEndEffector) X(Plus) X(PointDistanceEndEffector) X(PointEndEffector) X(PointMotionFilter) \
    X(PointOfApplication) X(PointOne) X(Point) X(PointTwo) X(PositionControlSystemWithAcceleration) \
    X(PositionControlSystemWithSimulation) X(Position) X(PrimaryDeterminant) X(ProfileAccelerations) \
    X(ProjectAlongSystemVector) X(ProjectedCenterOfMassEndEffector) X(Proportional) X(ReferenceAxis) \
    X(ReferenceLink) X(RelativeLinkData) X(RelativeLinkId) X(RelativeModeExternal) X(RelativeModeInternal) \
    X(RelativeModeNone) X(RelativeMode) X(RowPosition) X(RowSize) X(SagEndEffector) X(ScalarConstant) \
    X(ScalarMotionFilter) X(ScalarParameter) X(SewAngleEndEffector) X(ShoulderLink) X(SimulationControl) \
    X(SimulationFilter) X(SimulationRunTimeScaleFactor) X(SimulationRunTime) X(SimulationSteps) \
    X(SimulationTolerance) X(Sine) X(SingleElementColumn) X(SingleElementMatrix) \
    X(SingularityProximityThreshold) X(Size) X(SlaveJointLabels) X(SlaveJointWeights) \
    X(SlideXSpinZEndEffector) X(SlidingEndEffector) X(SpatialMomentumEndEffector) X(SystemVector) \
    X(ThreeHalves) X(ThresholdMaps) X(ThresholdOption) X(Threshold) X(Times) X(Transpose) X(Trapezoidal) \
    X(Type) X(UnfilteredRatesVector) X(UseControlParameters) X(UseExternalOffset) X(VectorParameter) \
    X(VelocityControllers) X(VelocityLimits) X(WeightedSum) X(WristLink) X(WristPoint) X(XEndEffector) \
    X(XyEndEffector) X(XyOrientation)
// clang-format on

/// The name in files by the naming rule.
std::string byRule(std::string constant) {
    constant[0] = static_cast<char>(constant[0] - 'A' + 'a');
    return constant;
}

#define NQ_ENTRY(name) {byRule(#name), &Nq##name##Token},

TEST(NqControlCoreTokens, AreTheWholeVocabulary) {
    const std::map<std::string, const NqToken*> qualified = {
        NQ_REGULAR_TOKENS(NQ_ENTRY){"coreResultToken", &NqCoreResultToken},
        {"manipulatorEndEffectorVelocityToken", &NqManipulatorEndEffectorVelocityToken},
        {"generalPlamements", &NqGeneralPlacementsToken},
        {"jointLabels", &NqLinkLabelsToken},
        {"jointWeights", &NqLinkWeightsToken},
        {"rcmEndEffector", &NqRCMEndEffectorToken},
        {"triggerLink", &NqTriggerLinkLabelToken}};
    EXPECT_EQ(qualified.size(), 200U);
    for (const auto& [name, token] : qualified) {
        EXPECT_EQ(token->token(), "http://nq.example/namespace/ct#" + name);
        EXPECT_EQ(token->localName(), name);
        EXPECT_EQ(token->namespaceUri(), ns.token());
    }
    for (const auto& [name, token] :
         std::map<std::string, const NqToken*>{{"infinityNorm", &NqInfinityNormToken},
                                               {"oneNorm", &NqOneNormToken},
                                               {"twoNorm", &NqTwoNormToken}}) {
        EXPECT_EQ(*token, name);
        EXPECT_FALSE(*token == ns + name.c_str());
    }
}

// Names of another module, made from the namespace, are there before anything else.
constinit const NqToken kMine = ns + "mine";
const std::string kMineText = kMine.token();
static_assert(NqGainToken.localName() == "gain" && NqGainToken.namespaceUri() == ns.localName());

TEST(NqToken, OwnsWhatIsNoConstant) {
    EXPECT_EQ(kMineText, "http://nq.example/namespace/ct#mine");
    EXPECT_EQ(NqToken(kMine).localName().data(), kMine.localName().data());
    std::string name = "late in the program, and too long to be kept in place";
    const std::string before = name;
    const NqToken late = NqToken(kMine + "/") + name.c_str();
    NqToken copy = "gone";
    {
        const NqToken original = late;
        copy = original;
        name = "overwritten";
    }
    EXPECT_EQ(copy.token(), kMineText + "/" + before);
    EXPECT_EQ(copy.localName(), before);
    EXPECT_EQ(copy, late);
    EXPECT_EQ(copy, NqToken(copy.c_str())); // wherever the text is divided
    EXPECT_TRUE(kMine < copy && !(copy < kMine) && NqToken("a") < NqToken("\xC3"));
}

template <typename... Records>
std::string namesOf() {
    std::string names;
    ((names += std::string(Records().token().localName()) + " "), ...);
    return names;
}

TEST(NqControlCoreTokens, NameTheRecords) {
    using namespace NqControlCore;
    EXPECT_EQ((namesOf<NqCoreResult, NqControlParameters, NqManipulatorEndEffectorVelocity,
                       NqManipulatorEndEffectorForce, NqManipulatorEndEffectorAcceleration,
                       NqEndEffectorRelativeLinkData, NqEndEffectorVector, NqEndEffectorMap>()),
              "coreResultToken controlParameters manipulatorEndEffectorVelocityToken "
              "manipulatorEndEffectorForce manipulatorEndEffectorAcceleration relativeLinkData "
              "endEffectorVector endEffectorMap ");
    EXPECT_EQ((namesOf<NqPositionState, NqVelocityState, NqAccelerationState>()),
              "positionState velocityState accelerationState ");
}

TEST(NqToken, NamesWithoutNamespaceAreThoseOfTheParent) {
    EXPECT_TRUE((ns + "gain").names("gain"));
    EXPECT_TRUE(NqToken("gain").names(NqGainToken));
    EXPECT_FALSE((NqToken("urn:other#") + "gain").names(NqGainToken));
    EXPECT_FALSE(NqToken("gains").names(NqGainToken));
}

} // namespace
