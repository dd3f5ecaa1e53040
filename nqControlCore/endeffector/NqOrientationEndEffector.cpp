#include <nqControlCore/endeffector/NqOrientationEndEffector.h>

#include <array>
#include <cmath>

const NqToken& NqOrientationEndEffector::classToken() {
    return NqControlCore::NqOrientationEndEffectorToken;
}

NqOrientationEndEffector::NqOrientationEndEffector() {
    describe(editableTable(),
             "This end-effector constrains a full frame rigidly attached to a link: x, y, z, "
             "roll, pitch and yaw.");
}

void NqOrientationEndEffector::insertJacobianComponent(const NqIndividualManipulator& manipulator,
                                                       unsigned row,
                                                       const NqEndEffectorRelativeLinkData& relativeLink,
                                                       bool fixedBase, NqManipulatorActiveState& state,
                                                       NqReArray& jacobian) const {
    rightSizeJacobian(row, jacobianWidth(manipulator, fixedBase), jacobian);
    const NqManipulatorLink* link = linkOrMessage(
        manipulator, linkIdentifier(),
        "NqOrientationEndEffector::insertJacobianComponent(): bad label on frame end effector: %s.\n");
    if (!link) {
        return;
    }
    NqManipulatorActivePositionState& p = state.activePositionState();
    insertJointColumns(
        manipulator, row, relativeLink, *link, pointPosition(*link, NqVector(), p),
        "NqOrientationEndEffector::insertJacobianComponent(): bad index on relative link: %d.\n", p, jacobian,
        [](const NqGeneralMotion& m) {
            return std::array{m[3], m[4], m[5]};
        });
    if (hasBaseColumns(relativeLink, fixedBase)) {
        for (unsigned i = 0; i < doc(); ++i) {
            jacobian[row + i][manipulator.numberOfJoints() + i] = 1.0;
        }
    }
}

void NqOrientationEndEffector::insertSparsityComponent(const NqIndividualManipulator& manipulator,
                                                       unsigned row,
                                                       const NqEndEffectorRelativeLinkData& relativeLink,
                                                       bool fixedBase, SparsityDescription& sparsity) const {
    constexpr LabelMessages messages = {
        "NqOrientationEndEffector::insertSparsityComponent(): bad label on point end effector: %s.\n",
        "NqOrientationEndEffector::insertSparsityComponent(): bad index on relative link: %d.\n"};
    constexpr unsigned baseBits[] = {0b001, 0b010, 0b100};
    insertMotionBits(manipulator, row, relativeLink, fixedBase, messages, baseBits, sparsity);
}

void NqOrientationEndEffector::insertErrorWeightComponent(unsigned row, NqReArray& weights) const {
    insertErrorWeights(row, weights, errorWeight(), errorWeight());
}

void NqOrientationEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                                  NqManipulatorActiveState& state,
                                                  NqEndEffectorPlacement& placement) const {
    const NqManipulatorLink* link = linkOrMessage(
        manipulator, linkIdentifier(),
        "NqOrientationEndEffector::calculateFramePlacement():  bad label on frame end effector: %s.\n");
    if (link) {
        placement.setCoordSysXForm(link->primaryFrameInSystem(state.activePositionState()).orientation() *
                                   orientation());
    }
}

void NqOrientationEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                                 NqManipulatorActiveState& state, NqXmlRealVector& velocity,
                                                 unsigned start) const {
    const NqManipulatorLink* link = ownLink(manipulator);
    insertPart(link ? link->primaryFrameVelocity(state).angular() : NqVector(), velocity, start);
}

void NqOrientationEndEffector::calculateAcceleration(const NqIndividualManipulator& manipulator,
                                                     NqManipulatorActiveState& state,
                                                     NqXmlRealVector& acceleration, unsigned start) const {
    const NqManipulatorLink* link = ownLink(manipulator);
    const NqVector a = link ? offsetAcceleration(*link, orientation(), state).angular() : NqVector();
    insertPart(a, acceleration, start, Tail::Kept);
}

void NqOrientationEndEffector::filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                                         const NqXmlRealVector& previousVelocity,
                                                         double timeStep, NqXmlRealVector& filtered) const {
    NqVector out;
    motionFilter().filterVelocity(entries(desiredVelocity), entries(previousVelocity), timeStep, out);
    insertPart(out, filtered, 0);
}

