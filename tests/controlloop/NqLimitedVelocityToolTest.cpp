#include "controlloop/NqLimitedProblem.h"

#include <nqControlLoop/NqBoundedLeastSquares.h>

namespace {

using Outcome = NqLimitedVelocityTool::Outcome;

/// What the multipliers leave of the gradient of the cost where rates are free to move: 0 at the optimum.
double leftToGain(const NqLimitedProblem& problem, const NqLimitedVelocityTool& tool) {
    const std::size_t n = problem.gradient.size();
    std::vector<double> slope = problem.gradient;
    for (std::size_t j = 0; j < n; ++j) {
        for (std::size_t k = 0; k < n && problem.metric.columns() > 1; ++k) {
            slope[j] += problem.metric[j][k] * tool.rates()[k];
        }
        slope[j] += problem.metric.columns() == 1 ? problem.metric[j][0] * tool.rates()[j] : 0.0;
    }
    for (const NqBoundActiveSet::Hold& hold : tool.holds()) {
        slope[hold.unknown] += hold.multiplier;
    }
    double left = 0.0;
    for (unsigned c = 0; c < tool.nullSpace().columns(); ++c) {
        std::vector<double> direction;
        tool.nullSpace().getColumn(c, direction);
        left = std::max(left,
                        std::abs(std::inner_product(direction.begin(), direction.end(), slope.begin(), 0.0)));
    }
    return left;
}

/// The conditions of an optimum: in the bounds, on the path, multipliers of the right sign, nothing to gain.
TEST(NqLimitedVelocityTool, IsOptimalOnRandomProblems) {
    std::mt19937_64 random(11);
    unsigned outcomes[5] = {};
    for (unsigned trial = 0; trial < 3000; ++trial) {
        const auto n = static_cast<unsigned>(1 + random() % (trial % 10 == 0 ? 44 : 12));
        const auto m = static_cast<unsigned>(random() % (n + 1));
        const NqLimitedProblem problem(random, n, m);
        NqLimitedVelocityTool tool;
        const Outcome outcome = tool.solve(problem.jacobian, problem.metric, problem.gradient,
                                           problem.velocity, problem.lower, problem.upper);
        ++outcomes[static_cast<std::size_t>(outcome)];
        ASSERT_NE(outcome, Outcome::Failed) << trial;
        ASSERT_FALSE(tool.isCapped()) << trial;
        ASSERT_NE(outcome, Outcome::Blocked) << trial << ": rest is always in these bounds";
        for (unsigned j = 0; j < n; ++j) {
            ASSERT_GE(tool.rates()[j], problem.lower[j]) << trial;
            ASSERT_LE(tool.rates()[j], problem.upper[j]) << trial;
        }
        double largest = 1.0; // of what the rates without bounds are made from
        for (const double rate : tool.unlimitedRates()) {
            largest = std::max(largest, std::abs(rate));
        }
        const std::vector<double> made = problem.made(tool.rates());
        for (unsigned i = 0; i < m; ++i) {
            ASSERT_NEAR(made[i], tool.scale() * problem.velocity[i], 1.0e-9 * largest) << trial;
        }
        double greatestMultiplier = 1.0;
        for (const NqBoundActiveSet::Hold& hold : tool.holds()) {
            ASSERT_EQ(tool.rates()[hold.unknown],
                      (hold.isUpper ? problem.upper : problem.lower)[hold.unknown]);
            ASSERT_GE((hold.isUpper ? 1.0 : -1.0) * hold.multiplier, -1.0e-9) << trial;
            greatestMultiplier = std::max(greatestMultiplier, std::abs(hold.multiplier));
        }
        ASSERT_LE(leftToGain(problem, tool), 1.0e-9 * std::max(largest, greatestMultiplier)) << trial;
    }
    EXPECT_GT(outcomes[static_cast<int>(Outcome::Unlimited)], 100u);
    EXPECT_GT(outcomes[static_cast<int>(Outcome::Limited)], 100u);
    EXPECT_GT(outcomes[static_cast<int>(Outcome::Slowed)], 500u);
}

/// Two joints of the same effect: what the one can't do any more the other does, and then all slows down.
TEST(NqLimitedVelocityTool, HandsOverAndThenSlowsDown) {
    NqReArray jacobian, metric;
    jacobian.setToValue(1, 2, 1.0);
    metric.setToValue(2, 1, 1.0);
    NqLimitedVelocityTool tool;
    const auto solved = [&](double velocity, double least) {
        return tool.solve(jacobian, metric, {0.0, 0.0}, {velocity}, {least, -1.0}, {0.25, 1.0});
    };
    EXPECT_EQ(solved(0.4, -1.0), Outcome::Unlimited);
    EXPECT_EQ(solved(1.0, -1.0), Outcome::Limited);
    EXPECT_NEAR(tool.rates()[1], 0.75, 1.0e-15);
    EXPECT_EQ(solved(2.5, -1.0), Outcome::Slowed);
    EXPECT_NEAR(tool.scale(), 0.5, 1.0e-10);
    EXPECT_EQ(tool.rates(), (std::vector<double>{0.25, 1.0}));
    EXPECT_EQ(solved(-1.5, 0.2), Outcome::Slowed) << "the first joint must go on, the second makes up for it";
    EXPECT_NEAR(tool.scale(), 0.8 / 1.5, 1.0e-10);
    EXPECT_EQ(tool.solveAgain(0.1, {0.2, -1.0}, {0.25, 1.0}), Outcome::Limited);
    EXPECT_NEAR(tool.rates()[0] + tool.rates()[1], -0.15, 1.0e-12);
    EXPECT_EQ(tool.solve(jacobian, metric, {0.0, 0.0}, {1.0}, {-1.0, -1.0}, {-0.5, 0.25}), Outcome::Blocked);
}

/// At the least error in a box no rate has anything to gain but by leaving it.
TEST(NqBoundedLeastSquares, HasNothingToGainInTheBounds) {
    std::mt19937_64 random(12);
    for (unsigned trial = 0; trial < 500; ++trial) {
        const auto n = static_cast<unsigned>(1 + random() % 12);
        const auto m = static_cast<unsigned>(1 + random() % 8);
        const NqLimitedProblem problem(random, n, m);
        const std::vector<double> weights(n, 2.0);
        const double damping = 0.05;
        NqBoundedLeastSquares leastSquares;
        leastSquares.prepare(n);
        std::vector<double> rates(n);
        ASSERT_TRUE(leastSquares.solve(problem.jacobian, m, problem.velocity, problem.gradient, weights,
                                       damping, problem.lower, problem.upper, rates));
        const std::vector<double> made = problem.made(rates);
        for (unsigned j = 0; j < n; ++j) {
            double slope = damping * damping * weights[j] * (rates[j] - problem.gradient[j]);
            for (unsigned i = 0; i < m; ++i) {
                slope += problem.jacobian[i][j] * (made[i] - problem.velocity[i]);
            }
            ASSERT_TRUE(std::abs(slope) < 1.0e-9 || (rates[j] == problem.upper[j] && slope < 0.0) ||
                        (rates[j] == problem.lower[j] && slope > 0.0))
                << trial << ": " << slope;
        }
    }
}

TEST(NqLimitedVelocityTool, KnownZerosChangeNothing) {
    std::mt19937_64 random(41);
    constexpr unsigned n = 30, m = 12;
    NqLimitedVelocityTool plain, knowing;
    for (unsigned round = 0; round < 40; ++round) {
        NqLimitedProblem problem(random, n, m); // of six limbs
        std::vector<std::vector<bool>> bits(m, std::vector<bool>(n));
        for (unsigned i = 0; i < m; ++i) {
            for (unsigned j = 0; j < n; ++j) {
                bits[i][j] = i / 2 == j / 5;
                problem.jacobian[i][j] = bits[i][j] ? problem.jacobian[i][j] : 0.0;
            }
        }
        if (round % 2 == 0) {
            problem.lower.assign(n, -1.0e9); // none is met
            problem.upper.assign(n, 1.0e9);
        }
        knowing.setSparsity(bits);
        const auto solve = [&](NqLimitedVelocityTool& tool) {
            const Outcome outcome = tool.solve(problem.jacobian, problem.metric, problem.gradient,
                                               problem.velocity, problem.lower, problem.upper);
            return std::tuple(outcome, tool.leastPivot(), tool.rates(), tool.scale());
        };
        EXPECT_EQ(solve(knowing), solve(plain));
    }
}

} // namespace
