#pragma once

#include <nqControlCore/filter/NqBaseMotionFilter.h>
#include <nqControlCore/foundation/math/NqOrientation.h>

/// Motion filter of an orientation.
///
/// The error is a rotation vector in the frame of the actual orientation; the approach velocity is that of
/// NqMotionProfile, with the acceleration a the speed factor times the smaller of the angular acceleration
/// and deceleration thresholds and vmax the speed factor times the angular velocity threshold. The desired
/// angular velocity is added, then speed and change of velocity are limited, and the result is turned back.
///
/// Its element name is that of the general motion filter.
class NqRotationMotionFilter : public NqXmlPersistent<NqRotationMotionFilter, NqBaseMotionFilter> {
public:
    static const NqToken& classToken();

    /// A default filter with a gain of 1; its thresholds are the default ones.
    static NqRotationMotionFilter nullObject();

    /// Limit of the angular speed, rad/s.
    virtual double angularVelocityThreshold() const { return m_AngularVelocityThreshold; }
    virtual void setAngularVelocityThreshold(double threshold) { m_AngularVelocityThreshold = threshold; }

    /// Limit of the change of angular velocity, rad/s^2.
    virtual double angularAccelerationThreshold() const { return m_AngularAccelerationThreshold; }
    virtual void setAngularAccelerationThreshold(double threshold) {
        m_AngularAccelerationThreshold = threshold;
    }

    /// Deceleration that shapes the approach, rad/s^2; it acts where it is below the acceleration threshold.
    virtual double angularDecelerationThreshold() const { return m_AngularDecelerationThreshold; }
    virtual void setAngularDecelerationThreshold(double threshold) {
        m_AngularDecelerationThreshold = threshold;
    }

    /// Highest gain of the proportional mode, 1/s; not scaled by the speed factor.
    virtual double angularGain() const { return m_AngularGain; }
    virtual void setAngularGain(double gain) { m_AngularGain = gain; }

    /// The angular velocity that turns the actual towards the desired orientation in this step. All
    /// velocities are in the frame that both orientations are in (rad/s, s). With `zAxisOnly` only the z axes
    /// are brought together.
    ///
    /// With filtering switched off it is the whole error over the time step. With `applyProfile` false it is
    /// the bare error, a rotation vector: no limits, no feed-forward. False, with a message and the output
    /// untouched, for a filtering mode above 2, whether filtering is active or not.
    virtual bool calculateRotationMotion(const NqOrientation& actualOrientation,
                                         const NqOrientation& desiredOrientation,
                                         const NqVector& desiredVelocity, const NqVector& previousVelocity,
                                         double timeStep, NqVector& filteredVelocity, bool zAxisOnly,
                                         bool applyProfile) const;

    /// The angular velocity under the limits of speed, then of its change from the previous one. True always.
    virtual bool filterVelocity(const NqVector& velocity, const NqVector& previousVelocity, double timeStep,
                                NqVector& filteredVelocity) const;

protected:
    /// The approach velocity for an error, untouched in a mode above 2. Returns the squared speed below which
    /// its change is free.
    virtual double applyFilter(const NqVector& error, double gain, double velocityLimit,
                               double accelerationLimit, double timeStep, NqVector& result) const;

    void imposeVelocityThresholds(double limit, NqVector& velocity) const;
    void imposeAccelerationThresholds(const NqVector& previousVelocity, double limit, double slowSquared,
                                      double timeStep, NqVector& velocity) const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using Filter = NqRotationMotionFilter;
        return nqComponentList(
            nqComponent(NqAngularVelocityThresholdToken, &Filter::m_AngularVelocityThreshold),
            nqComponent(NqAngularAccelerationThresholdToken, &Filter::m_AngularAccelerationThreshold),
            nqComponent(NqAngularDecelerationThresholdToken, &Filter::m_AngularDecelerationThreshold),
            nqComponent(NqAngularGainToken, &Filter::m_AngularGain));
    }

    NqXmlBasicType<double> m_AngularVelocityThreshold = 1.0;
    NqXmlBasicType<double> m_AngularAccelerationThreshold = 8.0;
    NqXmlBasicType<double> m_AngularDecelerationThreshold = 8.0;
    NqXmlBasicType<double> m_AngularGain = 200.0;
};
