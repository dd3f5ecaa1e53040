#pragma once

#include <nqControlCore/endeffector/NqEndEffector.h>
#include <nqControlCore/filter/NqScalarMotionFilter.h>

/// Base of the end-effectors that drive one number to a target: their motion filter. The placement keeps the
/// number in its z translation.
class NqScalarBasedEndEffector : public NqXmlPersistentBase<NqScalarBasedEndEffector, NqEndEffector> {
public:
    using NqEndEffector::filterEndEffectorVelocity;
    void filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqXmlRealVector& filtered) const override;

    /// The distance between the numbers.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    double motionThreshold() const override { return m_MotionFilter.threshold(); }
    void setMotionThreshold(double threshold) override { m_MotionFilter.setThreshold(threshold); }
    double accelerationThreshold() const override { return m_MotionFilter.accelerationThreshold(); }

    /// Sets the limits of acceleration and of deceleration.
    void setAccelerationThreshold(double threshold) override {
        m_MotionFilter.setAccelerationThreshold(threshold);
        m_MotionFilter.setDecelerationThreshold(threshold);
    }

    double speedFactor() const override { return m_MotionFilter.speedFactor(); }
    void setSpeedFactor(double factor) override { m_MotionFilter.setSpeedFactor(factor); }
    bool filteringActive() const override { return m_MotionFilter.filteringActive(); }
    void setFilteringActive(bool active) override { m_MotionFilter.setFilteringActive(active); }

    virtual const NqScalarMotionFilter& motionFilter() const { return m_MotionFilter; }
    virtual void setMotionFilter(const NqScalarMotionFilter& filter) { m_MotionFilter = filter; }

protected:
    /// The number that a placement keeps.
    static double number(const NqEndEffectorPlacement& placement) {
        return placement.coordSysXForm().translation().z();
    }

    /// The velocity by which the motion filter takes one number to another, as a vector of one entry. Empty
    /// velocities count as zero.
    void filterNumber(double present, double desired, const NqXmlRealVector& desiredVelocity,
                      const NqXmlRealVector& previousVelocity, double timeStep,
                      NqXmlRealVector& filtered) const;

    /// The motion filter, for the editable values of the concrete classes.
    const NqScalarMotionFilter& filter() const { return m_MotionFilter; }
    NqScalarMotionFilter& filter() { return m_MotionFilter; }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqMotionFilterToken, &NqScalarBasedEndEffector::m_MotionFilter));
    }

    NqScalarMotionFilter m_MotionFilter;
};
