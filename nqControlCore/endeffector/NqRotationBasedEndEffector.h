#pragma once

#include <nqControlCore/endeffector/NqEndEffector.h>
#include <nqControlCore/filter/NqRotationMotionFilter.h>

/// Base of the end-effectors that constrain a rotation: their motion filter.
class NqRotationBasedEndEffector : public NqXmlPersistentBase<NqRotationBasedEndEffector, NqEndEffector> {
public:
    double motionThreshold() const override { return m_MotionFilter.angularVelocityThreshold(); }
    void setMotionThreshold(double threshold) override {
        m_MotionFilter.setAngularVelocityThreshold(threshold);
    }
    double accelerationThreshold() const override { return m_MotionFilter.angularAccelerationThreshold(); }

    /// Sets the limits of acceleration and of deceleration.
    void setAccelerationThreshold(double threshold) override {
        m_MotionFilter.setAngularAccelerationThreshold(threshold);
        m_MotionFilter.setAngularDecelerationThreshold(threshold);
    }

    double speedFactor() const override { return m_MotionFilter.speedFactor(); }
    void setSpeedFactor(double factor) override { m_MotionFilter.setSpeedFactor(factor); }
    bool filteringActive() const override { return m_MotionFilter.filteringActive(); }
    void setFilteringActive(bool active) override { m_MotionFilter.setFilteringActive(active); }

    virtual const NqRotationMotionFilter& motionFilter() const { return m_MotionFilter; }
    virtual void setMotionFilter(const NqRotationMotionFilter& filter) { m_MotionFilter = filter; }

protected:
    /// The motion filter, for the editable values of the concrete classes.
    const NqRotationMotionFilter& filter() const { return m_MotionFilter; }
    NqRotationMotionFilter& filter() { return m_MotionFilter; }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqMotionFilterToken, &NqRotationBasedEndEffector::m_MotionFilter));
    }

    NqRotationMotionFilter m_MotionFilter;
};
