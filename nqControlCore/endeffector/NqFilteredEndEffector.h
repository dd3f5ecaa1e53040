#pragma once

#include <nqControlCore/endeffector/NqEditableValueTable.h>
#include <nqControlCore/endeffector/NqEndEffector.h>
#include <nqControlCore/filter/NqGeneralMotionFilter.h>
#include <nqControlCore/filter/NqPointMotionFilter.h>
#include <nqControlCore/filter/NqRotationMotionFilter.h>
#include <nqControlCore/filter/NqScalarMotionFilter.h>
#include <nqControlCore/foundation/math/NqMath.h>

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
    static constexpr auto travelSpeed = speed;
    static constexpr auto setSpeed = &F::setThreshold;
    static constexpr auto acceleration = &F::accelerationThreshold;
    static constexpr auto setAcceleration = &F::setAccelerationThreshold;
    static constexpr auto deceleration = &F::decelerationThreshold;
    static constexpr auto setDeceleration = &F::setDecelerationThreshold;
};

/// The limits of the linear part. Least times count with another one, which no file written here sets.
template <>
struct NqFilterLimits<NqGeneralMotionFilter> {
    using F = NqGeneralMotionFilter;
    static const NqToken& token() { return NqControlCore::NqMotionFilterToken; }
    static constexpr auto speed = &F::linearVelocityThreshold;
    static constexpr auto travelSpeed = &F::threshold;
    static constexpr auto setSpeed = &F::setLinearVelocityThreshold;
    static constexpr auto acceleration = &F::linearAccelerationThreshold;
    static constexpr auto setAcceleration = &F::setLinearAccelerationThreshold;
    static constexpr auto deceleration = &F::linearDecelerationThreshold;
    static constexpr auto setDeceleration = &F::setLinearDecelerationThreshold;
};

template <>
struct NqFilterLimits<NqRotationMotionFilter> {
    using F = NqRotationMotionFilter;
    static const NqToken& token() { return NqControlCore::NqMotionFilterToken; }
    static constexpr auto speed = &F::angularVelocityThreshold;
    static constexpr auto travelSpeed = speed;
    static constexpr auto setSpeed = &F::setAngularVelocityThreshold;
    static constexpr auto acceleration = &F::angularAccelerationThreshold;
    static constexpr auto setAcceleration = &F::setAngularAccelerationThreshold;
    static constexpr auto deceleration = &F::angularDecelerationThreshold;
    static constexpr auto setDeceleration = &F::setAngularDecelerationThreshold;
};

template <>
struct NqFilterLimits<NqScalarMotionFilter> {
    using F = NqScalarMotionFilter;
    static const NqToken& token() { return NqControlCore::NqMotionFilterToken; }
    static constexpr auto speed = &F::threshold;
    static constexpr auto travelSpeed = speed;
    static constexpr auto setSpeed = &F::setThreshold;
    static constexpr auto acceleration = &F::accelerationThreshold;
    static constexpr auto setAcceleration = &F::setAccelerationThreshold;
    static constexpr auto deceleration = &F::decelerationThreshold;
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

    /// The difference over the filter's limit of speed.
    double minimumTime(const NqEndEffectorPlacement& from, const NqEndEffectorPlacement& to) const override {
        const double speed = std::invoke(Limits::travelSpeed, m_MotionFilter) * speedFactor();
        return this->difference(from, to) / NqMath::nonZeroPos(speed);
    }

    virtual const Filter& motionFilter() const { return m_MotionFilter; }
    virtual void setMotionFilter(const Filter& filter) { m_MotionFilter = filter; }

protected:
    /// The filter as the part of an object that editable values belong to.
    static constexpr auto theFilterPart = [](auto& object) -> auto& { return object.ownFilter(); };

    /// The editable values of the filter's limits of speed, acceleration and deceleration, which are called
    /// "Max. <kind> Velocity" and so on.
    template <typename Class>
    static typename NqEditableValueTable<Class>::Rows limitRows(const std::string& kind,
                                                                const char* const (&tooltips)[3]) {
        using Table = NqEditableValueTable<Class>;
        return Table::together({Table::number("Max. " + kind + " Velocity", tooltips[0], theFilterPart,
                                              Limits::speed, Limits::setSpeed),
                                Table::number("Max. " + kind + " Acceleration", tooltips[1], theFilterPart,
                                              Limits::acceleration, Limits::setAcceleration),
                                Table::number("Max. " + kind + " Deceleration", tooltips[2], theFilterPart,
                                              Limits::deceleration, Limits::setDeceleration)});
    }

    const Filter& ownFilter() const { return m_MotionFilter; }
    Filter& ownFilter() { return m_MotionFilter; }

    /// The filter, for classes whose limits hang on the way that they are to go.
    Filter& adjustableFilter() const { return m_MotionFilter; }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(nqComponent(Limits::token(), &NqFilteredEndEffector::m_MotionFilter));
    }

    mutable Filter m_MotionFilter;
};
