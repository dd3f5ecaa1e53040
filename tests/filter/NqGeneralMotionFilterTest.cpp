#include "filter/NqFilterTesting.h"

namespace {

using Filter = NqGeneralMotionFilter;

TEST(NqGeneralMotionFilter, LimitsActOnTheOffsetPointPartByPart) {
    Filter filter;
    filter.setLinearVelocityThreshold(1e9);
    filter.setAngularVelocityThreshold(1e9);
    filter.setLinearAccelerationThreshold(1e15);
    filter.setAngularAccelerationThreshold(1e15);
    filter.setOffset({0.4, -0.3, 0.2});
    NqGeneralMotion out;
    const NqGeneralMotion motion({1.0, -2.0, 3.0}, {-4.0, 5.0, 6.0});
    ASSERT_TRUE(filter.filterVelocity(motion, {}, 0.01, out));
    expectNear(out.linear(), motion.linear(), 1e-14);
    EXPECT_EQ(out.angular(), motion.angular());

    filter.setOffset({1.0, 0.0, 0.0});
    filter.setLinearVelocityThreshold(1.0);
    filter.setSpeedFactor(0.5);
    const NqGeneralMotion spin({}, {0.0, 0.0, 2.0}); // the point moves at 2 along y, and may at 0.5
    ASSERT_TRUE(filter.filterVelocity(spin, spin, 0.01, out));
    expectNear(out.linear(), {0.0, -1.5, 0.0});
    EXPECT_EQ(out.angular(), spin.angular());
    filter.setLinearAccelerationThreshold(20.0); // from rest by 0.1 in a step
    filter.setAngularAccelerationThreshold(30.0);
    ASSERT_TRUE(filter.filterVelocity(spin, {}, 0.01, out));
    expectNear(out.angular(), {0.0, 0.0, 0.15});
    expectNear(out.linear(), {0.0, 0.1 - 0.15, 0.0});
    // The previous motion counts at the offset point too: there it was at rest.
    ASSERT_TRUE(filter.filterVelocity(spin, {{0.0, -2.0, 0.0}, {0.0, 0.0, 2.0}}, 0.01, out));
    expectNear(out.linear(), {0.0, 0.1 - 2.0, 0.0});
}

/// An approach of a user's own, which changes the error that it is given.
struct HalfTheError : Filter {
    double applyFilter(const NqVector&, double, double, double, double, NqVector& result) const override {
        result *= 0.5;
        return 0.0;
    }
};

TEST(NqGeneralMotionFilter, ASubclassBeginsWithTheError) {
    NqGeneralMotion out;
    const NqCoordinateSystemTransformation desired({0.01, 0.0, 0.0}, NqOrientation::aboutZ(0.02));
    EXPECT_TRUE(HalfTheError().calculateGeneralMotion({}, desired, {}, {}, 0.1, out, false, false, true));
    expectNear(out.linear(), {0.005, 0.0, 0.0});
    expectNear(out.angular(), {0.0, 0.0, 0.01}, 1e-6); // the sine
}

TEST(NqGeneralMotionFilter, MatchedTimesSlowDownTheFasterPart) {
    Filter filter;
    const auto speeds = [&](double way, double angle, double feedForward = 0.0) {
        const NqCoordinateSystemTransformation desired({0.0, way, 0.0}, NqOrientation::aboutZ(angle));
        const NqGeneralMotion ahead({0.0, feedForward, 0.0}, {0.0, 0.0, feedForward});
        const NqGeneralMotion previous({0.0, 0.3, 0.0}, {0.0, 0.0, 0.3});
        NqGeneralMotion out;
        EXPECT_TRUE(filter.calculateGeneralMotion({}, desired, ahead, previous, 0.1, out, true, false, true));
        return out;
    };
    const auto expectSpeeds = [](const NqGeneralMotion& motion, double linear, double angular) {
        EXPECT_NEAR(motion.linear().y(), linear, 1e-12);
        EXPECT_NEAR(motion.angular().z(), angular, 1e-12);
    };
    for (unsigned mode : {Filter::Proportional, Filter::Trapezoidal, Filter::ThreeHalves}) {
        filter.setFilteringMode(mode);
        filter.setExponent(0.5);
        expectSpeeds(speeds(0.3, 0.9), 1.0 / 3.0, 1.0);
        expectSpeeds(speeds(0.9, 0.3), 1.0, 1.0 / 3.0);
        // Squared times within 1e-6 count as equal.
        EXPECT_NEAR(speeds(0.5, 0.5 + 0.9e-6).linear().y(), 1.0, 1e-14);
        EXPECT_NEAR(speeds(0.5, 0.5 + 1.1e-6).linear().y(), 1.0 - 2.2e-6, 1e-9);
        EXPECT_NEAR(speeds(0.5 + 1.1e-6, 0.5).angular().z(), 1.0 - 2.2e-6, 1e-9);
    }
    filter.setFilteringMode(Filter::Proportional);
    EXPECT_EQ(speeds(0.9, 0.0, 0.2).angular().z(),
              0.0); // no error, no limit above 0, not even for feed-forward
    filter.setLinearGain(0.5);
    filter.setAngularGain(0.5);
    expectSpeeds(speeds(0.3, 0.9), 0.5 / 3.0 * 0.3, 0.5 * 0.9);
}

TEST(NqGeneralMotionFilter, KeepsOldFieldsWithoutWritingThem) {
    Filter filter;
    ASSERT_TRUE(NqXmlDocument::readString(
        "<generalMotionFilter xmlns=\"http://nq.example/namespace/ct#\"><linearGain>30</linearGain>"
        "<angularWeight>0.25</angularWeight><threshold>7</threshold></generalMotionFilter>",
        filter));
    EXPECT_TRUE(filter.angularWeight() == 0.25 && filter.threshold() == 7.0 && filter.linearGain() == 30.0);
    const std::string document = nqWritten(filter);
    EXPECT_EQ(document.find("angularWeight"), std::string::npos);
    EXPECT_EQ(document.find("<threshold>"), std::string::npos);
    Filter other = filter;
    other.setThreshold(8.0);
    EXPECT_FALSE(other == filter);
}

} // namespace
