#pragma once

#include <nqControlCore/endeffector/NqFilteredEndEffector.h>
#include <nqControlCore/endeffector/NqTargetRequest.h>

/// Base of the end-effectors that drive one number to a target. The placement keeps the number in its z
/// translation.
class NqScalarBasedEndEffector : public NqFilteredEndEffector<NqScalarMotionFilter> {
public:
    unsigned doc() const override { return 1; }

    /// Zero.
    void calculateAcceleration(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                               NqXmlRealVector& acceleration, unsigned start) const override;

    using NqEndEffector::filterEndEffectorVelocity;
    void filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqXmlRealVector& filtered) const override;

    /// The distance between the numbers.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

protected:
    /// The number that a placement keeps.
    static double number(const NqEndEffectorPlacement& placement) {
        return placement.coordSysXForm().translation().z();
    }

    /// The velocity by which the motion filter takes one number to another, as a vector of one entry. Empty
    /// velocities count as zero.
    void filterNumber(double present, double desired, const NqTargetRequest& request,
                      NqXmlRealVector& filtered) const;
};
