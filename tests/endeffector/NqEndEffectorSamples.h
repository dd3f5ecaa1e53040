#pragma once

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>

#include "support/NqTestModels.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// A sample of an end-effector type for the suite EveryEndEffector: how one is set up on a model, with no
/// persisted field at its default, and what doesn't hold for the type. Each type in NqEndEffectorTypes needs
/// one.
template <typename EndEffector>
struct NqEndEffectorSample;

/// What sets a type apart from the ordinary. A property that doesn't hold is named with its reason.
struct NqEndEffectorTraits {
    /// d(error)/dt against the velocity: -1 where the error is desired minus present.
    double errorSign = -1.0;
    bool usesExternalOffset = true;    ///< whether an external offset moves the end-effector
    bool hasLinearRows = true;         ///< whether its first rows are a linear velocity
    bool hasAngularRows = false;       ///< whether its last rows are an angular velocity
    std::string whyNoVelocity{};       ///< why velocities aren't those of the Jacobian, if they aren't
    std::string whyNoError{};          ///< why errors aren't those of the placement, if they aren't
    std::string whyNoBaseMotion{};     ///< why the columns of the base aren't its motion, if they aren't
    std::string whyNoAcceleration{};   ///< why accelerations aren't those of the velocity, if they aren't
    std::string whyNoRelativeMotion{}; ///< why relative modes play no part, if they don't
};

template <typename Filter>
Filter nqScalarFilterSample() {
    Filter filter;
    filter.setFilteringMode(NqBaseMotionFilter::Proportional);
    filter.setExponent(0.5);
    filter.setThreshold(0.6);
    filter.setAccelerationThreshold(2.5);
    filter.setDecelerationThreshold(1.5);
    return filter;
}

template <>
struct NqEndEffectorSample<NqPointEndEffector> {
    static constexpr const char* name = "point";
    static NqEndEffectorTraits traits() { return {}; }
    static void setUp(NqPointEndEffector& endEffector, const NqTestModel& model) {
        endEffector.setLinkIdentifier(model.link);
        endEffector.setPoint({0.11, -0.07, 0.23});
        endEffector.setErrorWeight(0.75);
        auto filter = nqScalarFilterSample<NqPointMotionFilter>();
        filter.setLinearGain(40.0);
        endEffector.setPointMotionFilter(filter);
    }
};

template <>
struct NqEndEffectorSample<NqFrameEndEffector> {
    static constexpr const char* name = "frame";
    static NqEndEffectorTraits traits() { return {.hasAngularRows = true}; }
    static void setUp(NqFrameEndEffector& endEffector, const NqTestModel& model) {
        endEffector.setLinkIdentifier(model.link);
        endEffector.setFrame({NqVector(0.11, -0.07, 0.23), NqOrientation(0.8, {0.3, -0.5, 0.4})});
        endEffector.setLinearErrorWeight(0.75);
        endEffector.setAngularErrorWeight(0.3);
        NqGeneralMotionFilter filter;
        filter.setFilteringMode(NqBaseMotionFilter::Proportional);
        filter.setExponent(0.5);
        filter.setOffset({0.05, -0.1, 0.2});
        filter.setLinearVelocityThreshold(0.6);
        filter.setAngularVelocityThreshold(0.7);
        filter.setLinearAccelerationThreshold(2.5);
        filter.setAngularAccelerationThreshold(3.5);
        filter.setLinearDecelerationThreshold(1.5);
        filter.setAngularDecelerationThreshold(1.75);
        filter.setLinearGain(40.0);
        filter.setAngularGain(30.0);
        endEffector.setMotionFilter(filter);
    }
};

template <>
struct NqEndEffectorSample<NqOrientationEndEffector> {
    static constexpr const char* name = "orientation";
    static NqEndEffectorTraits traits() {
        return {.usesExternalOffset = false,
                .hasLinearRows = false,
                .hasAngularRows = true,
                .whyNoBaseMotion = "the ones stand in the columns of the base's translation"};
    }
    static void setUp(NqOrientationEndEffector& endEffector, const NqTestModel& model) {
        endEffector.setLinkIdentifier(model.link);
        endEffector.setOrientation({0.8, {0.3, -0.5, 0.4}});
        endEffector.setErrorWeight(0.75);
        NqRotationMotionFilter filter;
        filter.setFilteringMode(NqBaseMotionFilter::Proportional);
        filter.setExponent(0.5);
        filter.setAngularVelocityThreshold(0.7);
        filter.setAngularAccelerationThreshold(3.5);
        filter.setAngularDecelerationThreshold(1.75);
        filter.setAngularGain(30.0);
        endEffector.setMotionFilter(filter);
    }
};

