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
    double errorSign =
        -1.0; ///< d(error)/dt against the velocity: -1 where the error is desired minus present
    bool usesExternalOffset = true;    ///< whether an external offset moves the end-effector
    std::string whyNoAcceleration{};   ///< why accelerations aren't those of the velocity, if they aren't
    std::string whyNoRelativeMotion{}; ///< why relative modes play no part, if they don't
};

template <>
struct NqEndEffectorSample<NqPointEndEffector> {
    static constexpr const char* name = "point";
    static NqEndEffectorTraits traits() { return {}; }
    static void setUp(NqPointEndEffector& endEffector, const NqTestModel& model) {
        endEffector.setLinkIdentifier(model.link);
        endEffector.setPoint({0.11, -0.07, 0.23});
        endEffector.setErrorWeight(0.75);
        NqPointMotionFilter filter;
        filter.setFilteringMode(NqBaseMotionFilter::Proportional);
        filter.setExponent(0.5);
        filter.setThreshold(0.6);
        filter.setAccelerationThreshold(2.5);
        filter.setDecelerationThreshold(1.5);
        filter.setLinearGain(40.0);
        endEffector.setPointMotionFilter(filter);
    }
};

/// A type of end-effector, told apart from the others at run time.
struct NqEndEffectorKind {
    std::string name;
    NqEndEffectorTraits traits;
    std::function<std::unique_ptr<NqEndEffector>(const NqTestModel&)> make;
    std::function<std::unique_ptr<NqEndEffector>()> makeDefault;
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
            kinds.push_back(
                {Sample::name, Sample::traits(), make, [] { return std::make_unique<EndEffector>(); }});
        });
        return kinds;
    }();
    return theKinds;
}
