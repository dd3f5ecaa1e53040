#include "filter/NqFilterTesting.h"

namespace {

using Filter = NqPointMotionFilter;

NqVector velocityIn3D(const Filter& filter, const NqVector& error, const NqVector& desired,
                      const NqVector& previous, double step) {
    NqVector out;
    EXPECT_TRUE(filter.calculate3DVelocity({}, error, desired, previous, step, out));
    return out;
}

NqPlanarVector velocityIn2D(const Filter& filter, const NqPlanarVector& error, const NqPlanarVector& desired,
                            const NqPlanarVector& previous, double step) {
    NqPlanarVector out;
    EXPECT_TRUE(filter.calculate2DVelocity({}, error, desired, previous, step, out));
    return out;
}

Filter unlimited(unsigned mode) {
    Filter filter = Filter::nullObject();
    filter.setFilteringMode(mode);
    filter.setLinearGain(200.0);
    return filter;
}

TEST(NqPointMotionFilter, TrapezoidalSpeedIsThatOfConstantDeceleration) {
    Filter filter = unlimited(Filter::Trapezoidal);
    filter.setAccelerationThreshold(2.0);
    filter.setDecelerationThreshold(5.0); // the smaller of the two shapes the approach
    const NqVector out = velocityIn3D(filter, {0.0, 0.3, 0.4}, {}, {0.0, 0.8, 1.1}, 0.1);
    EXPECT_NEAR(out.mag(), std::sqrt(2.0 * 2.0 * 0.5), 1e-15);
    filter.setDecelerationThreshold(1.0);
    EXPECT_NEAR(velocityIn3D(filter, {0.0, 0.3, 0.4}, {}, {0.0, 0.6, 0.8}, 0.1).mag(), 1.0, 1e-15);
    // Close by, one step is not passed: 1e-4 m within 0.1 s.
    EXPECT_DOUBLE_EQ(velocityIn3D(filter, {1e-4, 0.0, 0.0}, {}, {}, 0.1).x(), 1e-3);
    EXPECT_EQ(velocityIn3D(filter, {}, {}, {0.1, 0.0, 0.0}, 0.1), NqVector());
}

TEST(NqPointMotionFilter, ThreeHalvesTakesExponentAndFeedForwardByDimension) {
    Filter filter = unlimited(Filter::ThreeHalves);
    filter.setAccelerationThreshold(8.0);
    filter.setDecelerationThreshold(8.0);
    filter.setThreshold(4.0);
    const double d = 0.01;
    const auto speed = [&](double n) {
        const double k = (n + 1.0) * 8.0 / std::pow(4.0, 1.0 - n);
        return std::pow(k / std::pow(d, n), 1.0 / (n + 1.0)) * d;
    };
    filter.setExponent(0.75);
    const double w = 0.01, previous3D = speed(0.75) + 2.0 * w, previous2D = speed(0.5) + w;
    EXPECT_NEAR(velocityIn3D(filter, {d, 0, 0}, {w, 0, 0}, {previous3D, 0, 0}, 1e-3).x(), previous3D, 1e-14);
    EXPECT_NEAR(velocityIn2D(filter, {d, 0}, {w, 0}, {previous2D, 0}, 1e-3).x(), previous2D, 1e-14);
}

TEST(NqPointMotionFilter, LimitsShortenWithoutTurning) {
    Filter filter;
    filter.setThreshold(2.0);
    filter.setAccelerationThreshold(10.0);
    filter.setSpeedFactor(0.5);
    NqVector out;
    const NqVector fast(3.0, 0.0, 4.0);
    ASSERT_TRUE(filter.filter3DVelocity(fast, {0.6, 0.0, 0.8}, 0.1, out));
    EXPECT_NEAR((out - NqVector(0.6, 0.0, 0.8)).mag(), 0.0, 1e-15);
    ASSERT_TRUE(
        filter.filter3DVelocity(fast, {}, 0.1, out)); // 1 m/s asked for, 0.5 m/s allowed within the step
    EXPECT_NEAR((out - NqVector(0.3, 0.0, 0.4)).mag(), 0.0, 1e-15);
    NqPlanarVector planar;
    ASSERT_TRUE(filter.filter2DVelocity({3.0, 4.0}, {}, 0.1, planar));
    EXPECT_NEAR((planar - NqPlanarVector(0.3, 0.4)).mag(), 0.0, 1e-15);
    ASSERT_TRUE(filter.filter2DVelocity({3.0, 4.0}, {0.6, 0.8}, 0.1, planar));
    EXPECT_NEAR((planar - NqPlanarVector(0.6, 0.8)).mag(), 0.0, 1e-15);
    ASSERT_TRUE(filter.filter3DVelocity(fast, {1.0, 0.0, 0.0}, 0.0, out)); // no time, no change
    EXPECT_NEAR((out - NqVector(1.0, 0.0, 0.0)).mag(), 0.0, 1e-140);
}

} // namespace
