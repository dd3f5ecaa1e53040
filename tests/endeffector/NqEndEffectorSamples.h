#pragma once

#include "support/NqTesting.h"

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>

/// The axes that an end-effector's rows may be in: those of its own frame, and those of the link that it is
/// relative to, which are the system's where there is none.
struct NqRowAxes {
    NqOrientation own, reference;
};

/// What sets a type apart from the ordinary.
struct NqEndEffectorTraits {
    using Rows =
        std::function<std::vector<double>(const NqEndEffector&, const NqGeneralMotion&, const NqRowAxes&)>;

    enum Exception : unsigned {
        OwnAxes = 1u << 0,            ///< the rows are in the frame's own axes, which turn with it
        PresentLessDesired = 1u << 1, ///< the error is the negative of the ordinary one
        NoOffset = 1u << 2,           ///< an external offset doesn't move the end-effector
        NoVelocity = 1u << 3,         ///< velocities aren't those of the Jacobian
        NoError = 1u << 4,            ///< errors aren't those of the placement
        NoBaseMotion = 1u << 5,       ///< the columns of the base aren't its motion
        NoAcceleration = 1u << 6,     ///< accelerations aren't those of the velocity
        NotDriven = 1u << 7,          ///< the filter doesn't lead to a placement
        NoThreeHalves = 1u << 8,      ///< no mode word stands for that profile
        NoRelativeMotion = 1u << 9,   ///< relative modes play no part
        OnlyTheFirstRow = 1u << 10,   ///< rows behind the first aren't rates of anything
        HasNumber = 1u << 11,         ///< the first row drives the number in the placement's z translation
        NoSliding = 1u << 12,         ///< the columns of sliding joints aren't their motion
        OnlyFromSystem = 1u << 13,    ///< relative rows are right for a base in the system frame alone
        NoPlacement = 1u << 14        ///< the placement isn't what the rows drive
    };

    /// The rows as a function of the motion of the end-effector's frame, in the axes of the system; empty
    /// where they are of something else.
    Rows rows{};
    unsigned exceptions = 0;
    /// What stands in the error in the place of the rows.
    Rows errorRows{};

