#pragma once

#include <nqControlCore/filter/NqBaseMotionFilter.h>
#include <nqControlCore/foundation/math/NqPlanarVector.h>
#include <nqControlCore/foundation/math/NqVector.h>

/// Motion filter of a point, in space or in the plane.
///
/// The approach velocity is that of NqMotionProfile, with the acceleration a the speed factor times the
/// smaller of the acceleration and deceleration thresholds and vmax the speed factor times the threshold. The
/// desired velocity is added, then speed and change of velocity are limited.
class NqPointMotionFilter : public NqXmlPersistent<NqPointMotionFilter, NqBaseMotionFilter> {
public:
    static const NqToken& classToken();

    /// A filter that limits nothing: thresholds of 1e300 and a gain of 1.
    static NqPointMotionFilter nullObject();

    /// Limit of the speed, m/s.
    virtual double threshold() const { return m_Threshold; }
    virtual void setThreshold(double threshold) { m_Threshold = threshold; }

    /// Limit of the change of velocity, m/s^2.
    virtual double accelerationThreshold() const { return m_AccelerationThreshold; }
    virtual void setAccelerationThreshold(double threshold) { m_AccelerationThreshold = threshold; }

    /// Deceleration that shapes the approach, m/s^2; it acts where it is below the acceleration threshold.
    virtual double decelerationThreshold() const { return m_DecelerationThreshold; }
    virtual void setDecelerationThreshold(double threshold) { m_DecelerationThreshold = threshold; }

    virtual void setAccelerationAndDecelerationThresholds(double threshold);

    /// Highest gain of the proportional mode, 1/s; not scaled by the speed factor.
    virtual double linearGain() const { return m_LinearGain; }
    virtual void setLinearGain(double gain) { m_LinearGain = gain; }

    /// The velocity that takes the actual towards the desired position in this step (m, m/s, s). With
    /// filtering switched off it is the whole way over the time step. False, with a message and the output
    /// untouched, for a filtering mode above 2.
    ///
    /// In three-halves mode the desired velocity counts twice.
    virtual bool calculate3DVelocity(const NqVector& actualPosition, const NqVector& desiredPosition,
                                     const NqVector& desiredVelocity, const NqVector& previousVelocity,
                                     double timeStep, NqVector& filteredVelocity) const;

    /// The velocity under the limits of speed, then of its change from the previous one. True always.
    virtual bool filter3DVelocity(const NqVector& velocity, const NqVector& previousVelocity, double timeStep,
                                  NqVector& filteredVelocity) const;

    /// As calculate3DVelocity, but three-halves mode has the exponent 0.5 and counts the desired velocity
    /// once.
    virtual bool calculate2DVelocity(const NqPlanarVector& actualPosition,
                                     const NqPlanarVector& desiredPosition,
                                     const NqPlanarVector& desiredVelocity,
                                     const NqPlanarVector& previousVelocity, double timeStep,
                                     NqPlanarVector& filteredVelocity) const;
    virtual bool filter2DVelocity(const NqPlanarVector& velocity, const NqPlanarVector& previousVelocity,
                                  double timeStep, NqPlanarVector& filteredVelocity) const;

protected:
    /// Shorten a velocity to the speed limit.
    virtual void limit3DVelocity(NqVector& velocity) const;
    virtual void limit2DVelocity(NqPlanarVector& velocity) const;

    /// Shorten the change from the previous velocity to the acceleration threshold times the time step.
    virtual void limit3DAcceleration(const NqVector& previousVelocity, const double& timeStep,
                                     NqVector& velocity) const;
    virtual void limit2DAcceleration(const NqPlanarVector& previousVelocity, const double& timeStep,
                                     NqPlanarVector& velocity) const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using Filter = NqPointMotionFilter;
        return nqComponentList(nqComponent(NqThresholdToken, &Filter::m_Threshold),
                               nqComponent(NqAccelerationThresholdToken, &Filter::m_AccelerationThreshold),
                               nqComponent(NqDecelerationThresholdToken, &Filter::m_DecelerationThreshold),
                               nqComponent(NqLinearGainToken, &Filter::m_LinearGain));
    }

    /// What sets the operation in space and the one in the plane apart.
    template <typename Vector>
    struct Dimension;

    void limitVelocity(NqVector& v) const { limit3DVelocity(v); }
    void limitVelocity(NqPlanarVector& v) const { limit2DVelocity(v); }
    void limitAcceleration(const NqVector& u, const double& h, NqVector& v) const {
        limit3DAcceleration(u, h, v);
    }
    void limitAcceleration(const NqPlanarVector& u, const double& h, NqPlanarVector& v) const {
        limit2DAcceleration(u, h, v);
    }

    template <typename Vector>
    bool calculateVelocity(const Vector& actualPosition, const Vector& desiredPosition,
                           const Vector& desiredVelocity, const Vector& previousVelocity, double timeStep,
                           Vector& filteredVelocity) const;
    template <typename Vector>
    void shortenToSpeed(Vector& velocity) const;
    template <typename Vector>
    void shortenChange(const Vector& previousVelocity, double timeStep, Vector& velocity) const;

    NqXmlBasicType<double> m_Threshold = 1.0;
    NqXmlBasicType<double> m_AccelerationThreshold = 8.0;
    NqXmlBasicType<double> m_DecelerationThreshold = 8.0;
    NqXmlBasicType<double> m_LinearGain = 200.0;
};
