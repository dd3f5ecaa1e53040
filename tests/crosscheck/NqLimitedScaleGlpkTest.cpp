#include "controlloop/NqLimitedProblem.h"

#include <glpk.h>

namespace {

/// The greatest s with J x = s v in the bounds, by the simplex method.
double greatestScale(const NqLimitedProblem& problem) {
    const int m = static_cast<int>(problem.velocity.size()), n = static_cast<int>(problem.lower.size());
    glp_prob* const program = glp_create_prob();
    glp_set_obj_dir(program, GLP_MAX);
    glp_add_cols(program, n + 1);
    for (int j = 0; j < n; ++j) {
        const auto k = static_cast<std::size_t>(j);
        const bool isFixed = problem.lower[k] == problem.upper[k];
        glp_set_col_bnds(program, j + 1, isFixed ? GLP_FX : GLP_DB, problem.lower[k], problem.upper[k]);
    }
    glp_set_col_bnds(program, n + 1, GLP_DB, 0.0, 1.0);
    glp_set_obj_coef(program, n + 1, 1.0);
    if (m > 0) {
        glp_add_rows(program, m);
    }
    std::vector<int> columns(problem.lower.size() + 2);
    std::iota(columns.begin(), columns.end(), 0);
    for (int i = 0; i < m; ++i) {
        std::vector<double> entries = problem.jacobian[static_cast<std::size_t>(i)];
        entries.insert(entries.begin(), 0.0); // which counts from 1
        entries.push_back(-problem.velocity[static_cast<std::size_t>(i)]);
        glp_set_row_bnds(program, i + 1, GLP_FX, 0.0, 0.0);
        glp_set_mat_row(program, i + 1, n + 1, columns.data(), entries.data());
    }
    glp_smcp parameters;
    glp_init_smcp(&parameters);
    parameters.msg_lev = GLP_MSG_ERR;
    EXPECT_EQ(glp_simplex(program, &parameters), 0);
    const double scale = glp_get_obj_val(program);
    glp_delete_prob(program);
    return scale;
}

/// The factor of the solver under bounds against that of the linear program, on 10,000 random problems.
TEST(NqLimitedVelocityTool, SlowsNoMoreThanTheLinearProgram) {
    std::mt19937_64 random(1234);
    unsigned slowed = 0, worse = 0;
    double worst = 0.0;
    for (unsigned trial = 0; trial < 10000; ++trial) {
        const auto n = static_cast<unsigned>(2 + random() % 43);
        const auto m = static_cast<unsigned>(1 + random() % std::min(n, 24u));
        const NqLimitedProblem problem(random, n, m);
        NqLimitedVelocityTool tool;
        const auto outcome = tool.solve(problem.jacobian, problem.metric, problem.gradient, problem.velocity,
                                        problem.lower, problem.upper);
        ASSERT_TRUE(outcome != NqLimitedVelocityTool::Outcome::Failed &&
                    outcome != NqLimitedVelocityTool::Outcome::Blocked)
            << trial;
        const double best = greatestScale(problem);
        ASSERT_LE(tool.scale(), best * (1.0 + 1.0e-6) + 1.0e-9) << trial;
        slowed += best < 1.0;
        worse += tool.scale() < 0.99 * best;
        worst = std::max(worst, best > 0.0 ? 1.0 - tool.scale() / best : 0.0);
    }
    EXPECT_GT(slowed, 1000u);
    EXPECT_LE(worse, 100u) << "of " << slowed << ", the worst by " << worst;
}

} // namespace
