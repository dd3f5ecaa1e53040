#include <nqControlCore/endeffector/NqAxisRotateEndEffector.h>

#include <nqControlCore/foundation/math/NqMath.h>
#include <nqControlCore/foundation/text/NqPrint.h>

const NqToken& NqAxisRotateEndEffector::classToken() {
    return NqControlCore::NqAxisRotateEndEffectorToken;
}

NqAxisRotateEndEffector::NqAxisRotateEndEffector() {
    describe(editableTable(), "The endeffector with respect to an axis.");
}

NqAxisRotateEndEffector::Reference
NqAxisRotateEndEffector::reference(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorRelativeLinkData& relativeLink,
                                   NqManipulatorActiveState& state) const {
    const bool isInternal =
        relativeLink.relativeMode() == NqEndEffectorRelativeLinkData::relativeModeInternal;
    const NqManipulatorLink* link =
        isInternal ? manipulator.linkByLabel(relativeLink.relativeLinkID()) : nullptr;
    if (!link) {
        return {referenceAxis(), NqVector()};
    }
    const NqVector axis =
        link->primaryFrameInSystem(state.activePositionState()).orientation() * referenceAxis();
    return {axis, link->primaryFrameVelocity(state).angular().cross(axis)};
}

double NqAxisRotateEndEffector::rate(const Reference& reference, const NqVector& z, const NqVector& w) {
    const NqVector& r = reference.axis;
    const double x = r.dot(z);
    const double c = reference.velocity.dot(z);
    return (-1.0 / NqMath::sqrt(1.0 - x * x)) * (r.dot(w.cross(z)) + c);
}

void NqAxisRotateEndEffector::insertJacobianComponent(const NqIndividualManipulator& manipulator,
                                                      unsigned row,
                                                      const NqEndEffectorRelativeLinkData& relativeLink,
                                                      bool fixedBase, NqManipulatorActiveState& state,
                                                      NqReArray& jacobian) const {
    rightSizeJacobian(row, jacobianWidth(manipulator, fixedBase), jacobian);
    const NqManipulatorLink* link = linkOrMessage(
        manipulator, linkIdentifier(),
        "NqAxisRotateEndEffector::insertJacobianComponent(): bad label on frame end effector: %s.\n");
    if (!link) {
        return;
    }
    NqManipulatorActivePositionState& p = state.activePositionState();
    const NqCoordinateSystemTransformation frame = link->primaryFrameInSystem(p) * orientation();
    const NqVector z = frame.orientation().zAxis();
    const Reference r = reference(manipulator, relativeLink, state);
    link->forEachUnitRateMotion(frame.translation(), p, [&](unsigned column, const NqGeneralMotion& motion) {
        jacobian[row][column] = rate(r, z, motion.angular());
    });
}

void NqAxisRotateEndEffector::insertSparsityComponent(const NqIndividualManipulator& manipulator,
                                                      unsigned row, const NqEndEffectorRelativeLinkData&,
                                                      bool fixedBase, SparsityDescription& sparsity) const {
    clearBits(manipulator, row, fixedBase, sparsity);
    insertChainBits(
        linkOrMessage(
            manipulator, linkIdentifier(),
            "NqAxisRotateEndEffector::insertSparsityComponent(): bad label on point end effector: %s.\n"),
        row, sparsity);
}

void NqAxisRotateEndEffector::insertErrorWeightComponent(unsigned row, NqReArray& weights) const {
    insertErrorWeights(row, weights, errorWeight(), errorWeight());
}

void NqAxisRotateEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                                 NqManipulatorActiveState& state,
                                                 NqEndEffectorPlacement& placement) const {
    const NqManipulatorLink* link = linkOrMessage(
        manipulator, linkIdentifier(),
        "NqAxisRotateEndEffector::calculateFramePlacement():  bad label on frame end effector: %s.\n");
    if (!link) {
        return;
    }
    const NqOrientation frame =
        link->primaryFrameInSystem(state.activePositionState()).orientation() * orientation();
    const double x = reference(manipulator, relativeLinkData(), state).axis.dot(frame.zAxis());
    constexpr double rightAngle = 1.5707963267948966;
    placement = NqEndEffectorPlacement(NqVector(0.0, 0.0, NqMath::acos(x) - rightAngle));
}

void NqAxisRotateEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                                NqManipulatorActiveState& state, NqXmlRealVector& velocity,
                                                unsigned start) const {
    const NqEndEffectorPlacement& placement = presentPlacement(manipulator, state);
    double result = 0.0;
    if (const NqManipulatorLink* link = ownLink(manipulator)) {
        // The placement of a number is not turned, so this is the z axis of the system.
        const NqVector z = placement.coordSysXForm().orientation().zAxis();
        const NqVector w = link->primaryFrameVelocity(state).angular();
        result = rate(reference(manipulator, relativeLinkData(), state), z, w);
    }
    velocity.resize(start + doc());
    velocity[start] = result;
}

void NqAxisRotateEndEffector::calculateAcceleration(const NqIndividualManipulator&, NqManipulatorActiveState&,
                                                    NqXmlRealVector& acceleration, unsigned start) const {
    acceleration.resize(start + doc());
    acceleration[start] = 0.0;
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
        NqScalarBasedEndEffector::filterEndEffectorVelocity(desiredVelocity, previousVelocity, timeStep,
                                                            filtered);
    }
}

void NqAxisRotateEndEffector::filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                        const NqEndEffectorPlacement& desiredPlacement,
                                                        const NqXmlRealVector& desiredVelocity,
                                                        const NqXmlRealVector& previousVelocity,
                                                        double timeStep, NqManipulatorActiveState& state,
                                                        NqXmlRealVector& filtered) const {
    if (hasEntries(desiredVelocity, previousVelocity)) {
        filterNumber(number(presentPlacement(manipulator, state)), number(desiredPlacement), desiredVelocity,
                     previousVelocity, timeStep, filtered);
    }
}

double NqAxisRotateEndEffector::minimumTime(const NqEndEffectorPlacement& from,
                                            const NqEndEffectorPlacement& to) const {
    return timeAtThreshold(from, to);
}

void NqAxisRotateEndEffector::calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                                        const NqEndEffectorPlacement& desiredPlacement,
                                                        NqManipulatorActiveState& state,
                                                        NqXmlRealVector& error) const {
    error.assign(doc(), number(presentPlacement(manipulator, state)) - number(desiredPlacement));
}

const NqEditableValueTable<NqAxisRotateEndEffector>& NqAxisRotateEndEffector::editableTable() {
    using E = NqAxisRotateEndEffector;
    using F = NqScalarMotionFilter;
    using Table = NqEditableValueTable<E>;
    constexpr auto self = [](auto& e) -> auto& {
        return e;
    };
    constexpr auto filter = [](auto& e) -> auto& {
        return e.ownFilter();
    };
    static const Table table = {
        Table::angle("Angle",
                     "Angle (radians).  Used for angle-axis orientation offset of the end effector frame.",
                     self, &E::orientation, &E::setOrientation),
        Table::axis("Axis: X",
                    "X component of the angle axis vector (meters).Used for angle-axis orientation offset of "
                    "the end effector frame. This is measured from the primary frame of the link.",
                    self, &E::orientation, 0),
        Table::axis("Axis: Y",
                    "Y component of the angle axis vector (meters).  Used for angle-axis orientation offset "
                    "of the end effector frame. This is measured from the primary frame of the link.",
                    self, &E::orientation, 1),
        Table::axis("Axis: Z",
                    "Z component of the angle axis vector (meters).  Used for angle-axis orientation offset "
                    "of the end effector frame. This is measured from the primary frame of the link.",
                    self, &E::orientation, 2),
        Table::number("Max. Angular Velocity",
                      "The maximum angular velocity the end effector can achieve (rad/s).", filter,
                      &F::threshold, &F::setThreshold),
        Table::number("Max. Angular Acceleration",
                      "The maximum angular acceleration the end effector can achieve (rad/s^2).", filter,
                      &F::accelerationThreshold, &F::setAccelerationThreshold),
        Table::number("Max. Angular Deceleration",
                      "The maximum angular deceleration the end effector can achieve (rad/s^2).", filter,
                      &F::decelerationThreshold, &F::setDecelerationThreshold),
        Table::modeWord(
            "Velocity Profile Type",
            "The velocity profile type.  Current supported values are: trapezoidal and proportional.",
            filter),
        Table::number("Exponent", "Unused.", filter, &F::exponent, &F::setExponent),
        Table::hardConstraint(),
    };
    return table;
}
