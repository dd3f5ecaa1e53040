#pragma once

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include "support/NqTestFiles.h"
#include "support/NqTestModels.h"

#include <cmath>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

/// The axes that an end-effector's rows may be in: those of its own frame, and those of the link that it is
/// relative to, which are the system's where there is none.
struct NqRowAxes {
    NqOrientation own;
    NqOrientation reference;
};

/// What sets a type apart from the ordinary. A property that doesn't hold is named with its reason.
struct NqEndEffectorTraits {
    /// The rows as a function of the motion of the end-effector's frame, in the axes of the system; empty
    /// where they are of something else.
    std::function<std::vector<double>(const NqEndEffector&, const NqGeneralMotion&, const NqRowAxes&)> rows{};
    bool hasOwnAxes = false; ///< whether the rows are in the frame's own axes, which turn with it
    /// What stands in the error in the place of the rows, where whyNoError says so.
    decltype(rows) errorRows{};
    bool lostLinkKeepsVelocity = false; ///< whether a link that is not found leaves it as it was
    bool lostLinkKeepsError = false;    ///< the same
    /// d(error)/dt against the velocity: -1 where the error is desired minus present.
    double errorSign = -1.0;
    bool usesExternalOffset = true;    ///< whether an external offset moves the end-effector
    std::string whyNoVelocity{};       ///< why velocities aren't those of the Jacobian, if they aren't
    std::string whyNoError{};          ///< why errors aren't those of the placement, if they aren't
    std::string whyNoBaseMotion{};     ///< why the columns of the base aren't its motion, if they aren't
    std::string whyNoAcceleration{};   ///< why accelerations aren't those of the velocity, if they aren't
    std::string whyNotDriven{};        ///< why the filter doesn't lead to a placement, if it doesn't
    bool hasThreeHalves = true;        ///< whether a mode word stands for that profile
    std::string whyNoRelativeMotion{}; ///< why relative modes play no part, if they don't
    std::string whyOnlyTheFirstRow{};  ///< why rows behind the first aren't rates of anything, if they aren't
    std::string whySilent{};    ///< why unknown links go unreported, and have no entries in lists, if they do
    bool hasNumber = false;     ///< whether the first row drives the number in the placement's z translation
    std::string whyNoSliding{}; ///< why the columns of sliding joints aren't their motion
    std::string whyOnlyFromSystem{}; ///< why relative rows are right for a base in the system frame alone
    std::string whyNoLostLink{};     ///< why no link is missed, if none is
    std::string whyNoPlacement{};    ///< why the placement isn't what the rows drive, if it isn't
};

/// Components of a motion in the axes of the system, by index.
template <unsigned... Indices>
std::vector<double> nqComponentsOf(const NqEndEffector&, const NqGeneralMotion& motion, const NqRowAxes&) {
    return {motion[Indices]...};
}

/// The same in the axes of the frame.
template <unsigned... Indices>
std::vector<double> nqOwnComponentsOf(const NqEndEffector&, const NqGeneralMotion& motion,
                                      const NqRowAxes& axes) {
    const NqGeneralMotion own = axes.own.inverse() * motion;
    return {own[Indices]...};
}

/// What the types that constrain some freedoms of a frame have in common.
template <unsigned... Indices>
NqEndEffectorTraits nqTraitsOfPartialFrames() {
    return {.rows = nqOwnComponentsOf<Indices...>, .hasOwnAxes = true, .lostLinkKeepsVelocity = true};
}

/// The same for those whose error isn't that of the rows.
template <unsigned... Indices>
NqEndEffectorTraits nqTraitsOfPartialFrames(decltype(NqEndEffectorTraits::errorRows) errorRows) {
    NqEndEffectorTraits traits = nqTraitsOfPartialFrames<Indices...>();
    traits.errorRows = std::move(errorRows);
    traits.whyNoError = "the error is the beginning of that of the whole frame, in the system frame";
    return traits;
}

/// Coordinates in axes that are fixed in the link that the point is relative to.
template <typename EndEffector, unsigned... Indices>
NqEndEffectorTraits nqTraitsOfCoordinates(const NqOrientation& (EndEffector::*turn)() const) {
    return {.rows = [turn](const NqEndEffector& endEffector, const NqGeneralMotion& motion,
                           const NqRowAxes& axes) -> std::vector<double> {
                const NqOrientation& own = (dynamic_cast<const EndEffector&>(endEffector).*turn)();
                const NqVector linear = (axes.reference * own).inverse() * motion.linear();
                return {linear[Indices]...};
            },
            .hasThreeHalves = false};
}

