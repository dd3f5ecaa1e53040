#include <nqControlLoop/NqJointBounds.h>

#include <algorithm>
#include <cmath>

namespace {

struct Side {
    double bound;
    NqJointBounds::Cause cause;
};

/// The upper bound; the lower one is that of the mirrored joint.
Side upperSide(double room, double rateLimit, double acceleration, double approach, double rate,
               double timeStep) {
    using Cause = NqJointBounds::Cause;
    const double change = acceleration * timeStep;
    Side side{rateLimit, Cause::Rate};
    // The approach gives way to the limit of acceleration, the end of the range doesn't.
    const double range =
        std::min(NqJointBounds::greatestViable(room, acceleration, timeStep),
                 std::max(std::max(room, 0.0) * std::min(approach, 1.0 / timeStep), rate - change));
    if (range < side.bound) {
        side = {std::max(range, -rateLimit), Cause::Range}; // also on the way back into the range
    }
    if (rate + change < side.bound) {
        side = {rate + change, Cause::Acceleration};
    }
    return side;
}

} // namespace

double NqJointBounds::greatestViable(double room, double acceleration, double timeStep) {
    if (!(room > 0.0)) {
        return std::max(room / timeStep, -acceleration * timeStep); // back into the range
    }
    const double unit = acceleration * timeStep * timeStep; // of a step at the least change of rate
    if (!(unit > 0.0) || !std::isfinite(unit) || room >= 1.0e300) {
        return unit > 0.0 ? room / timeStep : 0.0;
    }
    // Slowing takes `steps` further steps, and with x the rate of this one the joint moves by
    // h (x + (x - a h) + ... + (x - steps a h)).
    const double steps = std::floor(0.5 * (std::sqrt(1.0 + 8.0 * room / unit) - 1.0));
    const double greatest =
        (room / timeStep + 0.5 * acceleration * timeStep * steps * (steps + 1.0)) / (steps + 1.0);
    return std::isfinite(greatest) ? greatest : room / timeStep;
}

double NqJointBounds::lowerOfPlace(const Limits& limits, double position, double timeStep) {
    return -upperOfPlace({-limits.upper, -limits.lower, limits.rate, limits.acceleration, limits.approach},
                         -position, timeStep);
}

double NqJointBounds::upperOfPlace(const Limits& limits, double position, double timeStep) {
    const double room = std::max(limits.upper - position, 0.0);
    return std::min(limits.rate, room * std::min(limits.approach, 1.0 / timeStep));
}

NqJointBounds::NqJointBounds(const Limits& limits, double position, double rate, double timeStep) {
    const Side up =
        upperSide(limits.upper - position, limits.rate, limits.acceleration, limits.approach, rate, timeStep);
    const Side down = upperSide(position - limits.lower, limits.rate, limits.acceleration, limits.approach,
                                -rate, timeStep);
    upper = up.bound;
    lower = -down.bound;
    upperCause = up.cause;
    lowerCause = down.cause;
    if (lower > upper) {
        // A measured state may be where no rate is right: the bound of acceleration gives way.
        if (lowerCause == Cause::Acceleration || (upperCause != Cause::Acceleration && upper >= 0.0)) {
            lower = upper;
        } else {
            upper = lower;
        }
    }
}
