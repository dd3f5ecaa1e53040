#include <matrix/NqArrayTesting.h>

#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/foundation/manipulator/NqJacobianState.h>

namespace {

using Numbers = std::vector<double>;
using Indices = std::vector<unsigned int>;

struct Outcome {
    bool success = false;
    Numbers rates, nullRates;
    double determinant = 0.0;
};

struct Problem {
    unsigned n, m;
    NqReArray jacobian, metric;
    Numbers gradient, velocity;
    double alpha = 0.7;

    /// Well-conditioned, with a positive definite metric.
    Problem(NqRandom& random, unsigned joints, unsigned constraints, bool isDiagonal = false)
        : n(joints), m(constraints), jacobian(nqRandomArray(random, m, n)),
          gradient(nqRandomVector(random, n)), velocity(nqRandomVector(random, m)) {
        for (unsigned i = 0; i < m; ++i) {
            jacobian[i][(3 * i) % n] += std::copysign(static_cast<double>(n) / 3.0 + 1.0, nqUniform(random));
        }
        NqReArray unit;
        unit.setToIdentity(n, n);
        nqRandomArray(random, n, n).underconstrainedNormal(metric);
        metric += unit;
        for (unsigned i = 0; i < n && isDiagonal; ++i) {
            metric[i].assign(1, metric[i][i]);
        }
    }

    Outcome solve(NqCoreVelocityControlTool& tool, NqJacobianState* state = nullptr,
                  Outcome outcome = {}) const {
        outcome.success = tool.calcJointRates(state, jacobian, metric, gradient, alpha, velocity, n,
                                              outcome.rates, outcome.nullRates, outcome.determinant);
        return outcome;
    }

    Outcome solveAB(NqCoreVelocityControlTool& tool, NqJacobianState* state, const NqReArray& bRows,
                    const Numbers& nullGradient, Outcome outcome = {}) const {
        outcome.success = tool.calcJointRatesAB(state, bRows, nullGradient, alpha, velocity, n, outcome.rates,
                                                outcome.nullRates, outcome.determinant);
        return outcome;
    }
};

/// The n by n system, plainly stacked.
struct Stacked {
    NqReArray rows;
    Numbers rightHandSide;

