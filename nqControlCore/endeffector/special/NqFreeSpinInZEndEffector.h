#pragma once

#include <nqControlCore/endeffector/special/NqPartialFrameEndEffector.h>

/// Places a frame that may spin about its z axis, as a drill does: five rows, its linear velocity and the
/// angular velocities about x and y.
///
/// Error and filter turn the z axis to the desired one the short way and ask for no spin. An offset of the
/// motion filter must lie on that axis: the spin that is left to a target would move any other.
class NqFreeSpinInZEndEffector
    : public NqXmlPersistent<NqFreeSpinInZEndEffector, NqPartialFrameEndEffector<NqFreeSpinInZEndEffector>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqFreeSpinInZEndEffectorToken; }
    static constexpr const char* theTooltip =
        "End effector constraining translation about all three axis and rotation about the X and Y axes (The "
        "location is fixed and the only free orientation is about the Z axis).";
    static constexpr NqTextLiteral theName = "NqFreeSpinInZEndEffector";
    static constexpr NqMotionPlan theMotionPlan = nqPartialFramePlan<theName, theName>(
        {NqMotionComponent::LinearX, NqMotionComponent::LinearY, NqMotionComponent::LinearZ,
         NqMotionComponent::AngularX, NqMotionComponent::AngularY});

    /// The velocities must have five entries each, or else the output stays, with a message; further ones are
    /// passed over.
    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const;

    /// The distance times the linear error weight plus the angle between the z axes times the angular one.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    /// The way to the desired placement in the frame's own axes: that of the rows. Untouched where the link
    /// is not found.
    void calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   NqManipulatorActiveState& state, NqXmlRealVector& error) const override;

    /// The motion, in the system frame, by which the filter takes the present frame towards the desired one
    /// without asking for spin.
    using NqPartialFrameEndEffector::filterFrameEndEffectorVelocity;
    virtual void filterFrameEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                const NqCoordinateSystemTransformation& desiredFrame,
                                                const NqGeneralMotion& desiredVelocity,
                                                const NqGeneralMotion& previousVelocity, double timeStep,
                                                NqManipulatorActiveState& state,
                                                NqGeneralMotion& filtered) const;

    /// The motion in the system frame that has these five rows in a frame of that orientation, and no spin.
    virtual void convertToGeneralVelocity(const NqXmlRealVector& velocity, const NqOrientation& orientation,
                                          NqGeneralMotion& motion) const;

protected:
    using NqPartialFrameEndEffector::convertToGeneralVelocity;
};
