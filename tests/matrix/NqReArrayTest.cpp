#include "NqArrayTesting.h"

#include <support/NqPrintCapture.h>

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

namespace {

using Numbers = std::vector<double>;
using Indices = std::vector<unsigned int>;

const NqReArray kWide = nqArray({{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}});
const NqReArray kSquare = nqArray({{4.0, 2.0}, {2.0, 3.0}});
const NqReArray kRagged = nqArray({{1.0, 2.0}, {3.0}});

TEST(ReArray, ShapesAndEntries) {
    NqReArray array;
    array = Numbers{7.0, 8.0};
    array.resizeArray(3, 2);
    EXPECT_EQ(array, nqArray({{7.0, 0.0}, {8.0, 0.0}, {0.0, 0.0}}));
    array.copyEntriesOf(kWide);
    EXPECT_EQ(array, nqArray({{1.0, 2.0}, {4.0, 5.0}, {0.0, 0.0}}));
    array.setToIdentity(2, 3);
    EXPECT_TRUE(array.assignColumnTo(2, {5.0, 6.0}) && array.assignRowTo(0, {1.0, 2.0, 3.0}));
    EXPECT_EQ(array, nqArray({{1.0, 2.0, 3.0}, {0.0, 1.0, 6.0}}));
    Numbers column;
    EXPECT_TRUE(kWide.getColumn(1, column) && column == (Numbers{2.0, 5.0}));
}

TEST(ReArray, SumsAndProducts) {
    NqReArray sum(kWide), result;
    EXPECT_EQ((sum += kWide) - kWide, kWide);
    EXPECT_EQ(-kSquare, nqArray({{-4.0, -2.0}, {-2.0, -3.0}}));
    EXPECT_EQ(kSquare * kWide, nqArray({{12.0, 18.0, 24.0}, {14.0, 19.0, 24.0}}));
    EXPECT_EQ(kWide.transpose(), nqArray({{1.0, 4.0}, {2.0, 5.0}, {3.0, 6.0}}));

    Numbers vector{1.0, 0.0, -1.0};
    EXPECT_TRUE(kWide.transform(vector, result) && kWide.transform(vector, vector));
    EXPECT_TRUE(result == nqArray({{-2.0}, {-2.0}}) && vector == (Numbers{-2.0, -2.0}));
    EXPECT_TRUE(kWide.leftTransposeTransform(vector, vector));
    EXPECT_EQ(vector, (Numbers{-10.0, -14.0, -18.0}));
    EXPECT_TRUE(kWide.underconstrainedNormal(result));
    EXPECT_EQ(result, kWide * kWide.transpose());
    EXPECT_TRUE(kWide.overconstrainedNormal(result));
    EXPECT_EQ(result, kWide.transpose() * kWide);

    NqReArray square(kSquare);
    EXPECT_TRUE(square.transform(square, square)) << "the result may be an operand";
    EXPECT_EQ(square, kSquare * kSquare);
    square = kSquare;
    EXPECT_TRUE(square.addSelfOuterProduct({1.0, 2.0}));
    EXPECT_TRUE(square.addWeightedSelfOuterProduct({1.0, 1.0}, -2.0));
    EXPECT_EQ(square, nqArray({{3.0, 2.0}, {2.0, 5.0}}));
}

TEST(ReArray, FunctionsOfEntries) {
    const double x = 0.25;
    NqReArray r[6];
    nqArray({{x}}).elementInverse(r[0]);
    nqArray({{x}}).elementCosine(r[1]);
    nqArray({{x}}).elementSine(r[2]);
    nqArray({{x}}).elementLog(r[3]);
    nqArray({{x}}).elementLogN(2.0, r[4]);
    nqArray({{x}}).elementPow(1.5, r[5]);
    const double expected[] = {4.0, std::cos(x), std::sin(x), std::log(x), -2.0, 0.125};
    for (unsigned i = 0; i < 6; ++i) {
        EXPECT_NEAR(r[i][0][0], expected[i], 1e-15) << i;
    }
    EXPECT_TRUE(kSquare.trace() == 7.0 && (-kWide).infinityNorm() == 15.0 && kWide.sum() == 21.0);
    const NqReArray near = nqArray({{1.0, 2.0, 3.1}, {4.0, 5.0, 6.0}});
    const NqReArray holed = nqArray({{1.0, NAN}, {3.0, 2.0}});
    EXPECT_TRUE(kWide.approxEq(near, 0.11) && !kWide.approxEq(near, 0.09) && !holed.approxEq(holed, 1.0));
    EXPECT_TRUE(kWide.maximum() == 6.0 && kWide.minimum() == 1.0);
    EXPECT_TRUE(std::isnan(holed.maximum()) && std::isnan(holed.infinityNorm()));
}

TEST(ReArray, Factorings) {
    NqRandom random(23);
    for (unsigned n = 1; n <= 12; ++n) {
        const NqReArray array = nqRandomArray(random, n, n);
        NqReArray identity, inverse, solution, metric, root, factors(array), sparseFactors(array);
        identity.setToIdentity(n, n);
        ASSERT_TRUE(array.invertSquareMatrix(inverse));
        EXPECT_TRUE((array * inverse).approxEq(identity, 1e-10));
        EXPECT_NEAR(array.determinant() * inverse.determinant(), 1.0, 1e-9);
        if (n == 2 || n == 3) {
            EXPECT_TRUE(n == 2 ? array.inv2(solution) : array.inv3(solution));
            EXPECT_TRUE(solution.approxEq(inverse, 1e-10));
        }
        Numbers x, product;
        EXPECT_TRUE(array.solve(array[0], x) && array.transform(x, product));
        EXPECT_TRUE(nqArray({product}).approxEq(nqArray({array[0]}), 1e-10));
        Indices pivots, sparsePivots;
        double sign = 0.0, sparseSign = 0.0;
        EXPECT_TRUE(factors.LUDecomposition(pivots, sign));
        EXPECT_TRUE(sparseFactors.LUDecompositionSparse(sparsePivots, sparseSign));
        EXPECT_TRUE(factors == sparseFactors && pivots == sparsePivots && sign == sparseSign);

        ASSERT_TRUE(array.underconstrainedNormal(metric));
        root = metric += identity;
        ASSERT_TRUE(root.choleskyDecomposition());
        EXPECT_TRUE((root * root.transpose()).approxEq(metric, 1e-12));
        EXPECT_TRUE(root.choleskyBackSubstitution(array, solution));
        EXPECT_TRUE((metric * solution).approxEq(array, 1e-10));
        EXPECT_TRUE(root.lowerTriangularForwardSubstitution(array, solution));
        EXPECT_TRUE((root * solution).approxEq(array, 1e-10));
        EXPECT_TRUE(root.choleskyBackSubstitutionOnTranspose(array.transpose(), solution));
        EXPECT_TRUE((metric * solution.transpose()).approxEq(array, 1e-10));
        EXPECT_TRUE(root.lowerTriangularForwardSubstitutionOnTranspose(array.transpose(), solution));
        EXPECT_TRUE((root * solution.transpose()).approxEq(array, 1e-10));
    }
    EXPECT_NEAR(nqArray({{0.0, 2.0, 0.0}, {3.0, 0.0, 0.0}, {0.0, 0.0, 4.0}}).determinant(), -24.0, 1e-12);

    NqPrintCapture capture;
    const NqReArray singular = nqArray({{1.0, 2.0}, {2.0, 4.0}});
    NqReArray untouched(kWide);
    Numbers x{9.0};
    EXPECT_EQ(singular.determinant(), 0.0);
    EXPECT_FALSE(singular.invertSquareMatrix(untouched) || singular.inv2(untouched) ||
                 singular.solve({1.0, 1.0}, x) || NqReArray(-kSquare).choleskyDecomposition());
    EXPECT_TRUE(untouched == kWide && x == Numbers{9.0} && capture.lines().empty());
}

TEST(ReArray, WrongShapesPrintALineAndTouchNothing) {
    NqReArray a(kWide), result(kSquare);
    Numbers two{1.0, 2.0};
    Indices pivots;
    double sign = 0.0;
    const std::function<bool()> attempts[] = {
        [&] { return a.transform(two, result); },
        [&] { return a.transposeTransform(kSquare, result); },
        [&] { return a.leftTransposeTransform(Numbers(3), two); },
        [&] { return a.choleskyDecomposition(); },
        [&] { return a.choleskyBackSubstitution(kSquare, result); },
        [&] { return a.assignColumnTo(3, two) || a.assignRowTo(0, two) || a.assign(2, two); },
        [&] {
            return a.LUDecomposition(pivots, sign) || kSquare.forwardAndBackSub({0, 2}, two, two);
        },
        [&] { return a.invertSquareMatrix(result) || a.inv2(result) || kSquare.inv3(result); },
        [&] { return a.getColumn(3, two) || a.getRow(2, two); },
        [&] { return (a += kSquare) != kWide || (a -= kRagged) != kWide || (a - kSquare).size() > 0; },
        [&] { return a.trace() + a.determinant() + NqReArray().maximum() + (a * kWide).minimum() != 0.0; }};
    for (const auto& attempt : attempts) {
        NqPrintCapture capture;
        EXPECT_FALSE(attempt()) << &attempt - attempts;
        EXPECT_TRUE(a == kWide && result == kSquare && two == (Numbers{1.0, 2.0})) << &attempt - attempts;
        ASSERT_FALSE(capture.lines().empty()) << &attempt - attempts;
        EXPECT_EQ(capture.lines()[0].first, 4u);
    }
}

TEST(ReArray, RefusalsNameTheOperation) {
    NqReArray wide(kWide), square(kSquare), result;
    const std::pair<std::string, std::function<void()>> attempts[] = {
        {"operator*", [&] { result = kWide * kWide; }},
        {"transform", [&] { kWide.transform(kWide, result); }},
        {"transposeTransform", [&] { kWide.transposeTransform(kSquare, result); }},
        {"leftTransposeTransform", [&] { kWide.leftTransposeTransform(NqReArray(3, 1), result); }},
        {"underconstrainedNormal", [&] { kRagged.underconstrainedNormal(result); }},
        {"overconstrainedNormal", [&] { kRagged.overconstrainedNormal(result); }},
        {"addSelfOuterProduct",
         [&] {
             wide.addSelfOuterProduct({1.0, 2.0});
         }},
        {"addWeightedSelfOuterProduct", [&] { square.addWeightedSelfOuterProduct({1.0}, 2.0); }},
        {"choleskyBackSubstitution", [&] { square.choleskyBackSubstitution(kRagged, result); }},
        {"choleskyBackSubstitution", [&] { wide.choleskyBackSubstitution(kSquare, result); }},
        {"choleskyBackSubstitutionOnTranspose",
         [&] { square.choleskyBackSubstitutionOnTranspose(kWide, result); }},
        {"lowerTriangularForwardSubstitution",
         [&] { square.lowerTriangularForwardSubstitution(NqReArray(3, 1), result); }},
        {"lowerTriangularForwardSubstitutionOnTranspose",
         [&] { square.lowerTriangularForwardSubstitutionOnTranspose(square, square); }}};
    for (const auto& [name, attempt] : attempts) {
        NqPrintCapture capture;
        attempt();
        EXPECT_EQ(capture.text(), "NqReArray::" + name + "(): bad dimensions on input...\n");
    }
}

TEST(ReArray, BinaryFormKeepsEveryBitAndRefusesTheRest) {
    for (const NqReArray& array : {NqReArray(3, 0), nqArray({{-0.0, 1e-310}, {INFINITY, -1.0 / 3.0}})}) {
        std::stringstream stream;
        NqReArray read(kWide);
        EXPECT_TRUE(array.writeBin(stream) && read.readBin(stream));
        EXPECT_TRUE(read == array && nqSameBits(read[0], array[0]));
    }
    std::ostringstream stream;
    kWide.writeBin(stream);
    const std::string whole = stream.str();
    std::vector<std::string> broken = {"something else altogether",
                                       "NqReArr1\xff\xff\xff\xff\xff\xff\xff\xff\x01\x02", whole};
    broken.back()[whole.size() - 28] = 2; // the length of the second row
    for (std::size_t length = 0; length < whole.size(); length += 5) {
        broken.push_back(whole.substr(0, length));
    }
    for (const std::string& text : broken) {
        NqPrintCapture capture;
        std::istringstream input(text);
        NqReArray read(kSquare);
        EXPECT_FALSE(read.readBin(input));
        EXPECT_TRUE(read == kSquare && capture.lines().size() == 1);
    }
}

} // namespace
