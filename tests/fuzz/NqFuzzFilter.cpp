#include "NqFuzzTarget.h"
#include "filter/NqFilterTesting.h"

#include <nqControlCore/filter/NqTrapezoidalProfileTool.h>

namespace {

bool isFinite(const NqVector& v) {
    return std::isfinite(v.magSquared());
}

/// Whether a velocity is finite and within the limit, or no more above it than the previous one, which may
/// not change at once. Of a motion the angular part counts, the linear one is finite.
bool isWithin(const NqVector& v, double limit, const NqVector& previous) {
    return isFinite(v) && v.mag() <= std::max(limit, previous.mag()) * (1.0 + 1.0e-9);
}
bool isWithin(double v, double limit, double previous) {
    return isWithin(NqVector::xVector(v), limit, NqVector::xVector(previous));
}
bool isWithin(const NqGeneralMotion& v, double limit, const NqGeneralMotion& previous) {
    return isFinite(v.linear()) && isWithin(v.angular(), limit, previous.angular());
}

/// What a call of a filter works on.
struct Call {
    bool isSane;
    NqCoordinateSystemTransformation from, to;
    NqGeneralMotion desired, previous;
    double timeStep;
    double limits[4]; ///< of speed, acceleration and deceleration; then the gain

    explicit Call(NqFuzzInput& input) : isSane(input.flag()) {
        from = input.frame(isSane);
        to = input.frame(isSane);
        const auto motion = [&] {
            const NqVector linear = input.vector(isSane);
            return NqGeneralMotion(linear, input.vector(isSane));
        };
        desired = motion();
        previous = motion();
        timeStep = isSane ? input.positive() : input.any();
        std::ranges::generate(limits, [&] { return isSane ? input.positive() : input.any(); });
    }

    /// Calls the filter's setters with the limits, in their order.
    template <typename Filter>
    void limit(Filter& filter,
               std::type_identity_t<std::initializer_list<void (Filter::*)(double)>> setters) const {
        const double* value = limits;
        for (const auto setter : setters) {
            (filter.*setter)(*value++);
        }
    }