/// What the types that drive a number have in common.
inline NqEndEffectorTraits nqTraitsOfNumbers() {
    return {.errorSign = 1.0,
            .usesExternalOffset = false,
            .whyNoAcceleration = "the acceleration of a number is zero by definition",
            .whyNoRelativeMotion = "only links that the type names itself count",
            .hasNumber = true};
}

/// What the types that constrain the centre of mass have in common.
inline NqEndEffectorTraits nqTraitsOfMassCenters() {
    return {.usesExternalOffset = false,
            .whyNoAcceleration = "no acceleration is written",
            .hasThreeHalves = false,
            .whyNoSliding = "the columns of sliding joints leave out how much mass they move",
            .whyOnlyFromSystem = "the relative link's part takes the centre of mass as the base frame has it",
            .whyNoLostLink = "all links count, whatever they are called"};
}

/// The traits of each type; one without does not compile.
struct NqTraits {
    template <typename EndEffector>
    using Of = std::type_identity<EndEffector>;

    static NqEndEffectorTraits of(Of<NqPointEndEffector>) { return {.rows = nqComponentsOf<0, 1, 2>}; }
    static NqEndEffectorTraits of(Of<NqFrameEndEffector>) {
        return {.rows = nqComponentsOf<0, 1, 2, 3, 4, 5>};
    }
    static NqEndEffectorTraits of(Of<NqOrientationEndEffector>) {
        return {.rows = nqComponentsOf<3, 4, 5>,
                .usesExternalOffset = false,
                .whyNoBaseMotion = "the ones stand in the columns of the base's translation"};
    }
    static NqEndEffectorTraits of(Of<NqPlanarEndEffector>) {
        return nqTraitsOfPartialFrames<2, 3, 4>(nqComponentsOf<0, 1, 2>);
    }
    static NqEndEffectorTraits of(Of<NqSlidingEndEffector>) {
        return nqTraitsOfPartialFrames<1, 2, 3, 4, 5>(nqComponentsOf<0, 1, 2, 3, 4>);
    }
    static NqEndEffectorTraits of(Of<NqSlideXSpinZEndEffector>) {
        return nqTraitsOfPartialFrames<1, 2, 3, 4>(nqComponentsOf<0, 1, 2, 3>);
    }
    static NqEndEffectorTraits of(Of<NqRCMEndEffector>) {
        return nqTraitsOfPartialFrames<1, 2>(nqComponentsOf<0, 1>);
    }
    /// The offset of the filter is on the z axis in the sample: the spin that is left would move any other.
    static NqEndEffectorTraits of(Of<NqFreeSpinInZEndEffector>) {
        NqEndEffectorTraits traits = nqTraitsOfPartialFrames<0, 1, 2, 3, 4>();
        traits.lostLinkKeepsError = true;
        return traits;
    }
    static NqEndEffectorTraits of(Of<NqLookAtEndEffector>) {
        NqEndEffectorTraits traits = nqTraitsOfPartialFrames<1, 2>(nqComponentsOf<0, 1>);
        traits.lostLinkKeepsVelocity = false;
        traits.whyNoBaseMotion = "the columns of the base are zero: a base that moves goes unseen";
        traits.whyNoAcceleration = "the acceleration is zero by definition";
        traits.whyNoRelativeMotion = "the target is one of the system: no link's motion is taken away";
        return traits;
    }
    static NqEndEffectorTraits of(Of<NqXEndEffector>) {
        return nqTraitsOfCoordinates<NqXEndEffector, 0>(&NqXEndEffector::xOrientation);
    }
    static NqEndEffectorTraits of(Of<NqXyEndEffector>) {
        return nqTraitsOfCoordinates<NqXyEndEffector, 0, 1>(&NqXyEndEffector::xyOrientation);
    }
    static NqEndEffectorTraits of(Of<NqLinearConstraintEndEffector>) { return nqTraitsOfNumbers(); }
    static NqEndEffectorTraits of(Of<NqPointDistanceEndEffector>) {
        NqEndEffectorTraits traits = nqTraitsOfNumbers();
        traits.whyNoError = "the error is zero by definition";
        return traits;
    }
    static NqEndEffectorTraits of(Of<NqAxisRotateEndEffector>) {
        NqEndEffectorTraits traits = nqTraitsOfNumbers();
        traits.whyNoVelocity = "the velocity takes the z axis of the system for that of the frame";
        traits.whyNoBaseMotion = "the columns of the base are zero";
        return traits;
    }
    static NqEndEffectorTraits of(Of<NqSewAngleEndEffector>) {
        NqEndEffectorTraits traits = nqTraitsOfNumbers();
        traits.whyNoVelocity =
            "the velocity counts the shoulder's own joint and the base too, which turn the arm "
            "together with the frame that the angle is measured in";
        traits.whyNoError = "the error is zero by definition";
        traits.whyNotDriven = "there is no filter to switch off: the command is a gain times the way";
        return traits;
    }
    static NqEndEffectorTraits of(Of<NqCoordinatedJointEndEffector>) {
        return {.usesExternalOffset = false,
                .whyNoAcceleration = "the acceleration of joints is zero by definition",
                .whyNoRelativeMotion = "positions of joints are the same in every frame",
                .whySilent = "a model without some of the joints is one to drive with the others"};
    }
    static NqEndEffectorTraits of(Of<NqOneDofGripperEndEffector>) {
        NqEndEffectorTraits traits = nqTraitsOfNumbers();
        traits.whyOnlyTheFirstRow =
            "the rows of slaves say how far these stray from the master, and they count "
            "as though nothing strayed";
        traits.whySilent = "a model without some of the fingers is one to drive with the others";
        return traits;
    }
    static NqEndEffectorTraits of(Of<NqDirectionalFrameEndEffector>) { return of(Of<NqFrameEndEffector>()); }
    static NqEndEffectorTraits of(Of<NqCenterOfMassEndEffector>) {
        NqEndEffectorTraits traits = nqTraitsOfMassCenters();
        traits.rows = nqComponentsOf<0, 1, 2>;
        return traits;
    }
    static NqEndEffectorTraits of(Of<NqProjectedCenterOfMassEndEffector>) {
        NqEndEffectorTraits traits = nqTraitsOfMassCenters();
        traits.rows = [](const NqEndEffector& any, const NqGeneralMotion& motion, const NqRowAxes& axes) {
            const auto& e = dynamic_cast<const NqProjectedCenterOfMassEndEffector&>(any);
            NqOrientation plane = axes.reference * e.xyOrientation();
            if (e.projectAlongSystemVector()) {
                // By the angle between the lines of the normal and of the vector, about what both are normal
                // to.
                const NqVector normal = plane.zAxis();
                const NqVector about = normal.cross(e.systemVector());
                plane =
                    NqOrientation(std::atan2(about.mag(), std::fabs(normal.dot(e.systemVector()))), about) *
                    plane;
            }
            const NqVector inPlane = plane.inverse() * motion.linear();
            return std::vector<double>{inPlane.x(), inPlane.y()};
        };
        traits.whyNoError = "the error is in the axes of the system and not projected";
        traits.errorRows = nqComponentsOf<0, 1>;
        return traits;
    }
    static NqEndEffectorTraits of(Of<NqSpatialMomentumEndEffector>) {
        return {.usesExternalOffset = false,
                .whyNoVelocity = "the velocity is the momentum that is wanted, whatever moves",
                .whyNoError = "a momentum has no placement to err from",
                .whyNotDriven = "a momentum has no placement to be led to",
                .whyNoRelativeMotion = "the momentum is that of the whole manipulator",
                .whyNoLostLink = "all links count, whatever they are called",
                .whyNoPlacement = "a momentum has none"};
    }
    static NqEndEffectorTraits of(Of<NqSagEndEffector>) {
        return {.lostLinkKeepsVelocity = true,
                .usesExternalOffset = false,
                .whyNoError = "the error is zero by definition",
                .whyNoBaseMotion = "the columns of the base are zero, though turning it turns gravity",
                .whyNoAcceleration = "no acceleration is written",
                .whyNotDriven = "residuals are led to zero and not to a target",
                .whyNoRelativeMotion = "only joints that the type names itself count"};
    }
    static NqEndEffectorTraits of(Of<NqAccelerometerEndEffector>) {
        return {.usesExternalOffset = false,
                .whyNoError = "the error is zero by definition",
                .whyNotDriven = "while it is off sag joints are led to zero and not to a target",
                .whyNoRelativeMotion = "only joints that the type names itself count",
                .whyNoLostLink = "sag joints that aren't there are left out in silence",
                .whyNoPlacement =
                    "the placement is what the sensor reads, but while it is off joints are driven"};
    }
};

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

