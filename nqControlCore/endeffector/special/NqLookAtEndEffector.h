#pragma once

#include <nqControlCore/endeffector/NqFrameBasedEndEffector.h>
#include <nqControlCore/endeffector/NqMotionEndEffector.h>
#include <nqControlCore/endeffector/NqTargetedEndEffector.h>

/// Points the x axis of a frame fixed in a link at a target, as of a camera: two rows, the linear velocities
/// of the focus point, which lies focusDistance() ahead on that axis, along the frame's y and z axes. The
/// frame may roll about the axis, and the focus point slide along it.
///
/// - The placement is the focus point, with the frame's orientation; so is a target, whose distance along the
///   axis doesn't count. Its orientation sets the time that the motion filter matches linear motion to: leave
///   it at the present one.
/// - The error has the x and y of the way of the focus point in the system frame, and not the rows.
/// - Rows are never relative to another link, and the base columns are zero; sparsity has their bits all the
///   same. The acceleration is zero by definition.
/// - The error weight of the rows, linearErrorWeight(), starts at 0.1.
class NqLookAtEndEffector
    : public NqConcreteEndEffector<
          NqLookAtEndEffector,
          NqTargetedEndEffector<NqLookAtEndEffector,
                                NqMotionEndEffector<NqLookAtEndEffector, NqFrameBasedEndEffector>>,
          NqEditableLength::AtLeast> {
public:
    NqLookAtEndEffector() { NqLookAtEndEffector::setLinearErrorWeight(0.1); }

    static const NqToken& classToken() { return NqControlCore::NqLookAtEndEffectorToken; }
    static constexpr const char* theTooltip = "Look At EndEffector.";
    static const NqEditableValueTable<NqLookAtEndEffector>& editableTable();

    static constexpr NqMotionPlan theMotionPlan = {
        .rows = {NqMotionComponent::LinearY, NqMotionComponent::LinearZ},
        .axes = NqMotionPlan::Axes::Own,
        .hasRelativeColumns = false,
        .base = NqMotionPlan::BaseColumns::None,
        .badLabel = "NqLookAtEndEffector::insertJacobianComponent(): bad label on frame end effector: %s.\n",
        .badRelativeLabel = "",
        .badSparsityLabel =
            "NqLookAtEndEffector::insertSparsityComponent(): bad label on point end effector: %s.\n",
        .badSparsityRelativeLabel =
            "NqLookAtEndEffector::insertSparsityComponent(): bad index on relative link: %d.\n",
        .badPlacementLabel =
            "NqLookAtEndEffector::calculateFramePlacement():  bad label on frame end effector: %s.\n"};

    void calculateAcceleration(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                               NqXmlRealVector& acceleration, unsigned start) const override;

    /// The command towards the target alone: the velocities that are passed in play no part.
    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const;

    /// The angle between the line of sight of the first placement and the way from its frame to the focus
    /// point of the second, times an angular scale: that is 0, and so are difference and minimum time.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    /// The motion of the focus point, in the system frame, by which the filter takes it towards the desired
    /// one across the line of sight, and the orientation to the desired one.
    using NqFrameBasedEndEffector::filterFrameEndEffectorVelocity;
    virtual void filterFrameEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                const NqCoordinateSystemTransformation& desiredFrame,
                                                const NqGeneralMotion& desiredVelocity,
                                                const NqGeneralMotion& previousVelocity, double timeStep,
                                                NqManipulatorActiveState& state,
                                                NqGeneralMotion& filtered) const;

    /// How far ahead of the frame the focus point lies, in m.
    virtual double focusDistance() const { return m_FocusDistance.value(); }
    virtual void setFocusDistance(double distance) { m_FocusDistance = distance; }

    /// The focus point, with the frame's orientation, as the frame whose motion the rows are.
    NqCoordinateSystemTransformation motionFrame() const;

protected:
    /// What difference() multiplies the angle by, for derived classes to set.
    double m_AngularScale = 0.0;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqFocusDistanceToken, &NqLookAtEndEffector::m_FocusDistance));
    }

    NqXmlBasicType<double> m_FocusDistance = 1.0;
};