    /// Asks the filter, and checks what comes of it.
    template <typename Result>
    void ask(auto& filter, NqFuzzInput& input, const Result& before, auto calculate) const {
        filter.setFilteringMode(input.below(isSane ? 3 : 5));
        filter.setExponent(isSane ? input.positive() : input.any());
        filter.setSpeedFactor(isSane ? input.positive() : input.any());
        filter.setFilteringActive(isSane || input.flag());
        Result result = Result();
        const bool isDone = calculate(result);
        nqHolds(isDone || filter.filteringMode() > 2, "a filter knows its modes");
        nqHolds(isDone || (result == Result() && nqLinesPrinted() > 0), "a refused call leaves its output");
        nqHolds(!isSane || isWithin(result, filter.speedFactor() * limits[0], before),
                "a velocity is finite and within its limit");
    }
};

void point(const Call& call, NqFuzzInput& input) {
    using F = NqPointMotionFilter;
    F filter;
    call.limit(filter, {&F::setThreshold, &F::setAccelerationThreshold, &F::setDecelerationThreshold,
                        &F::setLinearGain});
    const NqVector &desired = call.desired.linear(), &before = call.previous.linear();
    call.ask(filter, input, before, [&](NqVector& result) {
        return filter.calculate3DVelocity(call.from.translation(), call.to.translation(), desired, before,
                                          call.timeStep, result);
    });
    call.ask(filter, input, before, [&](NqVector& result) {
        return filter.filter3DVelocity(desired, before, call.timeStep, result);
    });
}

void scalar(const Call& call, NqFuzzInput& input) {
    using F = NqScalarMotionFilter;
    F filter;
    call.limit(filter,
               {&F::setThreshold, &F::setAccelerationThreshold, &F::setDecelerationThreshold, &F::setGain});
    call.ask(filter, input, call.previous[0], [&](double& result) {
        return filter.calculateVelocity(call.from.translation().x(), call.to.translation().x(),
                                        call.desired[0], call.previous[0], call.timeStep, result);
    });
}

void limitTurns(const Call& call, auto& filter) {
    using F = std::remove_reference_t<decltype(filter)>;
    call.limit(filter, {&F::setAngularVelocityThreshold, &F::setAngularAccelerationThreshold,
                        &F::setAngularDecelerationThreshold, &F::setAngularGain});
}

void rotation(const Call& call, NqFuzzInput& input) {
    NqRotationMotionFilter filter;
    limitTurns(call, filter);
    const bool isAxisOnly = input.flag();
    const NqVector &desired = call.desired.angular(), &before = call.previous.angular();
    call.ask(filter, input, before, [&](NqVector& result) {
        return filter.calculateRotationMotion(call.from.orientation(), call.to.orientation(), desired, before,
                                              call.timeStep, result, isAxisOnly, true);
    });
}

void general(const Call& call, NqFuzzInput& input) {
    using F = NqGeneralMotionFilter;
    F filter;
    call.limit(filter, {&F::setLinearVelocityThreshold, &F::setLinearAccelerationThreshold,
                        &F::setLinearDecelerationThreshold, &F::setLinearGain});
    limitTurns(call, filter);
    filter.setOffset(input.vector(call.isSane));
    const bool matchesTimes = input.flag(), isAxisOnly = input.flag();
    call.ask(filter, input, call.previous, [&](NqGeneralMotion& result) {
        return filter.calculateGeneralMotion(call.from, call.to, call.desired, call.previous, call.timeStep,
                                             result, matchesTimes, isAxisOnly, true);
    });
}

void acceleration(const Call& call, NqFuzzInput& input) {
    using F = NqGeneralMotionAccFilter;
    F filter;
    call.limit(filter, {&F::setThreshold, &F::setAngularWeight, &F::setLinearGain, &F::setAngularGain});
    filter.setOffset(input.vector(call.isSane));
    NqGeneralMotion result;
    filter.calculateGeneralAccMotion(call.from, call.to, call.desired, call.timeStep, result);
    nqHolds(!call.isSane || (isFinite(result.linear()) && isFinite(result.angular())),
            "an acceleration is finite");
}

void profileTool(const Call& call, NqFuzzInput& input) {
    NqTrapezoidalProfileTool tool;
    const double initial =
        call.isSane ? std::clamp(input.sane(), -call.limits[1], call.limits[1]) : input.any();
    const bool isSet = tool.setParameters(call.limits[0], call.limits[1], initial);
    nqHolds(isSet == !(call.limits[0] <= 0.0 || call.limits[1] <= 0.0), "limits of 0 or less are refused");
    const double distance = input.number(call.isSane);
    double least = 0.0;
    nqHolds(tool.computeMinimumTime(distance, least), "there is a least time");
    nqHolds(!call.isSane || (std::isfinite(least) && least >= 0.0), "the least time is one");
    const double untouched = -3.25;
    double velocity = untouched;
    const double time = call.isSane ? least * (1.0 + input.positive()) : input.any();
    const bool isFound = tool.computeProfileVelocity(distance, time, velocity);
    nqHolds(isFound || velocity == untouched, "a refused time leaves the velocity");
    nqHolds(!call.isSane || !isFound || std::fabs(velocity) <= call.limits[1] * (1.0 + 1.0e-9),
            "a profile keeps within its limit");
}

} // namespace

/// Filters and the profile tool: with ordinary numbers results are finite and within limits, with any numbers
/// nothing breaks.
void nqFuzzFilter(NqFuzzInput& input) {
    constexpr void (*kinds[])(const Call&, NqFuzzInput&) = {point,   scalar,       rotation,
                                                            general, acceleration, profileTool};
    const unsigned kind = input.below(std::size(kinds));
    const Call call(input);
    kinds[kind](call, input);
}
