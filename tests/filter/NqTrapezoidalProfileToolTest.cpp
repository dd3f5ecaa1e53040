#include "support/NqTesting.h"

#include <nqControlCore/filter/NqTrapezoidalProfileTool.h>

namespace {

using Tool = NqTrapezoidalProfileTool;

double minimumTime(const Tool& tool, double distance) {
    double time = -1.0;
    EXPECT_TRUE(tool.computeMinimumTime(distance, time));
    return time;
}

/// A move from a start velocity over a distance to rest, put together from its parts.
struct Move {
    double acceleration, maxVelocity, start, distance;

    double changeTime(double cruise) const {
        return (std::abs(cruise - start) + std::abs(cruise)) / acceleration;
    }
    /// The way of changing to a cruise velocity and of stopping from it, mean velocities times durations.
    double changeWay(double cruise) const {
        return (std::abs(cruise - start) * (start + cruise) + std::abs(cruise) * cruise) /
               (2.0 * acceleration);
    }
    /// Time of the move at a cruise velocity, negative where its changes of velocity alone go too far.
    double timeAt(double cruise) const {
        const double duration = (distance - changeWay(cruise)) / cruise;
        return duration < 0.0 ? -1.0 : changeTime(cruise) + duration;
    }
    /// The fastest cruise velocity that doesn't go too far, in the direction of what remains behind a stop.
    double fastest() const {
        const double remaining = distance - changeWay(0.0);
        const double limit =
            remaining < 0.0 || (remaining == 0.0 && start > 0.0) ? -maxVelocity : maxVelocity;
        if (timeAt(limit) >= 0.0) {
            return limit;
        }
        double low = 0.0, high = 1.0;
        for (unsigned i = 0; i < 60; ++i) {
            const double middle = (low + high) / 2.0;
            (timeAt(middle * limit) >= 0.0 ? low : high) = middle;
        }
        return low * limit;
    }
};

TEST(NqTrapezoidalProfileTool, AgreesWithMovesPutTogetherFromTheirParts) {
    constexpr unsigned count = 10000;
    std::mt19937_64 random(11);
    const auto range = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    const auto sign = [&] { return range(-1.0, 1.0) < 0.0 ? -1.0 : 1.0; };
    // Passing the target and turning, peak and cruise towards it, peak and cruise after turning first.
    std::array<unsigned, 5> timed{}, profiled{};
    for (unsigned i = 0; i < count; ++i) {
        SCOPED_TRACE("move " + std::to_string(i));
        Move move{std::exp(range(-2.0, 2.0)), std::exp(range(-1.0, 1.0)), 0.0, 0.0};
        move.start = i % 10 == 0 ? 0.0 : sign() * range(0.1, 1.0) * move.maxVelocity;
        move.distance = i % 10 == 1 ? 0.0 : sign() * std::exp(range(-6.0, 1.0));
        const double fastest = move.fastest();
        const bool startsTowards = move.start * move.distance >= 0.0, turns = move.start * fastest < 0.0;
        const unsigned cruises = std::abs(fastest) == move.maxVelocity ? 1 : 0;
        const unsigned kind = startsTowards ? (turns ? 0 : 1 + cruises) : 3 + cruises;
        const double factor = range(0.3, 3.0);
        Tool tool;
        tool.setSpeedFactor(factor);
        ASSERT_TRUE(tool.setParameters(move.acceleration / factor, move.maxVelocity / factor, move.start));
        ++timed.at(kind);

        // The stop before a way back with a cruise doesn't count.
        const double uncounted = kind == 4 ? std::abs(move.start) / move.acceleration : 0.0;
        const double shortest = minimumTime(tool, move.distance);
        ASSERT_NEAR(shortest + uncounted, move.timeAt(fastest), 1e-7 * (1.0 + shortest));
        double velocity = 77.0;
        const double tooShort = shortest * range(0.2, 0.999) - 2e-6;
        ASSERT_FALSE(tool.computeProfileVelocity(move.distance, tooShort, velocity));
        ASSERT_EQ(velocity, 77.0);

        // The tool's equation is for moves that speed up to their cruise: any after turning first, and those
        // towards the target that cruise no slower than they start. At the very minimum of time rounding
        // decides.
        const double slowest = std::max(move.start / fastest, 0.02), share = 0.97 * range(slowest, 1.0);
        if ((kind == 0 && move.distance != 0.0) || share < slowest) {
            continue;
        }
        ++profiled.at(kind);
        const double goal = move.timeAt(share * fastest);
        ASSERT_TRUE(tool.computeProfileVelocity(move.distance, goal, velocity));
        ASSERT_LE(std::abs(velocity), move.maxVelocity);
        const double cruiseTime = goal - move.changeTime(velocity);
        ASSERT_GE(cruiseTime, 0.0);
        ASSERT_NEAR(move.changeWay(velocity) + cruiseTime * velocity, move.distance,
                    1e-9 / move.acceleration);
    }
    for (unsigned kind = 0; kind < timed.size(); ++kind) {
        EXPECT_TRUE(timed[kind] > count / 20 && profiled[kind] > count / 50) << kind;
    }
}

TEST(NqTrapezoidalProfileTool, ChoosesTheSlowerProfileAndToleratesAMillionthOfASecond) {
    Tool tool;
    ASSERT_TRUE(tool.setParameters(1.0, 10.0, 0.0));
    double velocity = 0.0;
    // c^2 - 5 c + 4 = 0 has the roots 1 and 4; with 4 the changes of velocity alone would take 8 s.
    ASSERT_TRUE(tool.computeProfileVelocity(-4.0, 5.0, velocity));
    EXPECT_DOUBLE_EQ(velocity, -1.0);
    ASSERT_TRUE(tool.computeProfileVelocity(4.0, 4.0, velocity)); // the minimum, both roots 2
    EXPECT_DOUBLE_EQ(velocity, 2.0);
    ASSERT_TRUE(tool.computeProfileVelocity(4.0, 4.0 - 1e-7, velocity));
    EXPECT_DOUBLE_EQ(velocity, 2.0 - 0.5e-7);
    EXPECT_FALSE(tool.computeProfileVelocity(4.0, 4.0 - 1.1e-6, velocity));
    tool.setMaxVelocity(1.0);
    EXPECT_TRUE(tool.computeProfileVelocity(3.0, 4.0, velocity));
    // Within the tolerance of the minimum, but too short for the cruise at the limit.
    EXPECT_FALSE(tool.computeProfileVelocity(3.0, 4.0 - 0.5e-6, velocity));
    EXPECT_EQ(velocity, 1.0);
}

TEST(NqTrapezoidalProfileTool, RefusesLimitsThatAreNotPositive) {
    Tool tool;
    ASSERT_TRUE(tool.setParameters(2.0, 3.0, -0.5));
    tool.setSpeedFactor(0.5);
    const double time = minimumTime(tool, 5.0);
    tool.setAcceleration(0.0);
    tool.setMaxVelocity(-1.0);
    tool.setSpeedFactor(0.0);
    EXPECT_FALSE(tool.setParameters(0.0, 1.0, 9.0));
    EXPECT_FALSE(tool.setParameters(1.0, -1.0, 9.0));
    EXPECT_EQ(minimumTime(tool, 5.0), time);

    const Tool fresh;
    Tool same; // by single setters
    same.setAcceleration(2.0);
    same.setMaxVelocity(3.0);
    same.setInitialVelocity(-0.5);
    same.setSpeedFactor(0.5);
    EXPECT_EQ(minimumTime(same, 5.0), time);
    EXPECT_EQ(minimumTime(fresh, 3.0), 4.0);
}

} // namespace
