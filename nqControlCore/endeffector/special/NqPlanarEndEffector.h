#pragma once

#include <nqControlCore/endeffector/special/NqPartialFrameEndEffector.h>

/// Keeps a frame in its own xy plane: three rows, the linear velocity along its z axis and the angular
/// velocities about x and y. It may slide in the plane and spin about the normal.
class NqPlanarEndEffector
    : public NqXmlPersistent<NqPlanarEndEffector, NqPartialFrameEndEffector<NqPlanarEndEffector>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqPlanarEndEffectorToken; }
    static constexpr const char* theTooltip = "PlanarEndEffector.";
    static constexpr NqTextLiteral theName = "NqPlanarEndEffector";
    static constexpr NqMotionPlan theMotionPlan = nqPartialFramePlan<theName>(
        {NqMotionComponent::LinearZ, NqMotionComponent::AngularX, NqMotionComponent::AngularY});

    /// How far apart the placements are along the z axis of the system, whichever way the plane lies.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;
};
