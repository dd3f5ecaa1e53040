#include "NqArrayTesting.h"

#include <nqControlCore/foundation/manipulator/NqJacobianState.h>

namespace {

using Indices = std::vector<unsigned int>;
using Bits = std::vector<std::vector<bool>>;

template <typename Values>
void interchange(Values& values, const Indices& list) {
    for (unsigned i = 0; i < list.size(); ++i) {
        std::swap(values[i], values[list[i]]);
    }
}

class NullSpace : public testing::TestWithParam<std::pair<unsigned, unsigned>> {};

TEST_P(NullSpace, FactorsTheRowsAndSpansWhatTheyLeaveFree) {
    const auto [m, n] = GetParam();
    NqRandom random(17);
    for (unsigned round = 0; round < 20; ++round) {
        const NqReArray jacobian = nqRandomArray(random, m > 0 && round % 2 ? m : n, n);
        NqReArray factored(jacobian), basis;
        Indices indices;
        ASSERT_TRUE(factored.nullSpace(basis, m, indices));
        EXPECT_TRUE(basis.rows() == n && basis.columns() == n - m && indices.size() == n);
        const double scale = jacobian.infinityNorm() * (1.0 + basis.infinityNorm());
        for (unsigned i = 0; i < m; ++i) {
            std::vector<double> row(jacobian[i]), upper;
            for (unsigned t = 0; t < n - m; ++t) {
                basis.getColumn(t, upper);
                EXPECT_NEAR(std::inner_product(row.begin(), row.end(), upper.begin(), 0.0), 0.0,
                            1e-13 * scale);
            }
            interchange(row, indices);
            for (unsigned j = 0; j < n; ++j) {
                double product = j < i ? 0.0 : factored[i][j];
                for (unsigned k = 0; k < i && k <= j; ++k) {
                    product += factored[i][k] * factored[k][j];
                }
                EXPECT_NEAR(product, row[j], 1e-12);
                EXPECT_TRUE(j < i || std::abs(factored[i][j]) <= std::abs(factored[i][i]));
            }
        }
        // The free joints, last in pivoted order, form an identity, so that the columns are independent.
        interchange(basis, indices);
        for (unsigned i = m; i < n; ++i) {
            EXPECT_TRUE(std::count(basis[i].begin(), basis[i].end(), 0.0) + 1 == n - m &&
                        basis[i][i - m] == 1.0);
            EXPECT_TRUE(indices[i] == i && (jacobian.rows() == m || factored[i] == jacobian[i]))
                << "not among the rows of J";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, NullSpace,
                         testing::Values(std::pair(0, 3), std::pair(1, 1), std::pair(1, 4), std::pair(3, 7),
                                         std::pair(6, 7), std::pair(5, 5), std::pair(9, 20),
                                         std::pair(24, 44)));

TEST(NullSpace, TakesTheFirstOfEqualColumnsAndRefusesWhatDoesNotFit) {
    NqReArray array = nqArray({{1.0, -2.0, 2.0}, {2.0, -4.0, 4.0}}), basis;
    Indices indices;
    EXPECT_FALSE(NqReArray(array).nullSpace(basis, 2, indices)) << "rank 1";
    EXPECT_TRUE(array.nullSpace(basis, 1, indices));
    EXPECT_EQ(indices, (Indices{1, 1, 2}));
    const NqReArray expected = nqArray({{1.0, 0.0}, {0.5, 1.0}, {0.0, 1.0}});
    NqPrintCapture capture;
    EXPECT_FALSE(array.nullSpace(basis, 3, indices) || array.nullSpace(array, 1, indices));
    EXPECT_TRUE(array.assign(0, {1.0}));
    EXPECT_FALSE(array.nullSpaceSparse(basis, 2, indices, {0, 0}, {0, 0})) << "rows of different length";
    EXPECT_EQ(basis, expected);
    EXPECT_EQ(capture.lines().size(), 3u);
}

/// Constraints of four branches, with a base that they share or without one, or of any joints.
TEST(SparseNullSpace, IsTheDenseOneBitForBit) {
    NqRandom random(5);
    unsigned regularRounds = 0;
    for (unsigned round = 0; round < 900; ++round) {
        const unsigned m = 4 + round % 21, n = m + (m + round) % 20 + 2, shared = n / 6;
        Bits bits(m, std::vector<bool>(n));
        NqReArray dense = nqRandomArray(random, m, n);
        for (unsigned r = 0; r < m; ++r) {
            for (unsigned j = 0; j < n; ++j) {
                const bool isOwn = 4 * r / m == std::min(3u, 4 * j / (n - shared));
                bits[r][j] =
                    round % 5 == 0 ? nqUniform(random) > 0.4 : isOwn || (round % 5 < 3 && j >= n - shared);
                // Some of few different values, so that magnitudes tie and rows cancel.
                dense[r][j] = bits[r][j] ? (round % 3 ? dense[r][j] : std::round(2.0 * dense[r][j])) : 0.0;
            }
        }
        NqReArray sparse(dense), basis, sparseBasis;
        Indices indices, sparseIndices, first, second;
        ASSERT_TRUE(round % 2 ? NqReArray::calculateZeroStartIndices(bits, first, second)
                              : dense.calculateZeroStartIndices(m, first, second));
        const bool regular = dense.nullSpace(basis, m, indices);
        EXPECT_EQ(sparse.nullSpaceSparse(sparseBasis, m, sparseIndices, first, second), regular);
        if (regular) {
            EXPECT_TRUE(sparseIndices == indices && sparse == dense && sparseBasis == basis) << round;
            ++regularRounds;
        }
    }
    EXPECT_GT(regularRounds, 100u);
}

TEST(ZeroStartIndices, NameTheRunThatRowsShareAndAreNotTrusted) {
    Indices first, second, indices;
    ASSERT_TRUE(NqReArray::calculateZeroStartIndices(
        {{true, false, false, false, true}, {false, true, false, false, true}}, first, second));
    EXPECT_TRUE(first == (Indices{1, 2}) && second == (Indices{4, 4}));
    ASSERT_TRUE(NqReArray::calculateZeroStartIndices({{false, true, false, true}}, first, second));
    EXPECT_TRUE(first == Indices{0} && second == Indices{1}) << "the first of equal runs";
    NqPrintCapture capture;
    EXPECT_FALSE(NqReArray::calculateZeroStartIndices({{true}, {}}, first, second));
    EXPECT_EQ(capture.lines().size(), 1u);

    NqRandom random(3);
    const NqReArray jacobian = nqRandomArray(random, 6, 20);
    NqReArray factored(jacobian), basis;
    factored.nullSpace(basis, 6, indices);
    const Indices none, one(1, 1), low(6, 1), high(6, 20), far(6, ~0u), firstRowOnly{1, 20, 20, 20, 20, 20};
    for (const auto& [start, end] :
         {std::pair(none, none), std::pair(one, one), std::pair(low, high), std::pair(far, high),
          std::pair(low, far), std::pair(firstRowOnly, high)}) {
        NqReArray again(jacobian), itsBasis;
        EXPECT_TRUE(again.nullSpaceSparse(itsBasis, 6, indices, start, end));
        EXPECT_TRUE(again == factored && itsBasis == basis);
    }
}

TEST(JacobianState, IsTheSameForKnownZerosAndEmptyForATallJacobian) {
    NqRandom random(2);
    NqReArray jacobian = nqRandomArray(random, 3, 12);
    Bits bits(3, std::vector<bool>(12, true));
    for (unsigned i = 0; i < 3; ++i) {
        std::fill(jacobian[i].begin() + 4, jacobian[i].end() - 2, i == 2 ? -0.0 : 0.0);
        std::fill(bits[i].begin() + 4, bits[i].end() - 2, false);
    }
    NqJacobianState state, sparse;
    sparse.setUseSparseNullSpace(true);
    EXPECT_TRUE(sparse.setSparsity(bits) && state.setJacobian(jacobian) && sparse.setJacobian(jacobian));
    EXPECT_TRUE(sparse.factoredJacobianArray() == state.factoredJacobianArray() &&
                sparse.nullSpaceArray() == state.nullSpaceArray());
    EXPECT_EQ(nqNegativeZeros(sparse.factoredJacobianArray()), 6u) << "passed over";
    EXPECT_LT(nqNegativeZeros(state.factoredJacobianArray()), 6u);
    NqPrintCapture capture;
    EXPECT_FALSE(state.setJacobian(jacobian.transpose()));
    EXPECT_EQ(capture.lines().size(), 1u);
    EXPECT_TRUE(state.jacobianArray().rows() == 12 && state.factoredJacobianArray().size() == 0);
}

} // namespace