// Those that are on more links are put on those of the model.

inline void nqAttach(NqCoordinatedJointEndEffector& joints, const NqTestModel& model) {
    joints.setLinkLabels({model.link, model.secondLink});
}
inline void nqAttach(NqOneDofGripperEndEffector& gripper, const NqTestModel& model) {
    gripper.setLinkIdentifier(model.link);
    gripper.setSlaveJointLabels({model.secondLink});
}
/// The shoulder is the first link of the arm, the elbow one half way.
inline void nqAttach(NqSewAngleEndEffector& sew, const NqTestModel& model) {
    const NqManipulatorLink* wrist = model.manipulator->linkByLabel(model.link);
    if (wrist && !wrist->parentLink()->parentLink()) {
        wrist = model.manipulator->linkByIndex(model.manipulator->numberOfJoints() - 1);
    }
    std::vector<std::string> labels;
    for (const NqManipulatorLink* link = wrist; link && link->parentLink(); link = link->parentLink()) {
        labels.push_back(link->linkLabel());
    }
    sew.setWristLink(wrist ? labels.front() : model.link);
    sew.setElbowLink(wrist ? labels[labels.size() / 2] : model.link);
    sew.setShoulderLink(wrist ? labels.back() : model.link);
}
inline void nqAttach(NqSpatialMomentumEndEffector& momentum, const NqTestModel& model) {
    momentum.setLinkIdentifier(model.link);
    momentum.setIncludeAngular(true);
}
inline void nqAttach(NqSagEndEffector& sag, const NqTestModel& model) {
    sag.setLinkLabels({model.link, model.secondLink});
    sag.setTriggerLinkLabel(std::string());
}
inline void nqAttach(NqAccelerometerEndEffector& sensor, const NqTestModel& model) {
    sensor.setLinkIdentifier(model.link);
    sensor.setSagLinkLabels({model.link, model.secondLink});
}

