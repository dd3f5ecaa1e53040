#pragma once

#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

class NqIndividualManipulator;

/// Limits on the motion of a manipulator's joints, one entry per joint (rad or m, s).
class NqControlParameters : public NqXmlPersistent<NqControlParameters, NqXmlCompoundType> {
public:
    static const NqToken& classToken();

    const NqXmlRealVector& accelerationLimits() const { return m_AccelerationLimits; }
    void setAccelerationLimits(const NqXmlRealVector& limits) { m_AccelerationLimits = limits; }
    const NqXmlRealVector& decelerationLimits() const { return m_DecelerationLimits; }
    void setDecelerationLimits(const NqXmlRealVector& limits) { m_DecelerationLimits = limits; }
    const NqXmlRealVector& velocityLimits() const { return m_VelocityLimits; }
    void setVelocityLimits(const NqXmlRealVector& limits) { m_VelocityLimits = limits; }

    /// Gives the limits of acceleration and of velocity an entry per joint, new ones being 1e300 and 1.
    /// Entries that are there stay, and so do the limits of deceleration.
    void createDefaultFromManipulator(const NqIndividualManipulator& manipulator);

    /// How near a singularity may come. Compared, but not persisted.
    virtual double singularityProximityThreshold() const { return m_SingularityProximityThreshold; }
    virtual void setSingularityProximityThreshold(double threshold) {
        m_SingularityProximityThreshold = threshold;
    }

    /// Compares the limits and, beyond what is persisted, the threshold.
    bool sameValue(const NqControlParameters& other) const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using Parameters = NqControlParameters;
        return nqComponentList(nqComponent(NqAccelerationLimitsToken, &Parameters::m_AccelerationLimits),
                               nqComponent(NqDecelerationLimitsToken, &Parameters::m_DecelerationLimits),
                               nqComponent(NqVelocityLimitsToken, &Parameters::m_VelocityLimits));
    }

    NqXmlRealVector m_AccelerationLimits;
    NqXmlRealVector m_DecelerationLimits;
    NqXmlRealVector m_VelocityLimits;
    NqXmlBasicType<double> m_SingularityProximityThreshold = 0.0;
};
