#include "NqFuzzTarget.h"

#include <nqControlLoop/NqBoundedLeastSquares.h>
#include <nqControlLoop/NqLimitedVelocityTool.h>

namespace {

void holdBetween(const std::vector<double>& x, const std::vector<double>& lower,
                 const std::vector<double>& upper) {
    for (std::size_t j = 0; j < x.size(); ++j) {
        nqHolds(x[j] >= lower[j] && x[j] <= upper[j], "rates are between their bounds");
    }
}

} // namespace

/// The solvers under bounds: with ordinary numbers the rates keep their bounds and go along the velocity,
/// with any numbers both come to an end.
void nqFuzzBounded(NqFuzzInput& input) {
    using Outcome = NqLimitedVelocityTool::Outcome;
    NqLimitedVelocityTool tool;
    NqBoundedLeastSquares leastSquares;
    for (unsigned problem = 0; problem < 4 && !input.isEmpty(); ++problem) {
        const bool isSane = input.flag();
        const unsigned n = 1 + input.below(9), m = input.below(n + 1);
        const NqReArray jacobian = input.matrix(m, n, isSane);
        std::vector<double> weights(n), lower(n), upper(n), rates(n);
        for (unsigned j = 0; j < n; ++j) {
            weights[j] = isSane ? input.positive() : std::fabs(input.any());
            const double one = input.number(isSane), other = input.number(isSane);
            lower[j] = std::fmin(one, other);
            upper[j] = std::fmax(one, other);
        }
        NqReArray metric;
        metric = weights;
        const std::vector<double> gradient = input.numbers(n, isSane), velocity = input.numbers(m, isSane);

        tool.prepare(n, m);
        const Outcome outcome = tool.solve(jacobian, metric, gradient, velocity, lower, upper);
        if (isSane && outcome != Outcome::Failed && outcome != Outcome::Blocked) {
            holdBetween(tool.rates(), lower, upper);
            nqHolds(tool.scale() >= 0.0 && tool.scale() <= 1.0, "the scale is one");
            // Rows that nearly depend on each other leave rounding large.
            for (unsigned i = 0; i < m && tool.leastPivot() > 0.01; ++i) {
                double made = 0.0, size = 1.0;
                for (unsigned j = 0; j < n; ++j) {
                    made += jacobian[i][j] * tool.rates()[j];
                    size += std::fabs(jacobian[i][j] * tool.unlimitedRates()[j]);
                }
                nqHolds(std::fabs(made - tool.scale() * velocity[i]) <= 1.0e-5 * size,
                        "the rates go along the velocity");
            }
        }
        leastSquares.prepare(n);
        leastSquares.solve(jacobian, m, velocity, gradient, weights, 0.05, lower, upper, rates);
        if (isSane) {
            holdBetween(rates, lower, upper);
        }
    }
}