void NqOrientationEndEffector::filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                         const NqEndEffectorPlacement& desiredPlacement,
                                                         const NqXmlRealVector& desiredVelocity,
                                                         const NqXmlRealVector& previousVelocity,
                                                         double timeStep, NqManipulatorActiveState& state,
                                                         NqXmlRealVector& filtered) const {
    constexpr bool zAxisOnly = false;
    constexpr bool applyProfile = true;
    NqVector out;
    motionFilter().calculateRotationMotion(presentPlacement(manipulator, state).coordSysXForm().orientation(),
                                           desiredPlacement.coordSysXForm().orientation(),
                                           entries(desiredVelocity), entries(previousVelocity), timeStep, out,
                                           zAxisOnly, applyProfile);
    insertPart(out, filtered, 0);
}

double NqOrientationEndEffector::minimumTime(const NqEndEffectorPlacement& from,
                                             const NqEndEffectorPlacement& to) const {
    return timeAtThreshold(from, to);
}

double NqOrientationEndEffector::difference(const NqEndEffectorPlacement& a,
                                            const NqEndEffectorPlacement& b) const {
    double angle = 0.0;
    NqVector axis;
    (a.coordSysXForm().orientation().inverse() * b.coordSysXForm().orientation()).getAngleAxis(angle, axis);
    return std::fabs(angle) * errorWeight();
}

void NqOrientationEndEffector::calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                                         const NqEndEffectorPlacement& desiredPlacement,
                                                         NqManipulatorActiveState& state,
                                                         NqXmlRealVector& error) const {
    constexpr bool zAxisOnly = false;
    constexpr bool applyProfile = false;
    NqVector out;
    motionFilter().calculateRotationMotion(presentPlacement(manipulator, state).coordSysXForm().orientation(),
                                           desiredPlacement.coordSysXForm().orientation(), {}, {}, 1.0, out,
                                           zAxisOnly, applyProfile);
    insertPart(out, error, 0);
}

const NqEditableValueTable<NqOrientationEndEffector>& NqOrientationEndEffector::editableTable() {
    using E = NqOrientationEndEffector;
    using F = NqRotationMotionFilter;
    using Table = NqEditableValueTable<E>;
    constexpr auto self = [](auto& e) -> auto& {
        return e;
    };
    constexpr auto filter = [](auto& e) -> auto& {
        return e.ownFilter();
    };
    static const Table table = {
        Table::angle("Angle",
                     "Angle (radians).  Used for angle-axis orientation offset of the end effector frame. "
                     "This is measured from the primary frame of the link.",
                     self, &E::orientation, &E::setOrientation),
        Table::axis("Axis: X",
                    "x-coordinate of the angle axis vector (unit vector).  Used for angle-axis orientation "
                    "offset of the end effector frame. This is measured from the primary frame of the link.",
                    self, &E::orientation, 0),
        Table::axis("Axis: Y",
                    "y-coordinate of the angle axis vector (unit vector).  Used for angle-axis orientation "
                    "offset of the end effector frame. This is measured from the primary frame of the link.",
                    self, &E::orientation, 1),
        Table::axis("Axis: Z",
                    "z-coordinate of the angle axis vector (unit vector).  Used for angle-axis orientation "
                    "offset of the end effector frame. This is measured from the primary frame of the link.",
                    self, &E::orientation, 2),
        Table::number("Max. Angular Velocity",
                      "The maximum angular velocity the end effector can achieve (rad/s)", filter,
                      &F::angularVelocityThreshold, &F::setAngularVelocityThreshold),
        Table::number("Max. Angular Acceleration",
                      "The maximum angular acceleration the end effector can achieve (rad/s^2)", filter,
                      &F::angularAccelerationThreshold, &F::setAngularAccelerationThreshold),
        Table::number("Max. Angular Deceleration",
                      "The maximum angular deceleration the end effector can achieve (rad/s^2)", filter,
                      &F::angularDecelerationThreshold, &F::setAngularDecelerationThreshold),
        Table::modeWord("Velocity Profile Type",
                        "The velocity profile type.  Current supported values are: trapezoidal, proportional "
                        "and threehalves.",
                        filter),
        Table::hardConstraint(),
    };
    return table;
}
