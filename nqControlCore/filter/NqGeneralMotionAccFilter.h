#pragma once

#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

/// Filter of a frame at the level of acceleration: a proportional law under one limit.
///
/// The error times the gain, at most 1 / h with h the time step, is shortened to the threshold, and the
/// desired acceleration is added to that, beyond the limit. It has no modes, no speed factor and no switch.
class NqGeneralMotionAccFilter : public NqXmlPersistent<NqGeneralMotionAccFilter, NqXmlCompoundType> {
public:
    static const NqToken& classToken();

    /// A filter without a limit: gains and angular weight of 1 and a threshold of 1e300.
    static NqGeneralMotionAccFilter nullObject();

    /// The point that the linear part is taken at, in the frame, m.
    virtual const NqVector& offset() const { return m_Offset.value(); }
    virtual void setOffset(const NqVector& offset) { m_Offset = offset; }

    /// What the angular part counts against the linear one in the limit.
    virtual double angularWeight() const { return m_AngularWeight; }
    virtual void setAngularWeight(double weight) { m_AngularWeight = weight; }

    /// Limit of the weighted acceleration.
    virtual double threshold() const { return m_Threshold; }
    virtual void setThreshold(double threshold) { m_Threshold = threshold; }

    virtual double linearGain() const { return m_LinearGain; }
    virtual void setLinearGain(double gain) { m_LinearGain = gain; }

    virtual double angularGain() const { return m_AngularGain; }
    virtual void setAngularGain(double gain) { m_AngularGain = gain; }

    /// The acceleration of the frame's origin that takes the actual towards the desired placement: with l and
    /// w the linear and angular part, both are shortened by one factor where |l|^2 + angularWeight^2 |w|^2
    /// exceeds the squared threshold. A rotation whose quaternion has a negative scalar part counts with the
    /// angle above pi. True always.
    virtual bool calculateGeneralAccMotion(const NqCoordinateSystemTransformation& actualPlacement,
                                           const NqCoordinateSystemTransformation& desiredPlacement,
                                           const NqGeneralMotion& desiredAcceleration, double timeStep,
                                           NqGeneralMotion& filteredAcceleration) const;

    /// The same for a position alone. True always.
    virtual bool calculateAcceleration(const NqVector& actualPosition, const NqVector& desiredPosition,
                                       const NqVector& desiredAcceleration, double timeStep,
                                       NqVector& filteredAcceleration) const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using Filter = NqGeneralMotionAccFilter;
        return nqComponentList(nqComponent(NqOffsetToken, &Filter::m_Offset),
                               nqComponent(NqAngularWeightToken, &Filter::m_AngularWeight),
                               nqComponent(NqThresholdToken, &Filter::m_Threshold),
                               nqComponent(NqLinearGainToken, &Filter::m_LinearGain),
                               nqComponent(NqAngularGainToken, &Filter::m_AngularGain));
    }

    NqXmlVector m_Offset;
    NqXmlBasicType<double> m_AngularWeight = 0.4;
    NqXmlBasicType<double> m_Threshold = 1.0;
    NqXmlBasicType<double> m_LinearGain = 200.0;
    NqXmlBasicType<double> m_AngularGain = 200.0;
};
