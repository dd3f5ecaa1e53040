#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqMotionEndEffector.h>
#include <nqControlCore/endeffector/NqRotationBasedEndEffector.h>
#include <nqControlCore/endeffector/NqTargetedEndEffector.h>
#include <nqControlCore/foundation/xml/NqXmlOrientation.h>

/// Constrains the orientation of a frame fixed in a link: three rows, its angular velocity in the system
/// frame.
///
/// The placement has the orientation and no translation. An external offset plays no part. For a free base
/// the ones stand in the first three base columns, those of its translation. A vector of accelerations that
/// is longer than the rows need keeps its length; one of velocities is cut.
class NqOrientationEndEffector
    : public NqConcreteEndEffector<
          NqOrientationEndEffector,
          NqTargetedEndEffector<NqOrientationEndEffector,
                                NqMotionEndEffector<NqOrientationEndEffector, NqRotationBasedEndEffector>>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqOrientationEndEffectorToken; }
    static constexpr const char* theTooltip =
        "This end-effector constrains a full frame rigidly attached to a link: x, y, z, roll, pitch and yaw.";
    static const NqEditableValueTable<NqOrientationEndEffector>& editableTable();

    static constexpr NqMotionPlan theMotionPlan = {
        .rows = {NqMotionComponent::AngularX, NqMotionComponent::AngularY, NqMotionComponent::AngularZ},
        .placement = NqMotionPlan::Placement::Orientation,
        .base = NqMotionPlan::BaseColumns::RotationInTranslation,
        .accelerationTail = NqMotionPlan::Tail::Kept,
        .badLabel =
            "NqOrientationEndEffector::insertJacobianComponent(): bad label on frame end effector: %s.\n",
        .badRelativeLabel =
            "NqOrientationEndEffector::insertJacobianComponent(): bad index on relative link: %d.\n",
        .badSparsityLabel =
            "NqOrientationEndEffector::insertSparsityComponent(): bad label on point end effector: %s.\n",
        .badSparsityRelativeLabel =
            "NqOrientationEndEffector::insertSparsityComponent(): bad index on relative link: %d.\n",
        .badPlacementLabel =
            "NqOrientationEndEffector::calculateFramePlacement():  bad label on frame end effector: %s.\n"};

    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const;

    /// The angle between the orientations times the error weight.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    /// The rotation vector from the present to the desired orientation, in the system frame.
    void calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   NqManipulatorActiveState& state, NqXmlRealVector& error) const override;

    /// The orientation, measured from the primary frame of the link.
    virtual const NqOrientation& orientation() const { return m_Orientation.value(); }
    virtual void setOrientation(const NqOrientation& orientation) { m_Orientation = orientation; }

    /// The weight of each row.
    virtual const double& errorWeight() const { return m_ErrorWeight.value(); }
    virtual void setErrorWeight(const double& weight) { m_ErrorWeight = weight; }

    /// The orientation as a frame whose motion the rows are.
    NqCoordinateSystemTransformation motionFrame() const { return orientation(); }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqOrientationToken, &NqOrientationEndEffector::m_Orientation),
            nqComponent(NqControlCore::NqErrorWeightToken, &NqOrientationEndEffector::m_ErrorWeight));
    }

    NqXmlOrientation m_Orientation;
    NqXmlBasicType<double> m_ErrorWeight = 0.2;
};
