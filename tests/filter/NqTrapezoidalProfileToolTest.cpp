#include <nqControlCore/filter/NqTrapezoidalProfileTool.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

namespace {

using Tool = NqTrapezoidalProfileTool;

double minimumTime(const Tool& tool, double distance) {
    double time = -1.0;
    EXPECT_TRUE(tool.computeMinimumTime(distance, time));
    return time;
}

/// Time and signed way of a sequence of constant accelerations and cruises.
struct Course {
    double acceleration;
    double velocity;
    double time = 0.0;
    double way = 0.0;

    void changeTo(double next) {
        const double duration = std::abs(next - velocity) / acceleration;
        time += duration;
        way += duration * (velocity + next) / 2.0;
        velocity = next;
    }
    void cruise(double duration) {
        time += duration;
        way += duration * velocity;
    }
};

/// A move from a start velocity over a distance to rest.
struct Move {
    double acceleration;
    double maxVelocity;
    double start;
    double distance;

    /// Direction of the cruise: that of what remains where the coordinate would stop.
    double direction() const {
        Course stop{acceleration, start};
        stop.changeTo(0.0);
        return stop.way > distance || (stop.way == distance && start > 0.0) ? -1.0 : 1.0;
    }

    /// Time of the move that cruises at this velocity, negative where its changes of velocity alone go too
    /// far.
    double timeAt(double cruise) const {
        Course course{acceleration, start};
        course.changeTo(cruise);
        course.changeTo(0.0);
        const double duration = (distance - course.way) / cruise;
        return duration < 0.0 ? -1.0 : course.time + duration;
    }

    /// The fastest cruise velocity that doesn't go too far.
    double fastest() const {
        if (timeAt(direction() * maxVelocity) >= 0.0) {
            return direction() * maxVelocity;
        }
        double low = 0.0;
        double high = maxVelocity;
        for (unsigned i = 0; i < 60; ++i) {
            const double middle = (low + high) / 2.0;
            (timeAt(direction() * middle) >= 0.0 ? low : high) = middle;
        }
        return direction() * low;
    }

    /// 0 to 4: passes its target and turns, peak and cruise towards it, peak and cruise after turning first.
    unsigned kind() const {
        const unsigned cruises = std::abs(fastest()) == maxVelocity ? 1 : 0;
        if (start * distance >= 0.0) {
            return start != 0.0 && direction() * start < 0.0 ? 0 : 1 + cruises;
        }
        return 3 + cruises;
    }
};

class Moves {
public:
    Move next() {
        Move move{std::exp(range(-2.0, 2.0)), std::exp(range(-1.0, 1.0)), 0.0, 0.0};
        if (++m_Count % 10 != 0) {
            move.start = sign() * range(0.1, 1.0) * move.maxVelocity;
        }
        if (m_Count % 10 != 1) {
            move.distance = sign() * std::exp(range(-6.0, 1.0));
        }
        return move;
    }
    double range(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(m_Random);
    }

private:
    double sign() { return range(-1.0, 1.0) < 0.0 ? -1.0 : 1.0; }