/// A type of end-effector, told apart from the others at run time. A sample of it has the values of its file
/// in the folder of golden files, none of which is a default, and sits on the links of a model.
struct NqEndEffectorKind {
    std::string name;
    NqEndEffectorTraits traits;
    std::function<std::unique_ptr<NqEndEffector>()> makeDefault;
    std::function<void(NqEndEffector&, const NqTestModel& model)> attach;

    std::string goldenFile() const { return nqGoldenFile("/" + name + "EndEffector.xml"); }

    std::unique_ptr<NqEndEffector> make(const NqTestModel& model) const {
        std::unique_ptr<NqEndEffector> endEffector = makeDefault();
        if (!NqXmlDocument::readFile(goldenFile(), *endEffector)) {
            throw std::runtime_error("cannot read " + goldenFile());
        }
        endEffector->setRelativeLinkData({});
        endEffector->setUseExternalOffset(false);
        attach(*endEffector, model);
        // Some know only then how many rows they have.
        NqManipulatorActiveState state(*model.manipulator);
        NqEndEffectorPlacement placement;
        endEffector->calculatePlacement(*model.manipulator, state, placement);
        return endEffector;
    }
};

/// All types that can be made from a file.
inline const std::vector<NqEndEffectorKind>& nqEndEffectorKinds() {
    static const std::vector<NqEndEffectorKind> theKinds = [] {
        std::vector<NqEndEffectorKind> kinds;
        NqEndEffectorTypes::forEach([&]<typename EndEffector>() {
            const std::string token(EndEffector::classToken().localName());
            kinds.push_back({token.substr(0, token.find("EndEffector")),
                             NqTraits::of(NqTraits::Of<EndEffector>()),
                             [] { return std::make_unique<EndEffector>(); },
                             [](NqEndEffector& any, const NqTestModel& model) {
                                 auto& endEffector = dynamic_cast<EndEffector&>(any);
                                 if constexpr (requires { nqAttach(endEffector, model); }) {
                                     nqAttach(endEffector, model);
                                 } else {
                                     nqAttach(endEffector, model.link, model.secondLink);
                                 }
                             }});
        });
        return kinds;
    }();
    return theKinds;
}
