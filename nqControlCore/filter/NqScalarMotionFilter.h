#pragma once

#include <nqControlCore/filter/NqBaseMotionFilter.h>

/// Motion filter of one real coordinate: a distance, an angle, a gripper's opening. Units are those of the
/// coordinate, per s and s^2.
///
/// The approach velocity is that of NqMotionProfile in one dimension, with the acceleration a the speed
/// factor times the smaller of the acceleration and deceleration thresholds and vmax the speed factor times
/// the threshold. Three-halves mode always has the exponent 0.5. The desired velocity is added, then speed
/// and change of velocity are limited.
class NqScalarMotionFilter : public NqXmlPersistent<NqScalarMotionFilter, NqBaseMotionFilter> {
public:
    static const NqToken& classToken();

    /// Threshold and acceleration threshold of 1e300 and a gain of 1; the deceleration threshold is the
    /// default one, and still shapes the approach.
    static NqScalarMotionFilter nullObject();

    /// Limit of the speed.
    virtual double threshold() const { return m_Threshold; }
    virtual void setThreshold(double threshold) { m_Threshold = threshold; }

    /// Limit of the change of velocity.
    virtual double accelerationThreshold() const { return m_AccelerationThreshold; }
    virtual void setAccelerationThreshold(double threshold) { m_AccelerationThreshold = threshold; }

    /// Deceleration that shapes the approach; it acts where it is below the acceleration threshold.
    virtual double decelerationThreshold() const { return m_DecelerationThreshold; }
    virtual void setDecelerationThreshold(double threshold) { m_DecelerationThreshold = threshold; }

    /// Highest gain of the proportional mode, 1/s; not scaled by the speed factor.
    virtual double gain() const { return m_Gain; }
    virtual void setGain(double gain) { m_Gain = gain; }

    /// The velocity that takes the actual towards the desired value in this step. With filtering switched off
    /// it is the whole way over the time step. False, with a message and the output untouched, for a
    /// filtering mode above 2.
    virtual bool calculateVelocity(double actualValue, double desiredValue, double desiredVelocity,
                                   double previousVelocity, double timeStep, double& filteredVelocity) const;

    /// The velocity under the limits of speed, then of its change from the previous one. True always.
    virtual bool filterVelocity(double velocity, double previousVelocity, double timeStep,
                                double& filteredVelocity) const;

protected:
    /// The approach velocity for an error, untouched in a mode above 2. Returns what
    /// imposeAccelerationThreshold() takes as its speed threshold.
    virtual double applyFilter(double error, double gain, double velocityLimit, double accelerationLimit,
                               double timeStep, double& result) const;

    void imposeVelocityThreshold(double& velocity) const;

    /// Shortens the change from the previous velocity; except in proportional mode only at speeds of at least
    /// twice the speed threshold. In three-halves mode that threshold is a squared speed, and is compared all
    /// the same.
    void imposeAccelerationThreshold(double previousVelocity, double speedThreshold, double timeStep,
                                     double& velocity) const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using Filter = NqScalarMotionFilter;
        return nqComponentList(nqComponent(NqThresholdToken, &Filter::m_Threshold),
                               nqComponent(NqAccelerationThresholdToken, &Filter::m_AccelerationThreshold),
                               nqComponent(NqDecelerationThresholdToken, &Filter::m_DecelerationThreshold),
                               nqComponent(NqGainToken, &Filter::m_Gain));
    }

    NqXmlBasicType<double> m_Threshold = 1.0;
    NqXmlBasicType<double> m_AccelerationThreshold = 40.0;
    NqXmlBasicType<double> m_DecelerationThreshold = 40.0;
    NqXmlBasicType<double> m_Gain = 200.0;
};
