#pragma once

#include <nqControlCore/filter/NqBaseMotionFilter.h>
#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

/// Motion filter of a frame: position and orientation together.
///
/// Linear and angular error are taken in the actual frame, the linear one at a point fixed in the frame, the
/// offset. Each part approaches on its own profile (NqMotionProfile) and under its own limits; on request the
/// part that would arrive first is slowed down, so that both arrive together. The result is the motion of the
/// frame's origin.
class NqGeneralMotionFilter : public NqXmlPersistent<NqGeneralMotionFilter, NqBaseMotionFilter> {
public:
    static const NqToken& classToken();

    /// A default filter with gains and angular weight of 1 and a threshold of 1e300; its other limits are the
    /// default ones.
    static NqGeneralMotionFilter nullObject();

    /// The point whose position the linear part filters, in the frame, m.
    virtual const NqVector& offset() const { return m_Offset.value(); }
    virtual void setOffset(const NqVector& offset) { m_Offset = offset; }

    /// Read from old files and kept, without effect.
    virtual double angularWeight() const { return m_AngularWeight; }
    virtual void setAngularWeight(double weight) { m_AngularWeight = weight; }
    virtual double threshold() const { return m_Threshold; }
    virtual void setThreshold(double threshold) { m_Threshold = threshold; }

    /// Limits of the speed, m/s and rad/s.
    virtual double linearVelocityThreshold() const { return m_LinearVelocityThreshold; }
    virtual void setLinearVelocityThreshold(double threshold) { m_LinearVelocityThreshold = threshold; }
    virtual double angularVelocityThreshold() const { return m_AngularVelocityThreshold; }
    virtual void setAngularVelocityThreshold(double threshold) { m_AngularVelocityThreshold = threshold; }

    /// Limits of the change of velocity, m/s^2 and rad/s^2.
    virtual double linearAccelerationThreshold() const { return m_LinearAccelerationThreshold; }
    virtual void setLinearAccelerationThreshold(double threshold) {
        m_LinearAccelerationThreshold = threshold;
    }
    virtual double angularAccelerationThreshold() const { return m_AngularAccelerationThreshold; }
    virtual void setAngularAccelerationThreshold(double threshold) {
        m_AngularAccelerationThreshold = threshold;
    }

    /// Decelerations that shape the approach, m/s^2 and rad/s^2; each acts where it is below the acceleration
    /// threshold.
    virtual double linearDecelerationThreshold() const { return m_LinearDecelerationThreshold; }
    virtual void setLinearDecelerationThreshold(double threshold) {
        m_LinearDecelerationThreshold = threshold;
    }
    virtual double angularDecelerationThreshold() const { return m_AngularDecelerationThreshold; }
    virtual void setAngularDecelerationThreshold(double threshold) {
        m_AngularDecelerationThreshold = threshold;
    }

    /// Highest gains of the proportional mode, 1/s; not scaled by the speed factor.
    virtual double linearGain() const { return m_LinearGain; }
    virtual void setLinearGain(double gain) { m_LinearGain = gain; }
    virtual double angularGain() const { return m_AngularGain; }
    virtual void setAngularGain(double gain) { m_AngularGain = gain; }

    /// The motion that takes the actual towards the desired placement in this step. All motions are of the
    /// frame's origin, in the frame that both placements are in (m/s, rad/s, s). With `zAxisOnly` the
    /// rotation about the frame's z axis is left free.
    ///
    /// With `matchTimes` the part that needs less time at its limit of speed has limit and gain scaled down
    /// to the time of the other; a part without error thus gets a limit of 0, which cuts its feed-forward
    /// too. With filtering switched off the motion is the whole error over the time step. With `applyProfile`
    /// false it is the bare error. False, with a message and the output untouched, for a filtering mode above
    /// 2, whether filtering is active or not.
    virtual bool calculateGeneralMotion(const NqCoordinateSystemTransformation& actualPlacement,
                                        const NqCoordinateSystemTransformation& desiredPlacement,
                                        const NqGeneralMotion& desiredVelocity,
                                        const NqGeneralMotion& previousVelocity, double timeStep,
                                        NqGeneralMotion& filteredVelocity, bool matchTimes, bool zAxisOnly,
                                        bool applyProfile) const;

