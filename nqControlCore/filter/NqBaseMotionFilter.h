#pragma once

#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlEnumType.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

/// What all motion filters share: the shape of the approach to a target, an exponent, a speed factor and a
/// switch.
///
/// A motion filter turns the error between an actual and a desired placement into a velocity command that
/// respects limits on speed and acceleration. It keeps nothing between steps. Speed factor and switch belong
/// to the owner's run-time: they are copied, but neither persisted nor compared.
class NqBaseMotionFilter : public NqXmlPersistentBase<NqBaseMotionFilter, NqXmlCompoundType> {
public:
    /// How the commanded speed falls with the distance d to the target.
    enum FilteringMode : unsigned int {
        Proportional = 0, ///< speed proportional to d
        Trapezoidal = 1,  ///< speed proportional to the square root of d: constant deceleration
        ThreeHalves = 2   ///< speed proportional to a power of d that the exponent gives
    };

    bool xmlInit() override;

    virtual unsigned int filteringMode() const { return m_FilteringMode; }

    /// Stores any value; one above 2 is reported when the filter is next used.
    virtual void setFilteringMode(unsigned int mode) { m_FilteringMode = mode; }

    virtual double exponent() const { return m_Exponent; }

    /// Stores any number; a NaN is dropped.
    virtual void setExponent(double exponent);

    /// The factor on the limits of speed and acceleration.
    virtual double speedFactor() const { return m_SpeedFactor; }
    virtual void setSpeedFactor(double factor) { m_SpeedFactor = factor; }

    /// Whether errors are filtered at all; otherwise a filter asks for the whole error within one step.
    virtual bool filteringActive() const { return m_FilteringActive; }
    virtual void setFilteringActive(bool active) { m_FilteringActive = active; }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqFilteringModeToken, &NqBaseMotionFilter::m_FilteringMode),
            nqComponent(NqControlCore::NqExponentToken, &NqBaseMotionFilter::m_Exponent));
    }

    NqXmlEnumType<unsigned int> m_FilteringMode = Trapezoidal;
    NqXmlBasicType<double> m_Exponent = 0.0;
    double m_SpeedFactor = 1.0;
    bool m_FilteringActive = true;
};
