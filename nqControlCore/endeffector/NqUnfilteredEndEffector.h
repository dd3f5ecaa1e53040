#pragma once

#include <nqControlCore/endeffector/NqEndEffector.h>
#include <nqControlCore/endeffector/NqVelocityEntries.h>

/// An end-effector without a motion filter of the common kind: its limits of speed and of acceleration are 0
/// and not to be set, a velocity without a target passes as it is, and the acceleration is zero.
class NqUnfilteredEndEffector : public NqEndEffector {
public:
    double motionThreshold() const override { return 0.0; }
    void setMotionThreshold(double) override {}
    double accelerationThreshold() const override { return 0.0; }
    void setAccelerationThreshold(double) override {}

    using NqEndEffector::filterEndEffectorVelocity;
    void filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity, const NqXmlRealVector&, double,
                                   NqXmlRealVector& filtered) const override {
        filtered = desiredVelocity;
    }

    /// Zeros from `start` on, the list cut behind them.
    void calculateAcceleration(const NqIndividualManipulator&, NqManipulatorActiveState&,
                               NqXmlRealVector& acceleration, unsigned start) const override {
        NqVelocityEntries::putZeros(start, doc(), acceleration);
    }
};
