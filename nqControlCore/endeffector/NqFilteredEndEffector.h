#pragma once

#include <nqControlCore/endeffector/NqEndEffector.h>
#include <nqControlCore/filter/NqGeneralMotionFilter.h>
#include <nqControlCore/filter/NqPointMotionFilter.h>
#include <nqControlCore/filter/NqRotationMotionFilter.h>
#include <nqControlCore/filter/NqScalarMotionFilter.h>

#include <functional>

/// What an end-effector calls its motion filter in files, and which of the filter's limits stand for its
/// motion.
template <typename Filter>
struct NqFilterLimits;

template <>
struct NqFilterLimits<NqPointMotionFilter> {
    using F = NqPointMotionFilter;
    static const NqToken& token() { return NqControlCore::NqPointMotionFilterToken; }
    static constexpr auto speed = &F::threshold;
    static constexpr auto setSpeed = &F::setThreshold;
    static constexpr auto acceleration = &F::accelerationThreshold;
    static constexpr auto setAcceleration = &F::setAccelerationThreshold;
    static constexpr auto setDeceleration = &F::setDecelerationThreshold;
};

/// The limits of the linear part.
template <>
struct NqFilterLimits<NqGeneralMotionFilter> {
    using F = NqGeneralMotionFilter;
    static const NqToken& token() { return NqControlCore::NqMotionFilterToken; }
    static constexpr auto speed = &F::linearVelocityThreshold;
    static constexpr auto setSpeed = &F::setLinearVelocityThreshold;
    static constexpr auto acceleration = &F::linearAccelerationThreshold;
    static constexpr auto setAcceleration = &F::setLinearAccelerationThreshold;
    static constexpr auto setDeceleration = &F::setLinearDecelerationThreshold;
};

template <>
struct NqFilterLimits<NqRotationMotionFilter> {
    using F = NqRotationMotionFilter;
    static const NqToken& token() { return NqControlCore::NqMotionFilterToken; }
    static constexpr auto speed = &F::angularVelocityThreshold;
    static constexpr auto setSpeed = &F::setAngularVelocityThreshold;
    static constexpr auto acceleration = &F::angularAccelerationThreshold;
    static constexpr auto setAcceleration = &F::setAngularAccelerationThreshold;
    static constexpr auto setDeceleration = &F::setAngularDecelerationThreshold;
};

template <>
struct NqFilterLimits<NqScalarMotionFilter> {
    using F = NqScalarMotionFilter;
    static const NqToken& token() { return NqControlCore::NqMotionFilterToken; }
    static constexpr auto speed = &F::threshold;
    static constexpr auto setSpeed = &F::setThreshold;
    static constexpr auto acceleration = &F::accelerationThreshold;
    static constexpr auto setAcceleration = &F::setAccelerationThreshold;
    static constexpr auto setDeceleration = &F::setDecelerationThreshold;
};

/// An end-effector with a motion filter: the filter, and what an end-effector hands on to it.
template <typename Filter>
class NqFilteredEndEffector : public NqXmlPersistentBase<NqFilteredEndEffector<Filter>, NqEndEffector> {
    using Limits = NqFilterLimits<Filter>;

public:
    double motionThreshold() const override { return std::invoke(Limits::speed, m_MotionFilter); }
    void setMotionThreshold(double threshold) override {
        std::invoke(Limits::setSpeed, m_MotionFilter, threshold);
    }
    double accelerationThreshold() const override {
        return std::invoke(Limits::acceleration, m_MotionFilter);
    }

    /// Sets the limits of acceleration and of deceleration.
    void setAccelerationThreshold(double threshold) override {
        std::invoke(Limits::setAcceleration, m_MotionFilter, threshold);
        std::invoke(Limits::setDeceleration, m_MotionFilter, threshold);
    }

    double speedFactor() const override { return m_MotionFilter.speedFactor(); }
    void setSpeedFactor(double factor) override { m_MotionFilter.setSpeedFactor(factor); }
    bool filteringActive() const override { return m_MotionFilter.filteringActive(); }
    void setFilteringActive(bool active) override { m_MotionFilter.setFilteringActive(active); }

    virtual const Filter& motionFilter() const { return m_MotionFilter; }
    virtual void setMotionFilter(const Filter& filter) { m_MotionFilter = filter; }

protected:
    /// The filter itself, for the editable values of the concrete classes.
    const Filter& ownFilter() const { return m_MotionFilter; }
    Filter& ownFilter() { return m_MotionFilter; }

    /// The least time, in s, at the filter's limit of speed.
    double timeAtThreshold(const NqEndEffectorPlacement& from, const NqEndEffectorPlacement& to) const {
        return this->timeForDistance(this->difference(from, to), motionThreshold() * speedFactor());
    }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(nqComponent(Limits::token(), &NqFilteredEndEffector::m_MotionFilter));
    }

    Filter m_MotionFilter;
};
