#include <nqControlCore/endeffector/NqOrientationEndEffector.h>

using NqVelocityEntries::vectorAt;

void NqOrientationEndEffector::insertCommand(const NqTargetRequest& request,
                                             NqXmlRealVector& filtered) const {
    constexpr bool zAxisOnly = false;
    constexpr bool applyProfile = true;
    const NqEndEffectorPlacement& present = presentPlacement(request.manipulator, request.state);
    NqVector out;
    motionFilter().calculateRotationMotion(
        present.coordSysXForm().orientation(), request.desiredPlacement.coordSysXForm().orientation(),
        vectorAt(request.desiredVelocity), vectorAt(request.previousVelocity), request.timeStep, out,
        zAxisOnly, applyProfile);
    NqVelocityEntries::put(out, filtered);
}

double NqOrientationEndEffector::difference(const NqEndEffectorPlacement& a,
                                            const NqEndEffectorPlacement& b) const {
    return angleBetween(a, b) * errorWeight();
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
    NqVelocityEntries::put(out, error);
}

const NqEditableValueTable<NqOrientationEndEffector>& NqOrientationEndEffector::editableTable() {
    using E = NqOrientationEndEffector;
    using Table = NqEditableValueTable<E>;
    static const Table table = {
        Table::orientation(
            {"Angle", "Angle (radians).  Used for angle-axis orientation offset of the end effector frame. "
                      "This is measured from the primary frame of the link."},
            {{"Axis: X",
              "x-coordinate of the angle axis vector (unit vector).  Used for angle-axis orientation "
              "offset of the end effector frame. This is measured from the primary frame of the link."},
             {"Axis: Y",
              "y-coordinate of the angle axis vector (unit vector).  Used for angle-axis orientation "
              "offset of the end effector frame. This is measured from the primary frame of the link."},
             {"Axis: Z",
              "z-coordinate of the angle axis vector (unit vector).  Used for angle-axis orientation "
              "offset of the end effector frame. This is measured from the primary frame of the "
              "link."}},
            &E::orientation, &E::setOrientation),
        limitRows<E>("Angular", {"The maximum angular velocity the end effector can achieve (rad/s)",
                                 "The maximum angular acceleration the end effector can achieve (rad/s^2)",
                                 "The maximum angular deceleration the end effector can achieve (rad/s^2)"}),
        Table::modeWord("The velocity profile type.  Current supported values are: trapezoidal, proportional "
                        "and threehalves.",
                        theFilterPart),
        Table::hardConstraint(),
    };
    return table;
}
