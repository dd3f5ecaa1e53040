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
        Course run{acceleration, start};
        run.changeTo(cruise);
        run.changeTo(0.0);
        const double duration = (distance - run.way) / cruise;
        return duration < 0.0 ? -1.0 : run.time + duration;
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

/// The tool for a move, with the speed factor taken out of its limits.
Tool toolFor(const Move& move, double factor) {
    Tool tool;
    tool.setSpeedFactor(factor);
    EXPECT_TRUE(tool.setParameters(move.acceleration / factor, move.maxVelocity / factor, move.start));
    return tool;
}

constexpr unsigned kMoves = 10000;

TEST(NqTrapezoidalProfileTool, MinimumTimeIsThatOfTheFastestMove) {
    Moves moves;
    std::array<unsigned, 5> kinds{};
    for (unsigned i = 0; i < kMoves; ++i) {
        const Move move = moves.next();
        const Tool tool = toolFor(move, moves.range(0.3, 3.0));
        ++kinds.at(move.kind());
        // The stop before a way back with a cruise doesn't count.
        const double uncounted = move.kind() == 4 ? std::abs(move.start) / move.acceleration : 0.0;
        const double time = minimumTime(tool, move.distance) + uncounted;
        ASSERT_NEAR(time, move.timeAt(move.fastest()), 1e-7 * (1.0 + time)) << "move " << i;
        for (double share = 0.05; share <= 1.0; share += 0.05) { // no cruise makes a faster one
            const double other = move.timeAt(share * move.fastest());
            ASSERT_TRUE(other < 0.0 || other >= time - 1e-7) << "move " << i << ", share " << share;
        }
    }
    for (const unsigned count : kinds) {
        EXPECT_GT(count, kMoves / 20);
    }
}

TEST(NqTrapezoidalProfileTool, ProfileVelocityMeetsGoalTimeAndDistance) {
    Moves moves;
    std::array<unsigned, 5> kinds{};
    for (unsigned i = 0; i < kMoves; ++i) {
        const Move move = moves.next();
        const Tool tool = toolFor(move, moves.range(0.3, 3.0));
        const double shortest = minimumTime(tool, move.distance);
        double velocity = 77.0;
        const double tooShort = shortest * moves.range(0.2, 0.999) - 2e-6;
        ASSERT_FALSE(tool.computeProfileVelocity(move.distance, tooShort, velocity)) << "move " << i;
        ASSERT_EQ(velocity, 77.0);
        for (double share = 0.04; share <= 1.0; share += 0.04) {
            const double time = move.timeAt(share * move.fastest());
            ASSERT_TRUE(time < 0.0 || time > tooShort) << "move " << i << ", share " << share;
        }

        // The tool's equation is for moves that speed up to their cruise: any after turning first, and those
        // towards the target that cruise no slower than they start.
        const double slowest =
            move.direction() * move.start > 0.0 ? std::abs(move.start / move.fastest()) : 0.02;
        if (move.kind() == 0 && move.distance != 0.0) {
            continue;
        }
        const double share = moves.range(slowest, 1.0) * 0.97;
        if (share < slowest) {
            continue;
        }
        const double goal = move.timeAt(share * move.fastest());
        ASSERT_TRUE(tool.computeProfileVelocity(move.distance, goal, velocity)) << "move " << i;
        ASSERT_LE(std::abs(velocity), move.maxVelocity);
        Course run{move.acceleration, move.start};
        run.changeTo(velocity);
        const double stopTime = std::abs(velocity) / move.acceleration;
        ASSERT_GE(goal - run.time, stopTime);
        run.cruise(goal - run.time - stopTime);
        run.changeTo(0.0);
        ASSERT_NEAR(run.time, goal, 1e-12 * (1.0 + goal));
        ASSERT_NEAR(run.way, move.distance, 1e-9 / move.acceleration) << "move " << i;
        ++kinds.at(move.kind());
    }
    for (const unsigned count : kinds) {
        EXPECT_GT(count, kMoves / 50);
    }
}

/// Acceleration, velocity limit, initial velocity and distance.
struct TimeCase {
    double acceleration, maxVelocity, start, distance, time;
};

TEST(NqTrapezoidalProfileTool, BranchesMeetWhereTheirConditionsAreEqual) {
    for (const TimeCase& given :
         {TimeCase{1.0, 1.0, 0.0, 0.0, 0.0}, // no way, no time
          TimeCase{1.0, 1.0, 0.0, 1.0, 2.0}, // just touches the limit
          TimeCase{1.0, 1.0, 0.0, -3.0, 4.0},
          TimeCase{1.0, 4.0, 2.0, 2.0, 2.0}, // the stop alone reaches the target
          TimeCase{1.0, 4.0, 2.0, 1.0, 4.0}, // and here it passes it
          TimeCase{1.0, 4.0, -2.0, 0.0, 2.0 + 2.0 * std::sqrt(2.0)},
          TimeCase{1.0, 1.0, 1.0, -0.5, 3.0}, // back over exactly what touches the limit
          TimeCase{1.0, 1.0, -1.0, 1.0, 2.5}}) {
        Tool tool;
        ASSERT_TRUE(tool.setParameters(given.acceleration, given.maxVelocity, given.start));
        EXPECT_DOUBLE_EQ(minimumTime(tool, given.distance), given.time)
            << given.start << ' ' << given.distance;
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
    EXPECT_FALSE(tool.computeProfileVelocity(4.0, 4.0 - 1.1e-6, velocity));
    // Within the tolerance of the minimum, but too short for the cruise at the limit.
    tool.setMaxVelocity(1.0);
    EXPECT_TRUE(tool.computeProfileVelocity(3.0, 4.0, velocity));
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