    Stacked(const Problem& problem, const NqReArray& nullSpace, bool isWeighted)
        : rows(problem.jacobian), rightHandSide(problem.velocity) {
        const unsigned n = problem.n;
        const NqReArray& metric = problem.metric;
        rows.resizeArray(n, n);
        for (unsigned i = 0; i < n - problem.m; ++i) {
            Numbers direction;
            nullSpace.getColumn(i, direction);
            for (unsigned j = 0; j < n; ++j) {
                double weighted = 0.0;
                for (unsigned k = 0; k < std::min(n, metric.columns()) && j < metric.rows(); ++k) {
                    weighted += direction[metric.columns() == 1 ? j : k] * metric[j][k];
                }
                rows[problem.m + i][j] = isWeighted ? weighted : direction[j];
            }
            rightHandSide.push_back(
                -(problem.alpha * std::inner_product(problem.gradient.begin(), problem.gradient.end(),
                                                     direction.begin(), 0.0)));
        }
    }
};

/// The stacked solve element by element, as a textbook has it: `a` holds the factored upper rows and the
/// plain lower ones in the caller's column order, `pivots` the interchanges of the upper rows.
Outcome byTheBook(NqReArray a, Indices pivots, Numbers rightHandSide, unsigned m, bool lastWins) {
    const auto n = static_cast<unsigned>(a.size());
    const auto swapColumns = [&](unsigned c, unsigned p, unsigned begin) {
        for (unsigned r = begin; r < n; ++r) {
            std::swap(a[r][c], a[r][p]);
        }
    };
    const auto reduce = [&](unsigned r, unsigned column, unsigned terms) {
        for (unsigned k = 0; k < terms; ++k) {
            a[r][column] -= a[k][column] * a[r][k];
        }
    };
    for (unsigned i = 0; i < n; ++i) {
        swapColumns(i, pivots[i], m);
    }
    unsigned p = 0;
    for (unsigned c = 0; c < n; ++c) {
        double best = 0.0;
        for (unsigned j = c; j < n && c >= m; ++j) {
            reduce(c, j, c);
            const double magnitude = std::fabs(a[c][j]);
            if (lastWins ? magnitude >= best : magnitude > best) {
                best = magnitude;
                p = j;
            }
        }
        if (c >= m) {
            swapColumns(c, p, 0);
            pivots[c] = p;
        }
        for (unsigned r = std::max(c + 1, m); r < n; ++r) {
            reduce(r, c, c);
        }
        a[c][c] = c >= m && a[c][c] == 0.0 ? 1.0e-300 : a[c][c];
        const double reciprocal = 1.0 / a[c][c];
        for (unsigned r = std::max(c + 1, m); r < n; ++r) {
            a[r][c] *= reciprocal;
        }
    }
    const auto solve = [&](Numbers x) {
        for (unsigned i = 0; i < n; ++i) {
            for (unsigned j = 0; j < i; ++j) {
                x[i] -= x[j] * a[i][j];
            }
        }
        for (unsigned i = n; i-- > 0;) {
            double sum = x[i];
            for (unsigned j = i + 1; j < n; ++j) {
                sum -= x[j] * a[i][j];
            }
            x[i] = a[i][i] != 0.0 ? sum / a[i][i] : x[i];
        }
        for (unsigned i = n; i-- > 0;) {
            std::swap(x[i], x[pivots[i]]);
        }
        return x;
    };
    Outcome outcome{true, solve(rightHandSide), {}, 1.0};
    std::fill_n(rightHandSide.begin(), m, 0.0);
    outcome.nullRates = solve(rightHandSide);
    for (unsigned i = 0; i < n; ++i) {
        outcome.determinant *= pivots[i] == i ? a[i][i] : -a[i][i];
    }
    return outcome;
}

void expectSame(const Outcome& outcome, const Outcome& expected) {
    EXPECT_TRUE(outcome.success && nqSameBits(outcome.rates, expected.rates) &&
                nqSameBits(outcome.nullRates, expected.nullRates) &&
                nqSameBits({outcome.determinant}, {expected.determinant}));
}

/// Largest entry of A x - b, against the magnitudes of the terms that it is made of.
double residual(const NqReArray& a, const Numbers& x, const Numbers& b) {
    double worst = 0.0;
    for (unsigned i = 0; i < b.size(); ++i) {
        double sum = -b[i], scale = std::abs(b[i]) + 1e-30;
        for (unsigned j = 0; j < x.size(); ++j) {
            sum += a[i][j] * x[j];
            scale += std::abs(a[i][j] * x[j]);
        }
        worst = std::max(worst, std::abs(sum) / scale);
    }
    return worst;
}

TEST(CoreVelocityControlTool, SolvesTheStackedSystemAsTheTextbookToTheLastBit) {
    NqPrintCapture capture; // of zero columns
    NqRandom random(9);
    NqCoreVelocityControlTool tool;
    for (unsigned round = 0; round < 2000; ++round) {
        SCOPED_TRACE(round);
        const unsigned kind = round % 8;
        const unsigned n = 1 + static_cast<unsigned>(random() % (round % 10 ? 14 : 40)),
                       m = kind == 7 ? 0 : static_cast<unsigned>(random() % (n + 1));
        Problem problem(random, n, m, round % 3 == 0);
        NqReArray& metric = problem.metric;
        for (NqReArray* array : {&problem.jacobian, &metric}) {
            for (unsigned i = 0; i < array->rows() && (kind == 1 || kind == 2); ++i) {
                for (double& entry : (*array)[i]) { // ties, exact cancellation, singular problems
                    entry = std::round(entry);
                }
            }
        }
        if (kind == 2 || kind == 3) { // joints without weight, whole rows of zeros
            metric.resizeArray(static_cast<unsigned>(random() % (n + 3)) + 1, metric.columns());
        } else if (kind == 4) {
            metric[random() % n][0] = round % 2 ? std::nan("") : std::numeric_limits<double>::infinity();
        } else if (kind == 7) { // rows of zeros between others, behind interchanges
            metric = nqRandomArray(random, n, n);
            for (unsigned j = 0; j < n; ++j) {
                for (unsigned i = 0; i < n; ++i) {
                    metric[j][i] = i % 3 == 1 ? 2.0 * metric[j][i - 1] : std::round(3.0 * metric[j][i]);
                }
            }
        } else if (kind == 5) {
            metric.setToZeros(n, n);
            metric[n / 2][n - 1] = 1.0;
        }
        NqJacobianState state;
        state.setJacobian(problem.jacobian);
        NqReArray factored = state.factoredJacobianArray(), nullSpace = state.nullSpaceArray();
        Indices pivots = state.pivotIndices();
        if (m == 0) {
            factored.setToIdentity(n, n);
            nullSpace = factored;
            pivots.resize(n);
            std::iota(pivots.begin(), pivots.end(), 0u);
        }
        tool.setWeightFlag(round % 5 != 0);
        Stacked stacked(problem, nullSpace, tool.weightFlag());
        const Outcome outcome = problem.solve(tool);
        if (kind == 0) { // well-conditioned
            EXPECT_LT(residual(stacked.rows, outcome.rates, stacked.rightHandSide), 1e-11);
            EXPECT_LT(residual(problem.jacobian, outcome.nullRates, Numbers(m)), 1e-12);
            EXPECT_LE(std::inner_product(outcome.nullRates.begin(), outcome.nullRates.end(),
                                         problem.gradient.begin(), 0.0),
                      0.0);
            EXPECT_NEAR(outcome.determinant / stacked.rows.determinant(), 1.0, 1e-9);
        }
        std::copy_n(&factored[0], m, &stacked.rows[0]);
        expectSame(outcome, byTheBook(stacked.rows, pivots, stacked.rightHandSide, m, false));

        NqReArray bRows = nqRandomArray(random, n - m + round % 2, n + round % 3);
        for (unsigned i = 0; i < n - m; ++i) {
            if (kind == 3 || (kind > 3 && i % 3 == 1)) {
                std::fill(bRows[i].begin(), bRows[i].end(),
                          kind == 6 ? std::nan("") : std::round(bRows[i][0]));
            }
            std::copy_n(bRows[i].begin(), n, stacked.rows[m + i].begin());
            stacked.rightHandSide[m + i] = -(problem.gradient[i] * problem.alpha);
        }
        expectSame(problem.solveAB(tool, &state, bRows, problem.gradient),
                   byTheBook(stacked.rows, pivots, stacked.rightHandSide, m, true));
    }
}

TEST(CoreVelocityControlTool, WithoutWeightsRepairsAndReportsZeroColumns) {
    NqRandom random(6);
    NqCoreVelocityControlTool tool;
    Problem problem(random, 3, 0);
    problem.metric = NqReArray();
    NqPrintCapture capture;
    // Each column changes places with the first, whose repaired pivot gets lost.
    const Outcome outcome = problem.solve(tool);
    EXPECT_TRUE(outcome.success && outcome.determinant == 0.0);
    EXPECT_EQ(tool.indices(), (Indices{0, 0, 0}));
    const std::string line = "NqCoreVelocityControlTool::prep(): M.nj has zero column\n";
    EXPECT_EQ(capture.lines(), std::vector(3, std::pair(4u, line)));
}

TEST(CoreVelocityControlTool, WrongSizes) {
    const std::string name = "NqCoreVelocityControlTool::calcJointRates";
    const std::string vector = name + "(): incorrectly dimensioned vector.\n";
    NqRandom random(7);
    const Problem good(random, 5, 3);
    const NqReArray bRows = nqRandomArray(random, 2, 5);
    NqJacobianState state;
    state.setJacobian(good.jacobian);
    NqCoreVelocityControlTool tool;
    const auto attempt = [&](bool ab, std::size_t sizeAfter, const std::string& words, const auto& spoil) {
        Problem problem(good);
        problem.metric = ab ? bRows : good.metric;
        spoil(problem);
        NqPrintCapture capture;
        const Outcome before{false, Numbers(7, 1.0), {1.0}, 5.0};
        const Outcome after = ab ? problem.solveAB(tool, &state, problem.metric, problem.gradient, before)
                                 : problem.solve(tool, &state, before);
        EXPECT_TRUE(!after.success && after.rates == Numbers(sizeAfter, 1.0) &&
                    after.nullRates == before.nullRates && after.determinant == 5.0);
        EXPECT_EQ(capture.text(), words);
    };
    for (const bool ab : {false, true}) {
        const std::string fewJoints = name + "(): n=2 is not greater than or equal to m=3\n";
        attempt(ab, ab ? 7 : 2, fewJoints, [](Problem& p) { p.n = 2; });
        attempt(ab, 7, vector, [ab](Problem& p) { p.gradient.resize(ab ? 1 : 4); });
        attempt(ab, 7, vector, [](Problem& p) { p.velocity.pop_back(); });
        attempt(ab, 7, vector, [](Problem& p) { p.n = 4; });
        attempt(ab, 7, ab ? vector : "", [](Problem& p) { p.metric = NqReArray(); });
    }
    NqPrintCapture capture;
    EXPECT_FALSE(good.solveAB(tool, nullptr, bRows, good.gradient).success);
    EXPECT_EQ(capture.lines().size(), 1u);
}

/// Watches prep and calc, and has its own way with both: a calc that gives 3 times the solution, and preps
/// with other lower rows.
class MeddlingTool : public NqCoreVelocityControlTool {
public:
    NqReArray bRows;
    std::vector<Numbers> rightHandSides;
    unsigned preps = 0;

protected:
    bool prep(NqReArray& matrix, Indices& indices, unsigned m, unsigned n, const NqReArray&) override {
        ++preps;
        indices.resize(m); // none of the others changes places
        return NqCoreVelocityControlTool::prep(matrix, indices, m, n, bRows);
    }
    bool prep(NqJacobianState* state, NqReArray& matrix, Indices& indices, unsigned m, unsigned,
              const NqReArray& metric, NqReArray& nullSpace, NqReArray& weighted) override {
        ++preps;
        return NqCoreVelocityControlTool::prep(state, matrix, indices, m, 0, metric, nullSpace, weighted);
    }
    bool calc(const NqReArray& matrix, const Indices& indices, const Numbers& rightHandSide,
              Numbers& solution, double& determinant) override {
        rightHandSides.push_back(rightHandSide);
        NqCoreVelocityControlTool::calc(matrix, indices, rightHandSide, solution, determinant);
        std::ranges::for_each(solution, [](double& entry) { entry *= 3.0; });
        return true;
    }
};

TEST(CoreVelocityControlTool, SubclassesHaveTheirWay) {
    NqRandom random(4);
    const Problem problem(random, 9, 4);
    NqCoreVelocityControlTool plain;
    plain.setWeightFlag(false);
    NqJacobianState state;
    state.setJacobian(problem.jacobian);
    const NqReArray bRows = nqRandomArray(random, 5, 9);
    for (const bool ab : {false, true}) {
        MeddlingTool tool;
        tool.bRows = bRows;
        Outcome expected =
            ab ? problem.solveAB(plain, &state, bRows, problem.gradient) : problem.solve(plain);
        for (Numbers* rates : {&expected.rates, &expected.nullRates}) {
            std::ranges::for_each(*rates, [](double& rate) { rate *= 3.0; });
        }
        expectSame(ab ? problem.solveAB(tool, &state, -bRows, problem.gradient) : problem.solve(tool),
                   expected);
        ASSERT_TRUE(tool.preps == 1 && tool.rightHandSides.size() == 2);
        Numbers rightHandSide = tool.rightHandSides[0];
        EXPECT_TRUE(std::equal(problem.velocity.begin(), problem.velocity.end(), rightHandSide.begin()));
        std::fill_n(rightHandSide.begin(), 4, 0.0);
        EXPECT_EQ(tool.rightHandSides[1], rightHandSide);
    }
    Outcome both;
    EXPECT_TRUE(plain.calcJointRates(nullptr, problem.jacobian, problem.metric, problem.gradient,
                                     problem.alpha, problem.velocity, 9, both.rates, both.rates,
                                     both.determinant));
    EXPECT_EQ(both.rates, problem.solve(plain).nullRates) << "written last";
    Numbers inPlace = problem.velocity;
    EXPECT_TRUE(plain.calcJointRates(nullptr, problem.jacobian, problem.metric, problem.gradient,
                                     problem.alpha, inPlace, 9, inPlace, both.nullRates, both.determinant));
    EXPECT_EQ(inPlace, problem.solve(plain).rates);
}

TEST(CoreVelocityControlTool, MatricesFromOutsideMayBeRagged) {
    NqRandom random(8);
    const Problem problem(random, 6, 2);
    NqCoreVelocityControlTool plain, tool;
    const Outcome expected = problem.solve(plain);
    for (const unsigned row : {1u, 5u}) {
        NqReArray ragged(6, 6);
        ragged.assign(row, Numbers(5 - row)); // too short, or empty
        tool.setPrimaryMatrix(ragged);
        expectSame(problem.solve(tool), expected);
        EXPECT_EQ(tool.primaryMatrix(), plain.primaryMatrix());
    }
}

/// Limbs, each with constraints of its own, and joints that none moves.
Problem limbs(NqRandom& random, unsigned count, unsigned joints, unsigned constraints, unsigned others) {
    Problem problem(random, count * joints + others, count * constraints, true);
    for (unsigned i = 0; i < problem.m; ++i) {
        for (unsigned j = 0; j < problem.n; ++j) {
            double& entry = problem.jacobian[i][j];
            entry = j / joints == i / constraints ? entry : 0.0;
        }
    }
    return problem;
}

/// Has its steps go through prep and calc, as the steps of any subclass do.
class DerivedTool : public NqCoreVelocityControlTool {};

/// What is known of zeros: nothing, the limbs, less than these, so that it doesn't hold, or that there are
/// none.
class KnownZeros : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(CoreVelocityControlTool, KnownZeros, testing::Range(0, 4));

TEST_P(KnownZeros, ChangeNothing) {
    NqRandom random(30);
    const double infinity = std::numeric_limits<double>::infinity();
    NqCoreVelocityControlTool plainTool, sparseTool;
    DerivedTool derivedTool;
    NqJacobianState state;
    state.setUseSparseNullSpace(true);
    const auto know = [&](const NqReArray& jacobian) {
        std::vector<std::vector<bool>> bits;
        for (unsigned i = 0; GetParam() != 0 && i < jacobian.rows(); ++i) {
            bits.emplace_back();
            for (const double element : jacobian[i]) {
                bits.back().push_back(GetParam() == 3 ||
                                      (element != 0.0 && (GetParam() == 1 || i + 1 < jacobian.rows())));
            }
        }
        EXPECT_TRUE(state.setSparsity(bits));
    };
    using Tool = NqCoreVelocityControlTool;
    const auto expectSameArrays = [&](const Tool& tool) {
        for (const auto array : {&Tool::primaryMatrix, &Tool::nullSpace, &Tool::weightedNullSpace}) {
            const NqReArray& rows = (tool.*array)();
            const NqReArray& expected = (plainTool.*array)();
            EXPECT_EQ(rows.rows(), expected.rows());
            for (unsigned i = 0; i < std::min(rows.rows(), expected.rows()); ++i) {
                EXPECT_TRUE(nqSameValues(rows[i], expected[i])) << i;
            }
        }
    };
    const auto passesOver = [&](const Problem& problem, const std::string& what) {
        SCOPED_TRACE(what + ", " + std::to_string(problem.n) + " joints");
        NqPrintCapture plainPrints;
        const Outcome plain = problem.solve(plainTool);
        NqPrintCapture sparsePrints;
        const Outcome sparse = problem.solve(sparseTool, &state);
        EXPECT_EQ(sparse.success, plain.success);
        EXPECT_TRUE(nqSameValues(sparse.rates, plain.rates) &&
                    nqSameValues(sparse.nullRates, plain.nullRates) &&
                    nqSameValues({sparse.determinant}, {plain.determinant}));
        expectSameArrays(sparseTool);
        if (sparse.success) {
            NqPrintCapture derivedPrints;
            derivedTool.setWeightFlag(sparseTool.weightFlag());
            expectSame(problem.solve(derivedTool, &state), sparse);
            expectSameArrays(derivedTool);
        }
        EXPECT_EQ(sparseTool.indices(), plainTool.indices());
        EXPECT_EQ(sparsePrints.text(), plainPrints.text());
        return nqNegativeZeros(plainTool.nullSpace()) > nqNegativeZeros(sparseTool.nullSpace());
    };
    for (unsigned round = 0; round < 8; ++round) {
        const Problem good = limbs(random, 3 + round % 4, 5 + round % 3, 3 + round % 3, round);
        know(good.jacobian);
        for (const bool isWeighted : {false, true}) {
            sparseTool.setWeightFlag(isWeighted);
            plainTool.setWeightFlag(isWeighted);
            EXPECT_TRUE(passesOver(good, isWeighted ? "weighted" : "without weights"));
        }
        const auto changed = [&](const char* what, const auto& change) {
            Problem problem = good;
            change(problem);
            passesOver(problem, what);
        };
        const unsigned last = good.m - 1;
        changed("full metric", [&](Problem& p) { p.metric = Problem(random, p.n, 1).metric; });
        changed("banded metric", [&](Problem& p) {
            const NqReArray diagonal = p.metric;
            p.metric.setToIdentity(p.n, p.n);
            for (unsigned j = 0; j + 1 < p.n; ++j) {
                p.metric[j][j] = diagonal[j][0];
                p.metric[j + 1][j] = 0.3;
            }
        });
        changed("metric with an empty row", [&](Problem& p) { p.metric[p.n - 1] = {}; });
        changed("small metric", [](Problem& p) { p.metric.resizeArray(p.n - 2, 1); });
        changed("joint without weight", [](Problem& p) { p.metric[p.n - 1][0] = 0.0; });
        changed("doubled row", [&](Problem& p) { p.jacobian[last] = p.jacobian[last - 1]; });
        changed("row of zeros", [&](Problem& p) { p.jacobian[1].assign(p.n, 0.0); });
        const auto transform = [](Numbers& row, const auto& f) {
            std::ranges::transform(row, row.begin(), f);
        };
        changed("signs of zeros", [&](Problem& p) {
            transform(p.jacobian[last], [](double x) { return x == 0.0 ? -0.0 : x; });
        });
        for (unsigned step = 0; step < 6; ++step) { // the pivots of the step before hold, or don't
            changed("moved", [&](Problem& p) {
                for (unsigned i = 0; i < p.m; ++i) {
                    const double bend = step % 3 == 0 ? 2.0 : 1.0e-3;
                    transform(p.jacobian[i], [&](double x) { return x * (1.0 + bend * nqUniform(random)); });
                }
            });
        }
        for (const double first : {1.0, 2.0}) { // rows of the null space that have more than their row of U
            changed("staircase", [&](Problem& p) {
                for (unsigned i = 0; i < p.m; ++i) {
                    p.jacobian[i].assign(p.n, 0.0);
                    p.jacobian[i][i] = first + i;
                    p.jacobian[i][i + 1] = 0.5;
                }
            });
        }
        changed("zeros in a limb", [&](Problem& p) { p.jacobian[0][0] = p.jacobian[1][2] = 0.0; });
        changed("last pivot", [](Problem& p) { p.jacobian[0][4] = 99.0; });
        changed("equal pivots", [&](Problem& p) {
            for (unsigned i = 0; i < p.m; ++i) {
                transform(p.jacobian[i], [](double x) { return x == 0.0 ? 0.0 : std::copysign(1.0, x); });
            }
        });
        for (const unsigned k : {1u, 2u, 2u}) {
            changed("metric with a gap", [&](Problem& p) {
                const NqReArray diagonal = p.metric;
                p.metric.setToIdentity(p.n, p.n);
                p.metric[p.n - 1][p.n - 1 - k] = diagonal[k][0];
                p.metric[k][k] = 0.0;
            });
        }
        changed("nothing", [](Problem&) {});
        changed("one more", [&](Problem& p) { p.jacobian[0][p.n - 1] = 0.7; });
        changed("nothing", [](Problem&) {});
        // Nobody looks at the arrays until something else changes some of them.
        const NqReArray other = nqRandomArray(random, good.n, good.n);
        Problem bent = good;
        for (unsigned i = 0; i < bent.m; ++i) {
            transform(bent.jacobian[i], [&](double x) { return x * (1.0 + 0.3 * nqUniform(random)); });
        }
        const auto meddle = [&](const char* what, const auto& change) {
            passesOver(bent, what);
            SCOPED_TRACE(what);
            NqPrintCapture capture;
            good.solve(plainTool);
            good.solve(sparseTool, &state);
            change(plainTool);
            change(sparseTool);
            expectSameArrays(sparseTool);
            passesOver(good, what);
        };
        meddle("matrix from outside", [&](Tool& tool) { tool.setPrimaryMatrix(other); });
        meddle("rows B", [&](Tool& tool) {
            NqJacobianState full;
            full.setJacobian(good.jacobian);
            good.solveAB(tool, &full, other, good.gradient);
        });
        meddle("copied", [&](Tool& tool) {
            const Tool copy(tool);
            bent.solve(tool, &state);
            tool = copy;
            EXPECT_EQ(tool.primaryMatrix(), copy.primaryMatrix());
        });
        meddle("refused", [&](Tool& tool) {
            Problem unweighted = good;
            unweighted.metric = NqReArray();
            unweighted.solve(tool, &state);
        });
        meddle("resized", [&](Tool& tool) {
            Problem small = good;
            small.n = 2;
            small.solve(tool, &state);
            tool.resize();
        });
        changed("infinite pivot", [&](Problem& p) {
            *std::ranges::max_element(p.jacobian[0], {}, [](double x) { return std::fabs(x); }) = infinity;
        });
        changed("infinite multiplier", [&](Problem& p) {
            p.jacobian[0].assign(p.n, 0.0);
            p.jacobian[0][0] = 1.0e-200;
            p.jacobian[last][0] = 1.0e200;
        });
        for (unsigned j = 0; j < good.n; ++j) {
            changed("infinite gradient", [&](Problem& p) { p.gradient[j] = infinity; });
        }
        for (const double value : {infinity, -infinity, std::nan(""), 1.0e-310, 1.0e200, 1.0e308}) {
            changed("odd value", [&](Problem& p) { p.jacobian[round % p.m][0] = value; });
            changed("odd limb", [&](Problem& p) {
                transform(p.jacobian[last], [value](double x) { return x == 0.0 ? 0.0 : x * value; });
            });
            changed("odd weight", [&](Problem& p) { p.metric[round % p.n][0] = value; });
            changed("odd velocity", [&](Problem& p) { p.velocity[round % p.m] = value; });
            changed("odd gradient", [&](Problem& p) { p.gradient[round % p.n] = value; });
        }
    }
    Problem bound = limbs(random, 3, 6, 6, 0); // only the last limb has freedom
    bound.m = 16;
    bound.jacobian.resizeArray(bound.m, bound.n);
    know(bound.jacobian);
    for (const char* step : {"first", "second"}) {
        passesOver(bound, step);
    }
}

} // namespace
