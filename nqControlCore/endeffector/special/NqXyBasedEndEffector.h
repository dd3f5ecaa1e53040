#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqMotionPlan.h>
#include <nqControlCore/endeffector/NqPointBasedEndEffector.h>
#include <nqControlCore/foundation/math/NqPlanarVector.h>
#include <nqControlCore/foundation/text/NqTextLiteral.h>
#include <nqControlCore/foundation/xml/NqXmlOrientation.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

/// The plan of a constraint on coordinates of a point in its constraint axes.
template <NqTextLiteral Class>
constexpr NqMotionPlan nqXyPlan(NqMotionComponents rows) {
    return {.rows = rows,
            .placement = NqMotionPlan::Placement::Point,
            .axes = NqMotionPlan::Axes::Turned,
            .velocityTail = NqMotionPlan::Tail::Kept,
            .badLabel =
                NqJoinedText<Class, "::insertJacobianComponent(): bad label on end effector: %s.\n">::text(),
            .badRelativeLabel =
                NqJoinedText<Class, "::insertJacobianComponent(): bad index on relative link: %d.\n">::text(),
            .badSparsityLabel =
                NqJoinedText<Class, "::insertSparsityComponent(): bad label on end effector: %s.\n">::text(),
            .badSparsityRelativeLabel =
                NqJoinedText<Class, "::insertSparsityComponent(): bad index on relative link: %d.\n">::text(),
            .badPlacementLabel =
                NqJoinedText<Class, "::calculatePlacement(): bad label on end effector: %s.\n">::text()};
}

/// Base of the end-effectors that constrain the first one or two coordinates, doc() of them, of a point fixed
/// in a link. With p the point and v its velocity in the system frame, and A the orientation of the
/// constraint axes, coordinates and rows are the first components of
///
///     A^-1 p        A^-1 v
///
/// A is a fixed orientation W in the system frame or, in internal relative mode, in the primary frame of the
/// relative link, R0 W; a relative link that is not found counts as R0 = 1, without a message.
///
/// - The placement has the whole point in the system frame as translation, and no rotation. Targets are whole
///   points too; coordinates that are free don't count.
/// - In internal mode the rows are relative to the link, while velocity, error and command are those of the
///   point in the system frame, brought into the present axes.
/// - A vector of velocities that is longer than the rows need keeps its length; one of accelerations is cut.
class NqXyBasedEndEffector
    : public NqXmlPersistentBase<NqXyBasedEndEffector,
                                 NqEditableEndEffector<NqXyBasedEndEffector, NqPointBasedEndEffector>> {
public:
    static const NqEditableValueTable<NqXyBasedEndEffector>& editableTable();

    using NqPointBasedEndEffector::filterEndEffectorVelocity;
    void filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqManipulatorActiveState& state, NqXmlRealVector& filtered) const override;

    /// The way from the present to the desired coordinates.
    void calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   NqManipulatorActiveState& state, NqXmlRealVector& error) const override;

    /// The point, measured from the primary frame of the link, in m.
    virtual const NqVector& point() const { return m_Point.value(); }
    virtual void setPoint(const NqVector& point) { m_Point = point; }

    /// The point as a frame whose motion the rows are.
    NqCoordinateSystemTransformation motionFrame() const { return pointOffset(); }

    /// A, for a relative link.
    NqOrientation rowAxes(const NqIndividualManipulator& manipulator,
                          const NqEndEffectorRelativeLinkData& relativeLink, const NqManipulatorLink& link,
                          NqManipulatorActivePositionState& state) const;

protected:
    /// The point, moved by the translation of the external offset; its rotation plays no part.
    NqVector pointOffset() const;

    /// W.
    const NqOrientation& constraintOrientation() const { return m_XyOrientation.value(); }
    void setConstraintOrientation(const NqOrientation& orientation) { m_XyOrientation = orientation; }

    /// The weight of each row.
    const double& constraintWeight() const { return m_ErrorWeight.value(); }
    void setConstraintWeight(const double& weight) { m_ErrorWeight = weight; }

    /// The way between two placements as the class measures it: W times the translation of
    /// `inverse(a) * b`. Not inverse(W): turned axes are turned the other way here.
    NqVector way(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const;

    /// A point of the system frame as coordinates; a free second one is 0.
    NqPlanarVector coordinatesOf(const NqVector& point, const NqIndividualManipulator& manipulator,
                                 NqManipulatorActiveState& state) const;

    /// The present coordinates. Where the link is not found they stay, with the message.
    void placeCoordinates(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                          const char* badLabel, NqPlanarVector& coordinates) const;

    /// The velocity by which the filter takes the present coordinates towards those of a desired point.
    void driveCoordinates(const NqIndividualManipulator& manipulator, const NqVector& desired,
                          const NqPlanarVector& desiredVelocity, const NqPlanarVector& previousVelocity,
                          double timeStep, NqManipulatorActiveState& state, NqPlanarVector& filtered) const;

    // What the classes call otherwise, each by the number of its coordinates.

    virtual void presentCoordinates(const NqIndividualManipulator& manipulator,
                                    NqManipulatorActiveState& state, NqPlanarVector& coordinates) const = 0;
    virtual void filterCoordinates(const NqIndividualManipulator& manipulator,
                                   const NqCoordinateSystemTransformation& desiredFrame,
                                   const NqPlanarVector& desiredVelocity,
                                   const NqPlanarVector& previousVelocity, double timeStep,
                                   NqManipulatorActiveState& state, NqPlanarVector& filtered) const = 0;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using E = NqXyBasedEndEffector;
        return nqComponentList(nqComponent(NqPointToken, &E::m_Point),
                               nqComponent(NqXyOrientationToken, &E::m_XyOrientation),
                               nqComponent(NqErrorWeightToken, &E::m_ErrorWeight));
    }

    /// The orientation of the constraint axes in the system frame.
    NqOrientation axesOf(const NqEndEffectorRelativeLinkData& relativeLink,
                         const NqIndividualManipulator& manipulator,
                         NqManipulatorActivePositionState& state) const;

    /// The first doc() components as a list, and back with zeros for what is missing.
    void put(const NqPlanarVector& coordinates, NqXmlRealVector& values) const;
    NqPlanarVector planar(const NqXmlRealVector& values) const;

    NqXmlVector m_Point;
    NqXmlOrientation m_XyOrientation;
    NqXmlBasicType<double> m_ErrorWeight = 1.0;
};
