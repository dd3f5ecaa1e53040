#include <nqControlCore/endeffector/special/NqXyBasedEndEffector.h>

#include <nqControlCore/endeffector/NqLinkMotion.h>
#include <nqControlCore/endeffector/NqVelocityEntries.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorLink.h>

void NqXyBasedEndEffector::filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                     const NqEndEffectorPlacement& desiredPlacement,
                                                     const NqXmlRealVector& desiredVelocity,
                                                     const NqXmlRealVector& previousVelocity, double timeStep,
                                                     NqManipulatorActiveState& state,
                                                     NqXmlRealVector& filtered) const {
    NqPlanarVector out;
    filterCoordinates(manipulator, desiredPlacement.coordSysXForm(), planar(desiredVelocity),
                      planar(previousVelocity), timeStep, state, out);
    put(out, filtered);
}

void NqXyBasedEndEffector::calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                                     const NqEndEffectorPlacement& desiredPlacement,
                                                     NqManipulatorActiveState& state,
                                                     NqXmlRealVector& error) const {
    NqPlanarVector actual;
    presentCoordinates(manipulator, state, actual);
    put(coordinatesOf(desiredPlacement.coordSysXForm().translation(), manipulator, state) - actual, error);
}

NqOrientation NqXyBasedEndEffector::rowAxes(const NqIndividualManipulator& manipulator,
                                            const NqEndEffectorRelativeLinkData& relativeLink,
                                            const NqManipulatorLink&,
                                            NqManipulatorActivePositionState& state) const {
    return axesOf(relativeLink, manipulator, state);
}

NqVector NqXyBasedEndEffector::pointOffset() const {
    return externalOffset() ? point() + externalOffset()->translation() : point();
}

NqVector NqXyBasedEndEffector::way(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const {
    return constraintOrientation() * (a.coordSysXForm().inverse() * b.coordSysXForm()).translation();
}

NqPlanarVector NqXyBasedEndEffector::coordinatesOf(const NqVector& point,
                                                   const NqIndividualManipulator& manipulator,
                                                   NqManipulatorActiveState& state) const {
    const NqOrientation axes = axesOf(relativeLinkData(), manipulator, state.activePositionState());
    NqPlanarVector coordinates;
    coordinates.setToProjectionOf(axes.inverse() * point);
    if (doc() < 2) {
        coordinates.setY(0.0);
    }
    return coordinates;
}

void NqXyBasedEndEffector::placeCoordinates(const NqIndividualManipulator& manipulator,
                                            NqManipulatorActiveState& state, const char* badLabel,
                                            NqPlanarVector& coordinates) const {
    if (const auto* link = linkOrMessage(manipulator, badLabel)) {
        const NqVector place = pointPosition(*link, pointOffset(), state.activePositionState());
        coordinates = coordinatesOf(place, manipulator, state);
    }
}

void NqXyBasedEndEffector::driveCoordinates(const NqIndividualManipulator& manipulator,
                                            const NqVector& desired, const NqPlanarVector& desiredVelocity,
                                            const NqPlanarVector& previousVelocity, double timeStep,
                                            NqManipulatorActiveState& state, NqPlanarVector& filtered) const {
    NqPlanarVector actual;
    presentCoordinates(manipulator, state, actual);
    pointMotionFilter().calculate2DVelocity(actual, coordinatesOf(desired, manipulator, state),
                                            desiredVelocity, previousVelocity, timeStep, filtered);
}

NqOrientation NqXyBasedEndEffector::axesOf(const NqEndEffectorRelativeLinkData& relativeLink,
                                           const NqIndividualManipulator& manipulator,
                                           NqManipulatorActivePositionState& state) const {
    return NqLinkMotion::referenceOrientation(manipulator, relativeLink, state) * constraintOrientation();
}

void NqXyBasedEndEffector::put(const NqPlanarVector& coordinates, NqXmlRealVector& values) const {
    values.resize(doc());
    for (unsigned i = 0; i < doc(); ++i) {
        values[i] = coordinates[i];
    }
}

NqPlanarVector NqXyBasedEndEffector::planar(const NqXmlRealVector& values) const {
    return {NqVelocityEntries::numberAt(values), doc() < 2 ? 0.0 : NqVelocityEntries::numberAt(values, 1)};
}

const NqEditableValueTable<NqXyBasedEndEffector>& NqXyBasedEndEffector::editableTable() {
    using E = NqXyBasedEndEffector;
    using F = NqPointMotionFilter;
    using Table = NqEditableValueTable<E>;
    constexpr auto point = [](auto& e) -> auto& {
        return e.m_Point.value();
    };
    static const Table table = {
        Table::vector({{"Frame Offset: X", "Translation in x direction."},
                       {"Frame Offset: Y", "Translation in y direction."},
                       {"Frame Offset: Z", "Translation in z direction."}},
                      point),
        Table::orientation(
            {"Frame Angle", "Angle (radians).  Used for angle-axis orientation offset of the end effector "
                            "frame. This is measured from the primary frame of the link."},
            {{"Frame Axis: X",
              "X component of the angle axis vector (meters).Used for angle-axis orientation offset of the "
              "end effector frame. This is measured from the primary frame of the link."},
             {"Frame Axis: Y",
              "Y component of the angle axis vector (meters).  Used for angle-axis orientation offset of "
              "the end effector frame. This is measured from the primary frame of the link."},
             {"Frame Axis: Z",
              "Z component of the angle axis vector (meters).  Used for angle-axis orientation offset of "
              "the end effector frame. This is measured from the primary frame of the link."}},
            &E::constraintOrientation, &E::setConstraintOrientation),
        Table::number("Max Velocity", "Maximum velocity of the end effector (m/s).", theFilterPart,
                      &F::threshold, &F::setThreshold),
        Table::number("Max Acceleration",
                      "The maximum linear acceleration/deceleration the end effector can achieve (m/s^2).",
                      theFilterPart, &F::accelerationThreshold, &F::setAccelerationAndDecelerationThresholds),
        Table::modeWord(
            "The velocity profile type.  Current supported values are: trapezoidal and proportional",
            theFilterPart, NqEditableModeWords::Set::Two),
        Table::hardConstraint("Boolean (1 | 0) determiing if this end effector contraint should be a true "
                              "constraint or an optimization (best attempt)"),
        Table::number(
            "Soft Constraint Gain",
            "If this is a soft contraint, gain value (g) such that the soft contraint gain G = g*S (where "
            "S is the overall gain value set in the soft contraint handler)",
            &E::constraintWeight, &E::setConstraintWeight),
    };
    return table;
}
