#pragma once

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include "support/NqTestModels.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

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

inline NqEndEffectorTraits nqTraitsOf(const NqPointEndEffector&) {
    return {};
}
inline NqEndEffectorTraits nqTraitsOf(const NqFrameEndEffector&) {
    return {.hasAngularRows = true};
}
inline NqEndEffectorTraits nqTraitsOf(const NqOrientationEndEffector&) {
    return {.usesExternalOffset = false,
            .hasLinearRows = false,
            .hasAngularRows = true,
            .whyNoBaseMotion = "the ones stand in the columns of the base's translation"};
}
/// What the types that drive a number have in common.
inline NqEndEffectorTraits nqTraitsOf(const NqScalarBasedEndEffector&) {
    return {.errorSign = 1.0,
            .usesExternalOffset = false,
            .hasLinearRows = false,
            .whyNoAcceleration = "the acceleration of a number is zero by definition",
            .whyNoRelativeMotion = "only links that the type names itself count"};
}
inline NqEndEffectorTraits nqTraitsOf(const NqPointDistanceEndEffector& distance) {
    NqEndEffectorTraits traits = nqTraitsOf(static_cast<const NqScalarBasedEndEffector&>(distance));
    traits.whyNoError = "the error is zero by definition";
    return traits;
}
inline NqEndEffectorTraits nqTraitsOf(const NqAxisRotateEndEffector& axis) {
    NqEndEffectorTraits traits = nqTraitsOf(static_cast<const NqScalarBasedEndEffector&>(axis));
    traits.whyNoVelocity = "the velocity takes the z axis of the system for that of the frame";
    traits.whyNoBaseMotion = "the columns of the base are zero";
    return traits;
}

/// Puts an end-effector on one link, or on two where it is between them.
inline void nqAttach(NqEndEffector& endEffector, const std::string& link, const std::string&) {
    endEffector.setLinkIdentifier(link);
}
inline void nqAttach(NqLinearConstraintEndEffector& sum, const std::string& link, const std::string& second) {
    sum.setLinkLabels({link, second});
    sum.setIsInteractive(true);
}
inline void nqAttach(NqPointDistanceEndEffector& distance, const std::string& link,
                     const std::string& second) {
    distance.setLabelOne(second);
    distance.setLabelTwo(link);
}

/// A type of end-effector, told apart from the others at run time. A sample of it has the values of its file
/// in the folder of golden files, none of which is a default, and sits on the links of a model.
struct NqEndEffectorKind {
    std::string name;
    NqEndEffectorTraits traits;
    std::function<std::unique_ptr<NqEndEffector>()> makeDefault;
    std::function<void(NqEndEffector&, const std::string& link, const std::string& second)> attach;

    std::string goldenFile() const { return NQ_GOLDEN "/" + name + "EndEffector.xml"; }

    std::unique_ptr<NqEndEffector> make(const NqTestModel& model) const {
        std::unique_ptr<NqEndEffector> endEffector = makeDefault();
        EXPECT_TRUE(NqXmlDocument::readFile(goldenFile(), *endEffector));
        endEffector->setRelativeLinkData({});
        endEffector->setUseExternalOffset(false);
        attach(*endEffector, model.link, model.secondLink);
        return endEffector;
    }
};

/// All types that can be made from a file.
inline const std::vector<NqEndEffectorKind>& nqEndEffectorKinds() {
    static const std::vector<NqEndEffectorKind> theKinds = [] {
        std::vector<NqEndEffectorKind> kinds;
        NqEndEffectorTypes::forEach([&]<typename EndEffector>() {
            const std::string token(EndEffector::classToken().localName());
            kinds.push_back({token.substr(0, token.find("EndEffector")), nqTraitsOf(EndEffector()),
                             [] { return std::make_unique<EndEffector>(); },
                             [](NqEndEffector& any, const std::string& link, const std::string& second) {
                                 nqAttach(dynamic_cast<EndEffector&>(any), link, second);
                             }});
        });
        return kinds;
    }();
    return theKinds;
}