    std::mt19937_64 m_Random{11};
    unsigned m_Count = 0;
};

TEST(NqTrapezoidalProfileTool, AgreesWithMovesPutTogetherFromTheirParts) {
    constexpr unsigned count = 10000;
    Moves moves;
    std::array<unsigned, 5> timed{};
    std::array<unsigned, 5> profiled{};
    for (unsigned i = 0; i < count; ++i) {
        SCOPED_TRACE("move " + std::to_string(i));
        const Move move = moves.next();
        const double factor = moves.range(0.3, 3.0);
        Tool tool;
        tool.setSpeedFactor(factor);
        ASSERT_TRUE(tool.setParameters(move.acceleration / factor, move.maxVelocity / factor, move.start));
        const double fastest = move.fastest();
        const unsigned kind = move.kind();
        ++timed.at(kind);

        // The stop before a way back with a cruise doesn't count.
        const double uncounted = kind == 4 ? std::abs(move.start) / move.acceleration : 0.0;
        const double shortest = minimumTime(tool, move.distance);
        ASSERT_NEAR(shortest + uncounted, move.timeAt(fastest), 1e-7 * (1.0 + shortest));
        for (double share = 0.04; share <= 1.0; share += 0.04) { // no cruise makes a faster move
            const double time = move.timeAt(share * fastest);
            ASSERT_TRUE(time < 0.0 || time >= shortest + uncounted - 1e-7) << share;
        }
        double velocity = 77.0;
        const double tooShort = shortest * moves.range(0.2, 0.999) - 2e-6;
        ASSERT_FALSE(tool.computeProfileVelocity(move.distance, tooShort, velocity));
        ASSERT_EQ(velocity, 77.0);

        // The tool's equation is for moves that speed up to their cruise: any after turning first, and those
        // towards the target that cruise no slower than they start. At the very minimum of time rounding
        // decides.
        const double slowest = move.direction() * move.start > 0.0 ? move.start / fastest : 0.02;
        const double share = 0.97 * moves.range(slowest, 1.0);
        if ((kind == 0 && move.distance != 0.0) || share < slowest) {
            continue;
        }
        ++profiled.at(kind);
        const double goal = move.timeAt(share * fastest);
        ASSERT_TRUE(tool.computeProfileVelocity(move.distance, goal, velocity));
        ASSERT_LE(std::abs(velocity), move.maxVelocity);
        Course course{move.acceleration, move.start};
        course.changeTo(velocity);
        const double stopTime = std::abs(velocity) / move.acceleration;
        ASSERT_GE(goal - course.time, stopTime);
        course.cruise(goal - course.time - stopTime);
        course.changeTo(0.0);
        ASSERT_NEAR(course.time, goal, 1e-12 * (1.0 + goal));
        ASSERT_NEAR(course.way, move.distance, 1e-9 / move.acceleration);
    }
    for (unsigned kind = 0; kind < timed.size(); ++kind) {
        EXPECT_GT(timed[kind], count / 20);
        EXPECT_GT(profiled[kind], count / 50);
    }
}

TEST(NqTrapezoidalProfileTool, BranchesMeetWhereTheirConditionsAreEqual) {
    const auto timeOf = [](double maxVelocity, double start, double distance) {
        Tool tool;
        EXPECT_TRUE(tool.setParameters(1.0, maxVelocity, start));
        return minimumTime(tool, distance);
    };
    EXPECT_EQ(timeOf(1.0, 0.0, 0.0), 0.0);
    EXPECT_DOUBLE_EQ(timeOf(1.0, 0.0, 1.0), 2.0); // just touches the limit
    EXPECT_DOUBLE_EQ(timeOf(1.0, 0.0, -3.0), 4.0);
    EXPECT_DOUBLE_EQ(timeOf(4.0, 2.0, 2.0), 2.0); // the stop alone reaches the target
    EXPECT_DOUBLE_EQ(timeOf(4.0, 2.0, 1.0), 4.0); // and here it passes it
    EXPECT_DOUBLE_EQ(timeOf(4.0, -2.0, 0.0), 2.0 + 2.0 * std::sqrt(2.0));
    EXPECT_DOUBLE_EQ(timeOf(1.0, 1.0, -0.5), 3.0); // the way back just touches the limit
    EXPECT_DOUBLE_EQ(timeOf(1.0, -1.0, 1.0), 2.5);
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

    Tool same; // by single setters, and copied with its scaled acceleration unset
    const Tool fresh = same;
    same.setAcceleration(2.0);
    same.setMaxVelocity(3.0);
    same.setInitialVelocity(-0.5);
    same.setSpeedFactor(0.5);
    EXPECT_EQ(minimumTime(same, 5.0), time);
    EXPECT_EQ(minimumTime(fresh, 3.0), 4.0);
    ASSERT_TRUE(same.setParameters(4.0, 6.0, -0.5)); // keeps the speed factor
    same.setSpeedFactor(0.25);
    EXPECT_EQ(minimumTime(same, 5.0), time);
}

} // namespace