/// What the types that drive a number have in common.
struct NqScalarEndEffectorSample {
    static NqEndEffectorTraits traits() {
        return {.errorSign = 1.0,
                .usesExternalOffset = false,
                .hasLinearRows = false,
                .whyNoAcceleration = "the acceleration of a number is zero by definition",
                .whyNoRelativeMotion = "only links that the type names itself count"};
    }
};

template <>
struct NqEndEffectorSample<NqLinearConstraintEndEffector> : NqScalarEndEffectorSample {
    static constexpr const char* name = "linearConstraint";
    static void setUp(NqLinearConstraintEndEffector& endEffector, const NqTestModel& model) {
        endEffector.setLinkLabels({model.link, model.secondLink});
        endEffector.setLinkWeights({0.75, -1.25});
        endEffector.setWeightedSum(0.5);
        endEffector.setErrorWeight(0.75);
        auto filter = nqScalarFilterSample<NqScalarMotionFilter>();
        filter.setGain(40.0);
        endEffector.setMotionFilter(filter);
    }
    static void lose(NqLinearConstraintEndEffector& endEffector) {
        endEffector.setLinkLabels({std::string("lost"), std::string("also")});
    }
};

template <>
struct NqEndEffectorSample<NqPointDistanceEndEffector> : NqScalarEndEffectorSample {
    static constexpr const char* name = "pointDistance";
    static NqEndEffectorTraits traits() {
        NqEndEffectorTraits traits = NqScalarEndEffectorSample::traits();
        traits.whyNoError = "the error is zero by definition";
        return traits;
    }
    static void setUp(NqPointDistanceEndEffector& endEffector, const NqTestModel& model) {
        endEffector.setLabelOne(model.secondLink);
        endEffector.setLabelTwo(model.link);
        endEffector.setPointOne({-0.2, 0.15, 0.05});
        endEffector.setPointTwo({0.11, -0.07, 0.23});
        endEffector.setErrorWeight(0.75);
        endEffector.setMotionFilter(nqScalarFilterSample<NqScalarMotionFilter>());
    }
    static void lose(NqPointDistanceEndEffector& endEffector) {
        endEffector.setLabelOne("lost");
        endEffector.setLabelTwo("lost");
    }
};

template <>
struct NqEndEffectorSample<NqAxisRotateEndEffector> : NqScalarEndEffectorSample {
    static constexpr const char* name = "axisRotate";
    static NqEndEffectorTraits traits() {
        NqEndEffectorTraits traits = NqScalarEndEffectorSample::traits();
        traits.whyNoVelocity = "the velocity takes the z axis of the system for that of the frame";
        traits.whyNoBaseMotion = "the columns of the base are zero";
        return traits;
    }
    static void setUp(NqAxisRotateEndEffector& endEffector, const NqTestModel& model) {
        endEffector.setLinkIdentifier(model.link);
        endEffector.setOrientation({0.8, {0.3, -0.5, 0.4}});
        endEffector.setReferenceAxis({0.48, -0.6, 0.64});
        endEffector.setErrorWeight(0.75);
        endEffector.setMotionFilter(nqScalarFilterSample<NqScalarMotionFilter>());
    }
};

/// A type of end-effector, told apart from the others at run time.
struct NqEndEffectorKind {
    std::string name;
    NqEndEffectorTraits traits;
    std::function<std::unique_ptr<NqEndEffector>(const NqTestModel&)> make;
    std::function<std::unique_ptr<NqEndEffector>()> makeDefault;
    std::function<void(NqEndEffector&)> lose; ///< gives it labels that no model has
};

/// All types that can be made from a file.
inline const std::vector<NqEndEffectorKind>& nqEndEffectorKinds() {
    static const std::vector<NqEndEffectorKind> theKinds = [] {
        std::vector<NqEndEffectorKind> kinds;
        NqEndEffectorTypes::forEach([&]<typename EndEffector>() {
            using Sample = NqEndEffectorSample<EndEffector>;
            const auto make = [](const NqTestModel& model) -> std::unique_ptr<NqEndEffector> {
                auto endEffector = std::make_unique<EndEffector>();
                Sample::setUp(*endEffector, model);
                endEffector->setIsHardConstraint(false);
                endEffector->setIsEditable(false);
                endEffector->setExternalOffsetIndex(3);
                endEffector->setCanBecomeSoft(true);
                return endEffector;
            };
            const auto lose = [](NqEndEffector& endEffector) {
                if constexpr (requires(EndEffector & own) { Sample::lose(own); }) {
                    Sample::lose(dynamic_cast<EndEffector&>(endEffector));
                } else {
                    endEffector.changeLinkLabel(endEffector.linkIdentifier(), "lost");
                }
            };
            kinds.push_back(
                {Sample::name, Sample::traits(), make, [] { return std::make_unique<EndEffector>(); }, lose});
        });
        return kinds;
    }();
    return theKinds;
}