    /// The motion under the limits of speed, then of change from the previous one, part by part and at the
    /// offset point, whose offset is in the frame of the motions. True always.
    virtual bool filterVelocity(const NqGeneralMotion& velocity, const NqGeneralMotion& previousVelocity,
                                double timeStep, NqGeneralMotion& filteredVelocity) const;

    /// For a caller that wants both: the motion as calculateGeneralMotion() gives it with the profile, and
    /// the bare error as it gives it without. What they have in common is computed once.
    virtual bool calculateMotionAndError(const NqCoordinateSystemTransformation& actualPlacement,
                                         const NqCoordinateSystemTransformation& desiredPlacement,
                                         const NqGeneralMotion& desiredVelocity,
                                         const NqGeneralMotion& previousVelocity, double timeStep,
                                         NqGeneralMotion& filteredVelocity, NqGeneralMotion& error,
                                         bool matchTimes, bool zAxisOnly) const;

protected:
    /// The approach velocity for the error of one part, untouched in a mode above 2. Returns the squared
    /// speed below which its change is free.
    virtual double applyFilter(const NqVector& error, double gain, double velocityLimit,
                               double accelerationLimit, double timeStep, NqVector& result) const;

    void imposeVelocityThresholds(double linearLimit, double angularLimit, NqVector& linear,
                                  NqVector& angular) const;
    void imposeAccelerationThresholds(const NqGeneralMotion& previousVelocity, double linearLimit,
                                      double angularLimit, double linearSlowSquared,
                                      double angularSlowSquared, double timeStep, NqVector& linear,
                                      NqVector& angular) const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using Filter = NqGeneralMotionFilter;
        constexpr auto readOnly = NqXmlComponentKind::ReadOnly;
        return nqComponentList(
            nqComponent(NqOffsetToken, &Filter::m_Offset),
            nqComponent(NqLinearVelocityThresholdToken, &Filter::m_LinearVelocityThreshold),
            nqComponent(NqAngularVelocityThresholdToken, &Filter::m_AngularVelocityThreshold),
            nqComponent(NqLinearAccelerationThresholdToken, &Filter::m_LinearAccelerationThreshold),
            nqComponent(NqAngularAccelerationThresholdToken, &Filter::m_AngularAccelerationThreshold),
            nqComponent(NqLinearDecelerationThresholdToken, &Filter::m_LinearDecelerationThreshold),
            nqComponent(NqAngularDecelerationThresholdToken, &Filter::m_AngularDecelerationThreshold),
            nqComponent(NqLinearGainToken, &Filter::m_LinearGain),
            nqComponent(NqAngularGainToken, &Filter::m_AngularGain),
            nqComponent(NqAngularWeightToken, &Filter::m_AngularWeight, readOnly),
            nqComponent(NqThresholdToken, &Filter::m_Threshold, readOnly));
    }

    /// The error of the offset point and of the orientation, in the actual frame.
    struct PlacementError {
        NqOrientation toActual; ///< from the frame that the placements are in
        NqVector linear;
        NqVector angular;
    };

    bool isModeKnown() const;
    // What follows is inlined: calls that pass so much through memory would cost a tenth of the whole.
    inline PlacementError errorBetween(const NqCoordinateSystemTransformation& actualPlacement,
                                       const NqCoordinateSystemTransformation& desiredPlacement,
                                       bool zAxisOnly) const;
    inline NqGeneralMotion approach(const PlacementError& error, const NqGeneralMotion& desiredVelocity,
                                    const NqGeneralMotion& previousVelocity, double timeStep,
                                    bool matchTimes) const;
    inline NqGeneralMotion ofOrigin(const NqOrientation& actual, const NqGeneralMotion& ofOffset) const;

    NqXmlVector m_Offset;
    NqXmlBasicType<double> m_LinearVelocityThreshold = 1.0;
    NqXmlBasicType<double> m_AngularVelocityThreshold = 1.0;
    NqXmlBasicType<double> m_LinearAccelerationThreshold = 8.0;
    NqXmlBasicType<double> m_AngularAccelerationThreshold = 8.0;
    NqXmlBasicType<double> m_LinearDecelerationThreshold = 8.0;
    NqXmlBasicType<double> m_AngularDecelerationThreshold = 8.0;
    NqXmlBasicType<double> m_LinearGain = 200.0;
    NqXmlBasicType<double> m_AngularGain = 200.0;
    NqXmlBasicType<double> m_AngularWeight = 0.4;
    NqXmlBasicType<double> m_Threshold = 1.0;
};
