#include "NqFuzzTarget.h"
#include "matrix/NqArrayTesting.h"

#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/foundation/manipulator/NqJacobianState.h>

namespace {

/// A size, mostly as asked for.
unsigned about(NqFuzzInput& input, unsigned size) {
    const unsigned which = input.below(16);
    return which == 0 ? size + 1 : which == 1 && size > 0 ? size - 1 : which == 2 ? 0 : size;
}

/// Limbs, each with rows of its own, or joints with weights of their own: mostly zeros.
NqReArray ofBlocks(NqFuzzInput& input, unsigned rows, unsigned columns, bool isSane) {
    NqReArray taken(rows, columns);
    NqRandom random(input.byte());
    const unsigned width = 1 + input.below(8), height = 1 + input.below(4);
    const bool isEven = input.flag();
    for (unsigned i = 0; i < rows; ++i) {
        for (unsigned j = i / height * width; j < std::min((i / height + 1) * width, columns); ++j) {
            taken[i][j] = isEven ? std::copysign(1.0, nqUniform(random)) : nqUniform(random);
        }
    }
    for (unsigned edits = rows * columns > 0 ? input.below(4) : 0; edits > 0; --edits) {
        const unsigned i = input.below(rows);
        taken[i][input.below(columns)] = input.number(isSane);
    }
    return taken;
}

struct Answer {
    bool isGood = false;
    std::vector<double> rates{7.0, 8.0, 9.0}, nullSpaceRates{4.0, 5.0};
    double determinant = 6.0;
};

/// J x = v to rounding, where no pivot is next to nothing.
void checkSolution(const NqCoreVelocityControlTool& tool, const NqReArray& jacobian,
                   const std::vector<double>& velocity, const std::vector<double>& rates) {
    const NqReArray& factors = tool.primaryMatrix();
    for (unsigned i = 0; i < factors.size(); ++i) {
        if (!(std::fabs(factors[i][i]) > 1.0e-9) || !std::isfinite(rates[i])) {
            return;
        }
    }
    double largest = 0.0, row = 0.0; // of the rates, and of the rows
    for (unsigned i = 0; i < factors.size(); ++i) {
        largest = std::fmax(largest, std::fabs(rates[i]));
        for (unsigned k = 0; k < jacobian.size(); ++k) {
            row = std::fmax(row, std::fabs(jacobian[k][i]));
        }
    }
    for (unsigned i = 0; i < jacobian.size(); ++i) {
        double made = 0.0;
        for (unsigned j = 0; j < factors.size(); ++j) {
            made += jacobian[i][j] * rates[j];
        }
        nqHolds(std::fabs(made - velocity[i]) <= 1.0e-9 * (row * largest + std::fabs(velocity[i])),
                "the rates give the velocity");
    }
}

void solve(NqCoreVelocityControlTool& tool, NqJacobianState& state, NqFuzzInput& input) {
    const bool isSane = input.flag();
    const unsigned size = input.byte();
    const bool isLarge = size >= 160;
    const unsigned n = isLarge ? 12 + size % 16 : size % 10, m = input.below(n + 2), rows = about(input, m);
    const auto matrix = [&](unsigned height, unsigned width) {
        return isLarge ? ofBlocks(input, height, width, isSane) : input.matrix(height, width, isSane);
    };
    const NqReArray jacobian = matrix(rows, about(input, n));
    const unsigned metricColumns = input.flag() ? 1 : about(input, n);
    const NqReArray metric = matrix(about(input, n), metricColumns);
    const std::vector<double> gradient = input.numbers(about(input, n), isSane);
    const std::vector<double> velocity = input.numbers(about(input, m), isSane);
    const double alpha = input.number(isSane);
    const bool isSparse = input.flag(), isFactored = input.flag();
    tool.setWeightFlag(input.flag());
    state.setUseSparseNullSpace(isSparse);
    if (isSparse) {
        std::vector<std::vector<bool>> bits(jacobian.size());
        for (unsigned i = 0; i < bits.size(); ++i) {
            for (unsigned j = 0; j < jacobian[i].size(); ++j) {
                const bool isWrong = size % 8 == 0 && (i + j) % 7 == 0; // in either direction
                bits[i].push_back((jacobian[i][j] != 0.0) != isWrong || (size % 4 == 1 && j % 4 == i % 4));
            }
        }
        state.setSparsity(bits);
    }
    const auto ask = [&](NqCoreVelocityControlTool& solver) {
        Answer a;
        if (isFactored) {
            state.setJacobian(jacobian);
            a.isGood = solver.calcJointRatesAB(&state, metric, gradient, alpha, velocity, n, a.rates,
                                               a.nullSpaceRates, a.determinant);
        } else {
            a.isGood = solver.calcJointRates(isSparse ? &state : nullptr, jacobian, metric, gradient, alpha,
                                             velocity, n, a.rates, a.nullSpaceRates, a.determinant);
        }
        return a;
    };
    const Answer answer = ask(tool);
    const Answer untouched{};
    nqHolds(answer.isGood || (answer.nullSpaceRates == untouched.nullSpaceRates &&
                              answer.determinant == untouched.determinant &&
                              (answer.rates == untouched.rates || jacobian.size() > n)),
            "a refused call leaves its outputs");
    nqHolds(!answer.isGood || (answer.rates.size() >= n && answer.nullSpaceRates.size() >= n),
            "there is a rate for each joint");
    NqCoreVelocityControlTool fresh;
    fresh.setWeightFlag(tool.weightFlag());
    const Answer again = ask(fresh);
    nqHolds(again.isGood == answer.isGood && nqSameBits(again.rates, answer.rates) &&
                nqSameBits(again.nullSpaceRates, answer.nullSpaceRates) &&
                nqSameBits({again.determinant}, {answer.determinant}),
            "nothing depends on calls before");
    for (const auto array : {&NqCoreVelocityControlTool::primaryMatrix, &NqCoreVelocityControlTool::nullSpace,
                             &NqCoreVelocityControlTool::weightedNullSpace}) {
        const NqReArray &used = (tool.*array)(), &unused = (fresh.*array)();
        for (unsigned i = 0; answer.isGood && !isFactored && i < unused.rows(); ++i) {
            nqHolds(nqSameBits(used[i], unused[i]), "nor do the arrays");
        }
    }
    if (isSparse && !isFactored) {
        state.setUseSparseNullSpace(false);
        const Answer dense = ask(fresh);
        nqHolds(dense.isGood == answer.isGood && nqSameValues(dense.rates, answer.rates) &&
                    nqSameValues(dense.nullSpaceRates, answer.nullSpaceRates) &&
                    nqSameValues({dense.determinant}, {answer.determinant}),
                "passing over zeros changes nothing");
    }
    bool isDefinite = metric.size() >= n && metricColumns == 1; // other metrics can make a singular system
    for (unsigned j = 0; isDefinite && j < n; ++j) {
        isDefinite = metric[j][0] > 0.0;
    }
    if (answer.isGood && isSane && isDefinite && !isFactored) {
        checkSolution(tool, jacobian, velocity, answer.rates);
    }
}

} // namespace

/// One solver on problems of any sizes and numbers, one after the other.
void nqFuzzSolver(NqFuzzInput& input) {
    NqCoreVelocityControlTool tool;
    NqJacobianState state;
    for (unsigned problem = 0; problem < 4 && !input.isEmpty(); ++problem) {
        solve(tool, state, input);
    }
}
