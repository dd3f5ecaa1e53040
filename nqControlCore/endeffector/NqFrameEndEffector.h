#pragma once

#include <nqControlCore/endeffector/NqFrameBasedEndEffector.h>
#include <nqControlCore/endeffector/NqMotionEndEffector.h>

/// Constrains a whole frame fixed in a link: six rows, the linear velocity of the frame's origin and the
/// angular velocity, in the system frame.
///
/// A vector of accelerations that is longer than the rows need keeps its length; one of velocities is cut.
class NqFrameEndEffector
    : public NqXmlPersistent<NqFrameEndEffector,
                             NqMotionEndEffector<NqFrameEndEffector, NqFrameBasedEndEffector>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqFrameEndEffectorToken; }
    static constexpr const char* theTooltip = "This end-effector type gives 6 degrees of freedom to the "
                                              "end-effector, viz: x, y, z, roll, pitch and yaw.";

    static constexpr NqMotionPlan theMotionPlan = {
        .rows = {NqMotionComponent::LinearX, NqMotionComponent::LinearY, NqMotionComponent::LinearZ,
                 NqMotionComponent::AngularX, NqMotionComponent::AngularY, NqMotionComponent::AngularZ},
        .accelerationTail = NqMotionPlan::Tail::Kept,
        .badLabel = "NqFrameEndEffector::insertJacobianComponent(): bad label on frame end effector: %s.\n",
        .badRelativeLabel =
            "NqFrameEndEffector::insertJacobianComponent(): bad index on relative link: %d.\n",
        .badSparsityLabel =
            "NqFrameEndEffector::insertSparsityComponent(): bad label on frame end effector: %s.\n",
        .badSparsityRelativeLabel =
            "NqFrameEndEffector::insertSparsityComponent(): bad index on relative link: %d.\n",
        .badPlacementLabel =
            "NqFrameEndEffector::calculateFramePlacement():  bad label on frame end effector: %s.\n"};

    /// The distance times the linear error weight plus the angle times the angular one.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    void calculateFilteredVelocityAndError(const NqIndividualManipulator& manipulator,
                                           const NqEndEffectorPlacement& desiredPlacement,
                                           const NqXmlRealVector& desiredVelocity,
                                           const NqXmlRealVector& previousVelocity, double timeStep,
                                           NqManipulatorActiveState& state, NqXmlRealVector& filtered,
                                           NqXmlRealVector& error) const override;
};
