#pragma once

#include <nqControlCore/endeffector/NqFilteredEndEffector.h>

/// Base of the end-effectors that constrain a rotation.
class NqRotationBasedEndEffector : public NqFilteredEndEffector<NqRotationMotionFilter> {
public:
    /// Missing entries of the velocities count as zero.
    using NqEndEffector::filterEndEffectorVelocity;
    void filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqXmlRealVector& filtered) const override;

protected:
    /// The angle, in rad and not negative, between the orientations of two placements.
    static double angleBetween(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b);
};
