#pragma once

#include "matrix/NqArrayTesting.h"

#include <nqControlLoop/NqControlLoop.h>

/// What doesn't hold of a step that a loop has made, or has not, from positions and rates; nothing if all
/// does. Without rates accelerations don't count, as where their limits have changed. Joints that were
/// outside their ranges may be.
inline std::string nqFaultOf(const NqControlLoop& loop, bool isMade, const std::vector<double>& positions,
                             const std::vector<double>& rates, double slack) {
    if (!isMade) {
        return nqSameBits(positions, loop.positions()) && loop.status().kind == NqControlLoopStatus::BadInput
                   ? ""
                   : "a step that isn't made moves the joints";
    }
    const auto isFinite = [](double value) { return std::isfinite(value); };
    if (!std::ranges::all_of(loop.positions(), isFinite) || !std::ranges::all_of(loop.rates(), isFinite)) {
        return "a position or a rate is not finite";
    }
    for (unsigned j = 0; j < loop.joints(); ++j) {
        const NqJointDescription& joint = loop.manipulator().linkByIndex(j)->joint();
        const auto isWithin = [&](double position) {
            return position >= joint.lowerPositionLimit() - slack &&
                   position <= joint.upperPositionLimit() + slack;
        };
        if (isWithin(positions[j]) && !isWithin(loop.positions()[j])) {
            return "the range of " + joint.name() + " is left";
        }
        if (std::fabs(loop.rates()[j]) > joint.rateLimit() + slack) {
            return "the rate of " + joint.name() + " is above its limit";
        }
        const double ramp = loop.settings().accelerationTime(),
                     change = joint.rateLimit() * loop.settings().timeStep();
        if (!rates.empty() && std::fabs(loop.rates()[j] - rates[j]) * ramp > change + ramp * 1.0e-9) {
            return "the acceleration of " + joint.name() + " is above its limit";
        }
    }
    return loop.slowing() >= 0.0 && loop.slowing() <= 1.0 ? "" : "the slowing is no share";
}
