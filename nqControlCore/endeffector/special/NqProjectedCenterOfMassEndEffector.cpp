#include <nqControlCore/endeffector/special/NqProjectedCenterOfMassEndEffector.h>

#include <nqControlCore/endeffector/NqLinkMotion.h>
#include <nqControlCore/endeffector/NqVelocityEntries.h>

#include <cmath>

void NqProjectedCenterOfMassEndEffector::updateWorkingXyOrientation(
    const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
    const NqEndEffectorRelativeLinkData& relativeLink) const {
    constexpr double smallTilt = 0.999; // cosine
    m_WorkingXyOrientation = xyOrientation();
    if (!m_ProjectAlongSystemVector) {
        return;
    }
    const NqOrientation reference =
        NqLinkMotion::referenceOrientation(manipulator, relativeLink, state.activePositionState());
    const NqOrientation plane = reference * xyOrientation();
    const NqVector u = (plane.inverse() * systemVector()).unitVector();
    NqVector tilt(-u.y(), u.x(), 0.0);
    if (!(u.z() > smallTilt || u.z() < -smallTilt)) {
        const double angle = NqMath::acos(std::fabs(u.z()));
        tilt *= angle / std::sin(angle);
    }
    m_WorkingXyOrientation = reference.inverse() * (plane * NqOrientation(tilt.mag(), tilt));
}

NqOrientation
NqProjectedCenterOfMassEndEffector::toPlane(const NqIndividualManipulator& manipulator,
                                            NqManipulatorActiveState& state,
                                            const NqEndEffectorRelativeLinkData& relativeLink) const {
    updateWorkingXyOrientation(manipulator, state, relativeLink);
    return (NqLinkMotion::referenceOrientation(manipulator, relativeLink, state.activePositionState()) *
            workingXyOrientation())
        .inverse();
}

void NqProjectedCenterOfMassEndEffector::insertRows(const NqRowRequest& request,
                                                    NqManipulatorActiveState& state,
                                                    NqReArray& jacobian) const {
    NqVector x, y, z;
    toPlane(request.manipulator, state, request.relativeLink).getDcmRows(x, y, z);
    setColumns(request, state,
               "NqProjectedCenterOfMassEndEffector::insertJacobianComponent(): bad index on relative link: "
               "%d.\n",
               jacobian, [&](const NqGeneralMotion& motion) {
                   return std::array{x.dot(motion.linear()), y.dot(motion.linear())};
               });
}

void NqProjectedCenterOfMassEndEffector::insertBits(const NqRowRequest& request,
                                                    SparsityDescription& sparsity) const {
    const unsigned end = request.hasBaseColumns() ? request.width() : request.baseColumn();
    NqSparsityBits::setColumns(0, end, request.row, doc(), sparsity);
}

void NqProjectedCenterOfMassEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                                           NqManipulatorActiveState& state,
                                                           NqXmlRealVector& velocity, unsigned start) const {
    const NqVector v =
        toPlane(manipulator, state, relativeLinkData()) * centerOfMassVelocity(manipulator, state);
    NqVelocityEntries::put(std::array{v.x(), v.y()}, start, NqVelocityEntries::Tail::Kept, velocity);
}

void NqProjectedCenterOfMassEndEffector::insertCommand(const NqTargetRequest& request,
                                                       NqXmlRealVector& filtered) const {
    const NqPlanarVector desired(NqVelocityEntries::numberAt(request.desiredVelocity, 0),
                                 NqVelocityEntries::numberAt(request.desiredVelocity, 1));
    NqPlanarVector out;
    filter2DPointEndEffectorVelocity(request.manipulator, request.desiredPlacement, desired, NqPlanarVector(),
                                     request.timeStep, request.state, out);
    NqVelocityEntries::put(std::array{out.x(), out.y()}, 0, NqVelocityEntries::Tail::Cut, filtered);
}

void NqProjectedCenterOfMassEndEffector::calculate2DPointPlacement(const NqIndividualManipulator& manipulator,
                                                                   NqManipulatorActiveState& state,
                                                                   NqPlanarVector& point) const {
    NqVector center;
    calculatePointPlacement(manipulator, state, center);
    point.setToProjectionOf(toPlane(manipulator, state, relativeLinkData()) * center);
}

void NqProjectedCenterOfMassEndEffector::filter2DPointEndEffectorVelocity(
    const NqIndividualManipulator& manipulator, const NqCoordinateSystemTransformation& desiredFrame,
    const NqPlanarVector& desiredVelocity, const NqPlanarVector& previousVelocity, double timeStep,
    NqManipulatorActiveState& state, NqPlanarVector& filtered) const {
    NqPlanarVector actual;
    NqPlanarVector desired;
    calculate2DPointPlacement(manipulator, state, actual);
    desired.setToProjectionOf(toPlane(manipulator, state, relativeLinkData()) * desiredFrame.translation());
    pointMotionFilter().calculate2DVelocity(actual, desired, desiredVelocity, previousVelocity, timeStep,
                                            filtered);
}

const NqEditableValueTable<NqProjectedCenterOfMassEndEffector>&
NqProjectedCenterOfMassEndEffector::editableTable() {
    using E = NqProjectedCenterOfMassEndEffector;
    using Table = NqEditableValueTable<E>;
    static const Table table = {
        Table::orientation(
            {"Angle", "The location of the projection plane is defined through an angle-axis "
                      "orientation.This is the angle in radians."},
            {{"Axis: X", "The location of the projection plane is defined through an angle-axis orientation. "
                         " This is the x-coordinate of the axis vector (unit vector).This is measured from "
                         "the primary frame of the link."},
             {"Axis: Y", "The location of the projection plane is defined through an angle-axis orientation. "
                         " This is the y-coordinate of the axis vector (unit vector).This is measured from "
                         "the primary frame of the link."},
             {"Axis: Z", "The location of the projection plane is defined through an angle-axis orientation. "
                         " This is the z-coordinate of the axis vector (unit vector).This is measured from "
                         "the primary frame of the link."}},
            &E::xyOrientation, &E::setXyOrientation),
        filterRows("The velocity profile type.Current supported values are: trapezoidal and proportional"),
        Table::flag("project_along_system_vector",
                    "Boolean value (0/1) indicating whether to project the center of mass along the plane "
                    "perpendicular (0) or along a vector defined in system coordinates (1).",
                    &E::projectAlongSystemVector, &E::setProjectAlongSystemVector),
        Table::vector(
            {{"System Vector: X",
              "The x-coordinate of the projection direction vector in system coordinates."},
             {"System Vector: Y",
              "The y-coordinate of the projection direction vector in system coordinates."},
             {"System Vector: Z",
              "The z-coordinate of the projection direction vector in system coordinates."}},
            [](auto& e) -> auto& { return e.m_SystemVector.value(); }),
        Table::hardConstraint("Boolean flag (0/1) describing if this end effector should be treated as a "
                              "hard or soft constraint.  Soft constraint (=0) will optimize desired "
                              "placement in combination with other criteria."),
    };
    return table;
}
