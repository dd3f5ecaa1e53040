#pragma once

#include <nqControlCore/endeffector/special/NqPartialFrameEndEffector.h>

/// Lets a frame slide along its x axis and spin about its z axis: four rows, the linear velocities along y
/// and z and the angular velocities about x and y.
class NqSlideXSpinZEndEffector
    : public NqXmlPersistent<NqSlideXSpinZEndEffector, NqPartialFrameEndEffector<NqSlideXSpinZEndEffector>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqSlideXSpinZEndEffectorToken; }
    static constexpr const char* theTooltip = "SlideXSpinZEndEffector.";
    static constexpr NqTextLiteral theName = "NqSlideXSpinZEndEffector";
    static constexpr NqMotionPlan theMotionPlan =
        nqPartialFramePlan<theName>({NqMotionComponent::LinearY, NqMotionComponent::LinearZ,
                                     NqMotionComponent::AngularX, NqMotionComponent::AngularY});

    /// The distance, that along the free axis included.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;
};
