#include "filter/NqFilterTesting.h"

namespace {

using Filter = NqScalarMotionFilter;

double velocityOf(const Filter& filter, double error, double previous, double step, double desired = 0.0) {
    double out = 77.0;
    EXPECT_TRUE(filter.calculateVelocity(1.0, 1.0 + error, desired, previous, step, out));
    return out;
}

TEST(NqScalarMotionFilter, ChangeIsFreeBelowTwiceTheThresholdOfTheMode) {
    Filter filter;
    filter.setThreshold(4.0);
    filter.setAccelerationThreshold(8.0);
    filter.setDecelerationThreshold(8.0);
    const double h = 0.01; // 2 a h = 0.16
    const auto wayTo = [](double speed) { return speed * speed / (2.0 * 8.0); };
    EXPECT_NEAR(velocityOf(filter, wayTo(0.159), 0.0, h), wayTo(0.159) / h, 1e-14); // one step
    EXPECT_NEAR(velocityOf(filter, wayTo(0.161), 0.0, h), 0.08, 1e-14);
    EXPECT_NEAR(velocityOf(filter, -wayTo(0.161), 0.0, h), -0.08, 1e-14);

    // Three halves: k = 1.5 x 8 / sqrt(4) = 6, and 2 (k h)^2 = 0.0072; the speed is (k d)^(2 / 3).
    filter.setFilteringMode(Filter::ThreeHalves);
    const auto wayOfThreeHalves = [](double speed) { return std::pow(speed, 1.5) / 6.0; };
    for (const double exponent : {0.0, 0.5, 0.9}) { // which nobody looks at
        filter.setExponent(exponent);
        EXPECT_NEAR(velocityOf(filter, wayOfThreeHalves(0.0071), 1.0, h), 0.0071, 1e-14);
        EXPECT_NEAR(velocityOf(filter, wayOfThreeHalves(0.0073), 1.0, h), 0.92, 1e-14);
    }
    double out = 0.0;
    ASSERT_TRUE(filter.filterVelocity(0.001, 1.0, h, out)); // here no speed is slow
    EXPECT_NEAR(out, 0.92, 1e-14);
    ASSERT_TRUE(filter.filterVelocity(-9.0, -4.0, h, out));
    EXPECT_EQ(out, -4.0);
}

} // namespace
