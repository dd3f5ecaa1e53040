#pragma once

#include "support/NqTesting.h"

#include <nqControlLoop/NqLimitedVelocityTool.h>

/// A random problem for the limited solver: rows of full rank, a positive definite metric, bounds of the
/// sizes that the rates have, and a velocity that some rates in the bounds give.
struct NqLimitedProblem {
    NqReArray jacobian, metric;
    std::vector<double> gradient, velocity, lower, upper;

    NqLimitedProblem(std::mt19937_64& random, unsigned n, unsigned m) {
        const auto drawn = [&](double least, double greatest) { return nqDrawn(random, least, greatest); };
        jacobian.setToZeros(m, n);
        const bool isFull = random() % 2 == 0;
        metric.setToZeros(n, isFull ? n : 1);
        const double width = std::exp(drawn(-2.0, 1.5));
        for (unsigned j = 0; j < n; ++j) {
            gradient.push_back(drawn(-1.0, 1.0));
            lower.push_back(-width * drawn(0.0, 1.0));
            upper.push_back(width * drawn(0.0, 1.0));
            metric[j][isFull ? j : 0] = drawn(0.5, 2.0);
            for (unsigned k = 0; isFull && k < j; ++k) {
                metric[j][k] = metric[k][j] = drawn(-0.4, 0.4) / n;
            }
        }
        for (unsigned i = 0; i < m; ++i) {
            for (unsigned j = 0; j < n; ++j) {
                jacobian[i][j] = drawn(-1.0, 1.0);
            }
            velocity.push_back(drawn(-1.0, 1.0));
        }
    }

    /// J x for rates.
    std::vector<double> made(const std::vector<double>& rates) const {
        std::vector<double> made;
        jacobian.transform(rates, made);
        return made;
    }
};
