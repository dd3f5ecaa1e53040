#pragma once

#include <nqControlCore/endeffector/NqEndEffector.h>
#include <nqControlCore/filter/NqPointMotionFilter.h>

/// Base of the end-effectors that constrain a point in space, or some of its coordinates: what concerns the
/// point's motion filter. The placement is the translation; a velocity has doc() entries, at most 3.
class NqPointBasedEndEffector : public NqXmlPersistentBase<NqPointBasedEndEffector, NqEndEffector> {
public:
    void filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqXmlRealVector& filtered) const override;
    void filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqManipulatorActiveState& state, NqXmlRealVector& filtered) const override;

    double motionThreshold() const override { return m_PointMotionFilter.threshold(); }
    void setMotionThreshold(double threshold) override { m_PointMotionFilter.setThreshold(threshold); }
    double accelerationThreshold() const override { return m_PointMotionFilter.accelerationThreshold(); }

    /// Sets the limits of acceleration and of deceleration.
    void setAccelerationThreshold(double threshold) override {
        m_PointMotionFilter.setAccelerationAndDecelerationThresholds(threshold);
    }

    /// The way from the present to the desired position, in the system frame.
    void calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   NqManipulatorActiveState& state, NqXmlRealVector& error) const override;

    double speedFactor() const override { return m_PointMotionFilter.speedFactor(); }
    void setSpeedFactor(double factor) override { m_PointMotionFilter.setSpeedFactor(factor); }
    bool filteringActive() const override { return m_PointMotionFilter.filteringActive(); }
    void setFilteringActive(bool active) override { m_PointMotionFilter.setFilteringActive(active); }

    virtual const NqPointMotionFilter& pointMotionFilter() const { return m_PointMotionFilter; }
    virtual void setPointMotionFilter(const NqPointMotionFilter& filter) { m_PointMotionFilter = filter; }

    /// The velocity by which the motion filter takes the present position towards the desired one.
    virtual void filterPointEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                const NqEndEffectorPlacement& desiredPlacement,
                                                const NqVector& desiredVelocity,
                                                const NqVector& previousVelocity, double timeStep,
                                                NqManipulatorActiveState& state, NqVector& filtered) const;

protected:
    /// Copies the first entries, at most 3; the other components of the point stay.
    virtual void convertToPointVelocity(const NqXmlRealVector& velocity, NqVector& point) const;

    /// Resizes the vector to the smaller of doc() and 3 and copies as many components into it.
    virtual void convertFromPointVelocity(const NqVector& point, NqXmlRealVector& velocity) const;

    /// The motion filter, for the editable values of the concrete classes.
    const NqPointMotionFilter& filter() const { return m_PointMotionFilter; }
    NqPointMotionFilter& filter() { return m_PointMotionFilter; }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(nqComponent(NqControlCore::NqPointMotionFilterToken,
                                           &NqPointBasedEndEffector::m_PointMotionFilter));
    }

    NqVector pointVelocity(const NqXmlRealVector& velocity) const;

    NqPointMotionFilter m_PointMotionFilter;
};
