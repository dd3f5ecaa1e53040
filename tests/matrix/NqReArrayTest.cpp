#include "NqArrayTesting.h"

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
    EXPECT_TRUE(kWide.maximum() == 6.0 && kWide.minimum() == 1.0);
    EXPECT_TRUE(std::isnan(nqArray({{1.0, NAN, 2.0}}).maximum()));
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
    NqReArray wide(kWide), square(kSquare);
    Numbers two{1.0, 2.0};
    Indices pivots;
    double sign = 0.0;
    const std::pair<std::string, std::function<bool()>> attempts[] = {
        {"operator*", [&] { return (kWide * kWide).size() > 0; }},
        {"operator+=", [&] { return (wide += kSquare) != kWide; }},
        {"operator-=", [&] { return (wide -= kRagged) != kWide; }},
        {"operator-", [&] { return (wide - kSquare).size() > 0; }},
        {"trace", [&] { return wide.trace() != 0.0; }},
        {"determinant", [&] { return wide.determinant() != 0.0; }},
        {"maximum", [&] { return NqReArray().maximum() != 0.0; }},
        {"minimum", [&] { return NqReArray().minimum() != 0.0; }},
        {"transform", [&] { return wide.transform(two, square); }},
        {"transform", [&] { return wide.transform(kWide, square); }},
        {"transposeTransform", [&] { return wide.transposeTransform(kSquare, square); }},
        {"leftTransposeTransform", [&] { return wide.leftTransposeTransform(Numbers(3), two); }},
        {"leftTransposeTransform", [&] { return wide.leftTransposeTransform(NqReArray(3, 1), square); }},
        {"underconstrainedNormal", [&] { return kRagged.underconstrainedNormal(square); }},
        {"overconstrainedNormal", [&] { return kRagged.overconstrainedNormal(square); }},
        {"addSelfOuterProduct", [&] { return wide.addSelfOuterProduct(two); }},
        {"addWeightedSelfOuterProduct", [&] { return square.addWeightedSelfOuterProduct({1.0}, 2.0); }},
        {"choleskyDecomposition", [&] { return wide.choleskyDecomposition(); }},
        {"choleskyBackSubstitution", [&] { return square.choleskyBackSubstitution(kRagged, wide); }},
        {"choleskyBackSubstitution", [&] { return wide.choleskyBackSubstitution(kSquare, square); }},
        {"choleskyBackSubstitutionOnTranspose",
         [&] { return square.choleskyBackSubstitutionOnTranspose(kWide, wide); }},
        {"lowerTriangularForwardSubstitution",
         [&] { return square.lowerTriangularForwardSubstitution(NqReArray(3, 1), wide); }},
        {"lowerTriangularForwardSubstitutionOnTranspose",
         [&] { return square.lowerTriangularForwardSubstitutionOnTranspose(square, square); }},
        {"LUDecomposition", [&] { return wide.LUDecomposition(pivots, sign); }},
        {"LUDecompositionSparse", [&] { return wide.LUDecompositionSparse(pivots, sign); }},
        {"forwardAndBackSub",
         [&] {
             return kSquare.forwardAndBackSub({0, 2}, two, two);
         }},
        {"invertSquareMatrix", [&] { return wide.invertSquareMatrix(square); }},
        {"inv2", [&] { return wide.inv2(square); }},
        {"inv3", [&] { return square.inv3(square); }},
        {"assign", [&] { return wide.assign(2, two); }},
        {"assignColumnTo", [&] { return wide.assignColumnTo(3, two); }},
        {"assignRowTo", [&] { return wide.assignRowTo(0, two); }},
        {"getColumn", [&] { return wide.getColumn(3, two); }},
        {"getRow", [&] { return wide.getRow(2, two); }}};
    for (const auto& [name, attempt] : attempts) {
        NqPrintCapture capture;
        EXPECT_FALSE(attempt()) << name;
        EXPECT_TRUE(wide == kWide && square == kSquare && two == (Numbers{1.0, 2.0})) << name;
        EXPECT_EQ(capture.text(), "NqReArray::" + name + "(): bad dimensions on input...\n");
        EXPECT_EQ(capture.lines().at(0).first, 4u);
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
