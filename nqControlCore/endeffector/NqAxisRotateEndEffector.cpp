#include <nqControlCore/endeffector/NqAxisRotateEndEffector.h>

#include <nqControlCore/foundation/math/NqMath.h>

#include <array>

namespace {

constexpr const char* theBadPlacementLabel =
    "NqAxisRotateEndEffector::calculateFramePlacement():  bad label on frame end effector: %s.\n";

} // namespace

NqAxisRotateEndEffector::Reference
NqAxisRotateEndEffector::reference(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorRelativeLinkData& relativeLink,
                                   NqManipulatorActiveState& state) const {
    const NqManipulatorLink* link = NqLinkLookup::internalLink(manipulator, relativeLink);
    if (!link) {
        return {referenceAxis(), NqVector()};
    }
    const NqVector axis =
        link->primaryFrameInSystem(state.activePositionState()).orientation() * referenceAxis();
    return {axis, link->primaryFrameVelocity(state).angular().cross(axis)};
}

double NqAxisRotateEndEffector::numberRate(const Reference& reference, const NqVector& z, const NqVector& w) {
    const NqVector& r = reference.axis;
    const double x = r.dot(z);
    const double c = reference.velocity.dot(z);
    return (-1.0 / NqMath::sqrt(1.0 - x * x)) * (r.dot(w.cross(z)) + c);
}

void NqAxisRotateEndEffector::insertRows(const NqRowRequest& request, NqManipulatorActiveState& state,
                                         NqReArray& jacobian) const {
    const auto* link = linkOrMessage(
        request.manipulator,
        "NqAxisRotateEndEffector::insertJacobianComponent(): bad label on frame end effector: %s.\n");
    if (!link) {
        return;
    }
    NqManipulatorActivePositionState& p = state.activePositionState();
    const NqCoordinateSystemTransformation frame = link->primaryFrameInSystem(p) * orientation();
    const NqVector z = frame.orientation().zAxis();
    const Reference r = reference(request.manipulator, request.relativeLink, state);
    NqJacobianRows::setJointColumns(
        *link, frame.translation(), p, request.row, jacobian,
        [&](const NqGeneralMotion& motion) { return std::array{numberRate(r, z, motion.angular())}; });
}

void NqAxisRotateEndEffector::insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const {
    const auto* link = linkOrMessage(
        request.manipulator,
        "NqAxisRotateEndEffector::insertSparsityComponent(): bad label on point end effector: %s.\n");
    NqSparsityBits::setChain(link, request.row, doc(), sparsity);
}

void NqAxisRotateEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                                 NqManipulatorActiveState& state,
                                                 NqEndEffectorPlacement& placement) const {
    const auto* link = linkOrMessage(manipulator, theBadPlacementLabel);
    if (!link) {
        return;
    }
    const NqOrientation frame =
        link->primaryFrameInSystem(state.activePositionState()).orientation() * orientation();
    const double x = reference(manipulator, relativeLinkData(), state).axis.dot(frame.zAxis());
    constexpr double rightAngle = 1.5707963267948966;
    placement = NqEndEffectorPlacement(NqVector(0.0, 0.0, NqMath::acos(x) - rightAngle));
}

double NqAxisRotateEndEffector::rate(const NqIndividualManipulator& manipulator,
                                     NqManipulatorActiveState& state) const {
    const NqManipulatorLink* link = linkOrMessage(manipulator, theBadPlacementLabel);
    // The placement of a number is not turned, so z is that of the system.
    return link ? numberRate(reference(manipulator, relativeLinkData(), state), NqVector(0.0, 0.0, 1.0),
                             link->primaryFrameVelocity(state).angular())
                : 0.0;
}

NqDrivenNumber NqAxisRotateEndEffector::drivenNumber(const NqIndividualManipulator& manipulator,
                                                     NqManipulatorActiveState& state,
                                                     const NqEndEffectorPlacement& desiredPlacement) const {
    return {number(presentPlacement(manipulator, state)), number(desiredPlacement)};
}

bool NqAxisRotateEndEffector::hasEntries(const NqXmlRealVector& desiredVelocity,
                                         const NqXmlRealVector& previousVelocity) const {
    if (desiredVelocity.size() >= doc() && previousVelocity.size() >= doc()) {
        return true;
    }
    Nq::Print::instance().write(
        Nq::PrintFailure, "NqAxisRotateEndEffector::filterEndEffectorVelocity input velocity size wrong.");
    return false;
}

void NqAxisRotateEndEffector::filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                                        const NqXmlRealVector& previousVelocity,
                                                        double timeStep, NqXmlRealVector& filtered) const {
    if (hasEntries(desiredVelocity, previousVelocity)) {
        NqNumberEndEffector::filterEndEffectorVelocity(desiredVelocity, previousVelocity, timeStep, filtered);
    }
}

void NqAxisRotateEndEffector::insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const {
    if (hasEntries(request.desiredVelocity, request.previousVelocity)) {
        NqNumberEndEffector::insertCommand(request, filtered);
    }
}

void NqAxisRotateEndEffector::calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                                        const NqEndEffectorPlacement& desiredPlacement,
                                                        NqManipulatorActiveState& state,
                                                        NqXmlRealVector& error) const {
    insertNumberError(manipulator, state, desiredPlacement, error);
}

const NqEditableValueTable<NqAxisRotateEndEffector>& NqAxisRotateEndEffector::editableTable() {
    using E = NqAxisRotateEndEffector;
    using F = NqScalarMotionFilter;
    using Table = NqEditableValueTable<E>;
    static const Table table = {
        Table::orientation(
            {"Angle", "Angle (radians).  Used for angle-axis orientation offset of the end effector frame."},
            {{"Axis: X",
              "X component of the angle axis vector (meters).Used for angle-axis orientation offset of "
              "the end effector frame. This is measured from the primary frame of the link."},
             {"Axis: Y",
              "Y component of the angle axis vector (meters).  Used for angle-axis orientation offset of "
              "the end effector frame. This is measured from the primary frame of the link."},
             {"Axis: Z",
              "Z component of the angle axis vector (meters).  Used for angle-axis orientation offset of "
              "the end effector frame. This is measured from the primary frame of the link."}},
            &E::orientation, &E::setOrientation),
        limitRows<E>("Angular", {"The maximum angular velocity the end effector can achieve (rad/s).",
                                 "The maximum angular acceleration the end effector can achieve (rad/s^2).",
                                 "The maximum angular deceleration the end effector can achieve (rad/s^2)."}),
        Table::modeWord(
            "The velocity profile type.  Current supported values are: trapezoidal and proportional.",
            theFilterPart),
        Table::number("Exponent", "Unused.", theFilterPart, &F::exponent, &F::setExponent),
        Table::hardConstraint(),
    };
    return table;
}
