#pragma once

#include <nqControlCore/endeffector/special/NqPartialFrameEndEffector.h>

/// Remote centre of motion: a link that passes along its x axis through a fixed point, as an instrument does
/// through a trocar. Two rows, the linear velocities of a frame's origin along its y and z axes; it may slide
/// along x and turn freely.
///
/// The motion filter plays no part: the command is the whole way in one step, without limits. Move the target
/// slowly.
class NqRCMEndEffector
    : public NqXmlPersistent<NqRCMEndEffector, NqPartialFrameEndEffector<NqRCMEndEffector>> {
    using Layer = NqPartialFrameEndEffector<NqRCMEndEffector>;

public:
    static const NqToken& classToken() { return NqControlCore::NqRCMEndEffectorToken; }
    static constexpr const char* theTooltip = "rcmEndEffector.";
    static constexpr NqTextLiteral theName = "NqRCMEndEffector";
    static constexpr NqMotionPlan theMotionPlan =
        nqPartialFramePlan<theName>({NqMotionComponent::LinearY, NqMotionComponent::LinearZ});

    void insertRows(const NqRowRequest& request, NqManipulatorActiveState& state, NqReArray& jacobian) const;

    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override;

    /// The way across the present x axis over the time step; the velocities that are passed in play no part.
    /// Where the link is not found the output is resized alone.
    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const;

    /// The distance across the x axis that the frame had when its Jacobian, velocity or filtered velocity was
    /// last asked for; that of the system before. Orientations of the placements play no part.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    /// The difference over the filter's threshold; the speed factor doesn't count.
    double minimumTime(const NqEndEffectorPlacement& from, const NqEndEffectorPlacement& to) const override;

private:
    /// Where the frame was when it was last evaluated.
    mutable NqCoordinateSystemTransformation m_ActualFrame;
};
