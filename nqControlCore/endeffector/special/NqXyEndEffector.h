#pragma once

#include <nqControlCore/endeffector/NqMotionEndEffector.h>
#include <nqControlCore/endeffector/special/NqXyBasedEndEffector.h>

/// Constrains two coordinates of a point fixed in a link, along x and y of its constraint axes, as a place on
/// a table or on a line: two rows.
class NqXyEndEffector
    : public NqXmlPersistent<NqXyEndEffector, NqMotionEndEffector<NqXyEndEffector, NqXyBasedEndEffector>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqXyEndEffectorToken; }
    static constexpr const char* theTooltip = "XYEndEffector.";
    static constexpr NqMotionPlan theMotionPlan =
        nqXyPlan<"NqXyEndEffector">({NqMotionComponent::LinearX, NqMotionComponent::LinearY});

    /// The distance in the plane.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    /// Orientation of the constraint axes: x and y are constrained.
    virtual const NqOrientation& xyOrientation() const { return constraintOrientation(); }
    virtual void setXyOrientation(const NqOrientation& orientation) { setConstraintOrientation(orientation); }

    /// The weight of each row.
    virtual const double& errorWeight() const { return constraintWeight(); }
    virtual void setErrorWeight(const double& weight) { setConstraintWeight(weight); }

    /// The coordinates; they stay, with a message, where the link is not found.
    virtual void calculate2DPointPlacement(const NqIndividualManipulator& manipulator,
                                           NqManipulatorActiveState& state, NqPlanarVector& value) const;

    /// The velocity by which the filter takes the present coordinates towards those of a desired frame.
    virtual void filter2DPointEndEffectorVelocity(const NqIndividualManipulator& manipulator,
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
        calculate2DPointPlacement(manipulator, state, coordinates);
    }
    void filterCoordinates(const NqIndividualManipulator& manipulator,
                           const NqCoordinateSystemTransformation& desiredFrame,
                           const NqPlanarVector& desiredVelocity, const NqPlanarVector& previousVelocity,
                           double timeStep, NqManipulatorActiveState& state,
                           NqPlanarVector& filtered) const override {
        filter2DPointEndEffectorVelocity(manipulator, desiredFrame, desiredVelocity, previousVelocity,
                                         timeStep, state, filtered);
    }
};
