#include "support/NqTesting.h"

#include <nqControlLoop/NqJointBounds.h>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Whatever rates a joint is asked for, it keeps all of its limits at once, and gets to the end of its range.
TEST(NqJointBounds, KeepEveryLimitUnderAnyCommand) {
    std::mt19937_64 random(3);
    const auto drawn = [&](double least, double greatest) { return nqDrawn(random, least, greatest); };
    for (unsigned trial = 0; trial < 300; ++trial) {
        const double step = std::exp(drawn(std::log(1.0e-4), std::log(0.05)));
        NqJointBounds::Limits limits{-drawn(0.0, 2.0), drawn(0.0, 2.0), drawn(0.1, 4.0), drawn(0.5, 60.0),
                                     trial % 3 == 0 ? kInfinity : drawn(1.0, 50.0)};
        if (trial % 7 == 0) {
            limits.acceleration = kInfinity;
        }
        double position = 0.0, rate = 0.0, wish = 0.0, nearest = kInfinity;
        for (unsigned i = 0; i < 4000; ++i) {
            if (i % 100 == 0) {
                wish = i < 2000 ? drawn(-8.0, 8.0) : 8.0;
            }
            const NqJointBounds bounds(limits, position, rate, step);
            ASSERT_LE(bounds.lower, bounds.upper) << trial;
            const double next = std::clamp(wish, bounds.lower, bounds.upper);
            ASSERT_LE(std::abs(next), limits.rate * (1.0 + 1.0e-12)) << trial;
            ASSERT_LE(std::abs(next - rate), limits.acceleration * step * (1.0 + 1.0e-9) + 1.0e-12) << trial;
            rate = next;
            position += rate * step;
            ASSERT_GE(position, limits.lower - 1.0e-12) << trial;
            ASSERT_LE(position, limits.upper + 1.0e-12) << trial;
            nearest = std::min(nearest, limits.upper - position);
        }
        if (2000.0 * step > 3.0 && std::isinf(limits.approach)) {
            EXPECT_LT(nearest, 1.0e-6) << trial;
        }
    }
}

/// A joint that was measured where it should not be is led back, and one that can't move stays.
TEST(NqJointBounds, LeadBackFromOutside) {
    const NqJointBounds outside({-1.0, 1.0, 2.0, 10.0, 10.0}, 1.2, 0.0, 0.01);
    EXPECT_LT(outside.upper, 0.0);
    EXPECT_LE(outside.lower, outside.upper);
    const NqJointBounds still({-1.0, 1.0, 0.0, 10.0, 10.0}, 0.2, 0.0, 0.01);
    EXPECT_EQ(still.lower, 0.0);
    EXPECT_EQ(still.upper, 0.0);
    EXPECT_NEAR(NqJointBounds::greatestViable(0.06, 1.0, 0.1), 0.3, 1.0e-12) << "0.03 + 0.02 + 0.01";
}

} // namespace
