#pragma once

#include <nqControlCore/endeffector/NqMotionEndEffector.h>
#include <nqControlCore/endeffector/special/NqXyBasedEndEffector.h>

/// Constrains one coordinate of a point fixed in a link, along the x axis of its constraint axes, as a
/// height: one row.
class NqXEndEffector
    : public NqXmlPersistent<NqXEndEffector, NqMotionEndEffector<NqXEndEffector, NqXyBasedEndEffector>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqXEndEffectorToken; }
    static constexpr const char* theTooltip =
        "XEndEffector. Constrains motion in the X direction.  All other dimension are not constrained";
    static constexpr NqMotionPlan theMotionPlan = nqXyPlan<"NqXEndEffector">({NqMotionComponent::LinearX});

    /// How far b lies from a along x, with its sign: negative on the negative side, and so is the minimum
    /// time.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    /// Orientation of the constraint axes: the x axis is constrained.
    virtual const NqOrientation& xOrientation() const { return constraintOrientation(); }
    virtual void setXOrientation(const NqOrientation& orientation) { setConstraintOrientation(orientation); }

    /// The weight of each row.
    virtual const double& errorWeight() const { return constraintWeight(); }
    virtual void setErrorWeight(const double& weight) { setConstraintWeight(weight); }

    /// The coordinate; it stays, with a message, where the link is not found.
    virtual void calculate1DPointPlacement(const NqIndividualManipulator& manipulator,
                                           NqManipulatorActiveState& state, double& value) const;

    /// The velocity by which the filter takes the present coordinate towards that of a desired frame. Planar
    /// vectors have it as x; y of the velocities should be 0.
    virtual void filter1DPointEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                  const NqCoordinateSystemTransformation& desiredFrame,
                                                  const NqPlanarVector& desiredVelocity,
                                                  const NqPlanarVector& previousVelocity, double timeStep,
                                                  NqManipulatorActiveState& state,
                                                  NqPlanarVector& filtered) const {
        driveCoordinates(manipulator, desiredFrame.translation(), desiredVelocity, previousVelocity, timeStep,
                         state, filtered);
    }

private:
    void presentCoordinates(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqPlanarVector& coordinates) const override {
        double x = 0.0;
        calculate1DPointPlacement(manipulator, state, x);
        coordinates = NqPlanarVector(x, 0.0);
    }
    void filterCoordinates(const NqIndividualManipulator& manipulator,
                           const NqCoordinateSystemTransformation& desiredFrame,
                           const NqPlanarVector& desiredVelocity, const NqPlanarVector& previousVelocity,
                           double timeStep, NqManipulatorActiveState& state,
                           NqPlanarVector& filtered) const override {
        filter1DPointEndEffectorVelocity(manipulator, desiredFrame, desiredVelocity, previousVelocity,
                                         timeStep, state, filtered);
    }
};