    bool has(Exception exception) const { return (exceptions & exception) != 0; }
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

/// Coordinates in axes that are fixed in the link that the point is relative to.
template <typename EndEffector, unsigned... Indices>
NqEndEffectorTraits::Rows nqCoordinatesIn(const NqOrientation& (EndEffector::*turn)() const) {
    return [turn](const NqEndEffector& any, const NqGeneralMotion& motion, const NqRowAxes& axes) {
        const NqOrientation& own = (dynamic_cast<const EndEffector&>(any).*turn)();
        const NqVector linear = (axes.reference * own).inverse() * motion.linear();
        return std::vector<double>{linear[Indices]...};
    };
}

/// The motion of the centre of mass in the plane that it is projected to.
inline std::vector<double> nqProjected(const NqEndEffector& any, const NqGeneralMotion& motion,
                                       const NqRowAxes& axes) {
    const auto& e = dynamic_cast<const NqProjectedCenterOfMassEndEffector&>(any);
    NqOrientation plane = axes.reference * e.xyOrientation();
    if (e.projectAlongSystemVector()) {
        // By the angle between the lines of the normal and of the vector, about what both are normal to.
        const NqVector normal = plane.zAxis(), about = normal.cross(e.systemVector());
        plane =
            NqOrientation(std::atan2(about.mag(), std::fabs(normal.dot(e.systemVector()))), about) * plane;
    }
    const NqVector inPlane = plane.inverse() * motion.linear();
    return {inPlane.x(), inPlane.y()};
}

/// The traits of a type by the beginning of its token.
inline const NqEndEffectorTraits& nqTraitsOf(const std::string& name) {
    using enum NqEndEffectorTraits::Exception;
    // The error of partial frames is the beginning of that of the whole frame, in the system frame.
    constexpr unsigned partial = OwnAxes | NoError;
    constexpr unsigned coordinates = NoThreeHalves;
    // A number's acceleration is zero by definition, and only links that the type names itself count.
    constexpr unsigned number = PresentLessDesired | NoOffset | NoAcceleration | NoRelativeMotion | HasNumber;
    // No acceleration is written, the columns of sliding joints leave out how much mass they move, and
    // the relative link's part takes the centre of mass as the base frame has it.
    constexpr unsigned massCenter = NoOffset | NoAcceleration | NoThreeHalves | NoSliding | OnlyFromSystem;
    static const std::map<std::string, NqEndEffectorTraits> theTraits{
        {"point", {nqComponentsOf<0, 1, 2>}},
        {"frame", {nqComponentsOf<0, 1, 2, 3, 4, 5>}},
        {"directionalFrame", {nqComponentsOf<0, 1, 2, 3, 4, 5>}},
        // The ones stand in the columns of the base's translation.
        {"orientation", {nqComponentsOf<3, 4, 5>, NoOffset | NoBaseMotion}},
        {"planar", {nqOwnComponentsOf<2, 3, 4>, partial, nqComponentsOf<0, 1, 2>}},
        {"sliding", {nqOwnComponentsOf<1, 2, 3, 4, 5>, partial, nqComponentsOf<0, 1, 2, 3, 4>}},
        {"slideXSpinZ", {nqOwnComponentsOf<1, 2, 3, 4>, partial, nqComponentsOf<0, 1, 2, 3>}},
        {"rcm", {nqOwnComponentsOf<1, 2>, partial, nqComponentsOf<0, 1>}},
        // The offset of the filter is on the z axis in the sample: the spin that is left would move any
        // other.
        {"freeSpinInZ", {nqOwnComponentsOf<0, 1, 2, 3, 4>, OwnAxes}},
        // A base that moves goes unseen, the acceleration is zero by definition, the target is one of the
        // system: no link's motion is taken away.
        {"lookAt",
         {nqOwnComponentsOf<1, 2>, OwnAxes | NoError | NoBaseMotion | NoAcceleration | NoRelativeMotion,
          nqComponentsOf<0, 1>}},
        {"x", {nqCoordinatesIn<NqXEndEffector, 0>(&NqXEndEffector::xOrientation), coordinates}},
        {"xy", {nqCoordinatesIn<NqXyEndEffector, 0, 1>(&NqXyEndEffector::xyOrientation), coordinates}},
        {"linearConstraint", {{}, number}},
        {"pointDistance", {{}, number | NoError}}, // zero by definition
        // The velocity takes the z axis of the system for that of the frame; the base's columns are zero.
        {"axisRotate", {{}, number | NoVelocity | NoBaseMotion}},
        // The velocity counts the shoulder's own joint and the base too, which turn the arm together with
        // the frame that the angle is measured in; the error is zero by definition; there is no filter to
        // switch off: the command is a gain times the way.
        {"sewAngle", {{}, number | NoVelocity | NoError | NotDriven}},
        // The acceleration of joints is zero by definition, their positions are the same in every frame, and
        // a model without some of them is one to drive with the others.
        {"coordinatedJoint", {{}, NoOffset | NoAcceleration | NoRelativeMotion}},
        // The rows of slaves say how far these stray from the master, and they count as though nothing
        // strayed.
        {"oneDofGripper", {{}, number | OnlyTheFirstRow}},
        {"centerOfMass", {nqComponentsOf<0, 1, 2>, massCenter}},
        // The error is in the axes of the system and not projected.
        {"projectedCenterOfMass", {nqProjected, massCenter | NoError, nqComponentsOf<0, 1>}},
        // The velocity is the momentum that is wanted, whatever moves: there is no placement to err from or
        // to be led to.
        {"spatialMomentum",
         {{}, NoOffset | NoVelocity | NoError | NotDriven | NoRelativeMotion | NoPlacement}},
        // Residuals are led to zero and not to a target, though turning the base turns gravity.
        {"sag", {{}, NoOffset | NoError | NoBaseMotion | NoAcceleration | NotDriven | NoRelativeMotion}},
        // While it is off joints are driven to zero, though the placement is what the sensor reads; sag
        // joints that aren't there are left out in silence.
        {"accelerometer", {{}, NoOffset | NoError | NotDriven | NoRelativeMotion | NoPlacement}}};
    return theTraits.at(name);
}

/// Puts an end-effector on a link of a model, or on two where it is between them.
inline void nqAttach(NqEndEffector& endEffector, const NqTestModel& model) {
    endEffector.setLinkIdentifier(model.link);
}
inline void nqAttach(NqLinearConstraintEndEffector& sum, const NqTestModel& model) {
    sum.setLinkLabels({model.link, model.secondLink});
    sum.setIsInteractive(true);
}
inline void nqAttach(NqPointDistanceEndEffector& distance, const NqTestModel& model) {
    distance.setLabelOne(model.secondLink);
    distance.setLabelTwo(model.link);
}
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
            const std::string name = token.substr(0, token.find("EndEffector"));
            kinds.push_back({name, nqTraitsOf(name), [] { return std::make_unique<EndEffector>(); },
                             [](NqEndEffector& any, const NqTestModel& model) {
                                 nqAttach(dynamic_cast<EndEffector&>(any), model);
                             }});
        });
        return kinds;
    }();
    return theKinds;
}
