#pragma once

#include <nqControlCore/endeffector/special/NqPartialFrameEndEffector.h>

/// Lets a frame slide along its x axis and do nothing else: five rows, the linear velocities along its y and
/// z axes and the angular velocity about all three.
class NqSlidingEndEffector
    : public NqXmlPersistent<NqSlidingEndEffector, NqPartialFrameEndEffector<NqSlidingEndEffector>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqSlidingEndEffectorToken; }
    static constexpr const char* theTooltip = "SlidingEndEffector.";
    static constexpr NqTextLiteral theName = "NqSlidingEndEffector";
    static constexpr NqMotionPlan theMotionPlan = nqPartialFramePlan<theName>(
        {NqMotionComponent::LinearY, NqMotionComponent::LinearZ, NqMotionComponent::AngularX,
         NqMotionComponent::AngularY, NqMotionComponent::AngularZ});

    /// The distance, that along the free axis included.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    /// The difference over the filter's threshold; the speed factor doesn't count.
    double minimumTime(const NqEndEffectorPlacement& from, const NqEndEffectorPlacement& to) const override;
};
