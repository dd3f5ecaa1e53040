#include "NqExpressionTesting.h"
#include "support/NqPrintCapture.h"
#include "support/NqSchemaValidator.h"

#include <nqControlCore/expression/NqExpressionBaseBinary.h>
#include <nqControlCore/expression/NqExpressionScalarConstant.h>

#include <gtest/gtest.h>

namespace {

using namespace nqExpression;

struct ValueCase {
    const char* name;
    std::string tree;
    std::string value;
    std::string message = {}; ///< in the one line that evaluation prints; none if empty
};

class NqExpressionValue : public testing::TestWithParam<ValueCase> {};

const std::string kMisfit = "bad dimensions on input...\n";
const std::string kNothing = element("negative"); // a child whose value has no entries
const std::string kTwoByThree = outer("1 -2", "0 3 1");
const std::string kThreeByTwo = outer("0 -7 2", "5 -1");
const std::string kSigns = column("-1 0 1 NaN 0 NaN");
const std::string kZeros = column("0 0 0 0 0 1");
const std::string kMost = "4294967295";
const std::string kTooLarge = "a matrix of 4294967295 by ";

std::string pair(const char* name, const std::string& left, const std::string& right) {
    return element(name, left + right);
}

std::string sized(const char* name, const std::string& rows, const std::string& columns,
                  const std::string& more) {
    return element(name, element("rowSize", rows) + element("columnSize", columns) + more);
}

std::string single(const std::string& rows, const std::string& columns, const char* row, const char* column) {
    return sized("singleElementMatrix", rows, columns,
                 element("elementValue", "2.5") + element("rowPosition", row) +
                     element("columnPosition", column));
}

std::string singleColumn(const std::string& size, const char* position) {
    return element("singleElementColumn",
                   element("elementValue", "-1.5") + element("size", size) + element("position", position));
}

std::string diagonal(const std::string& rows, const std::string& columns, const char* entries) {
    return sized("diagonalMatrix", rows, columns, element("diagonal", entries));
}

std::string identity(const std::string& size) {
    return element("identityMatrix", element("size", size));
}

INSTANTIATE_TEST_SUITE_P(
    Binary, NqExpressionValue,
    testing::Values(
        ValueCase{"Plus", pair("plus", kTwoByThree, outer("1 1", "1 2 0.5")), "1 5 1.5;1 -4 -1.5;"},
        ValueCase{"PlusMisfit", pair("plus", kTwoByThree, kThreeByTwo), "", kMisfit},
        ValueCase{"PlusNothing", pair("plus", number("3"), kNothing), "3;"},
        ValueCase{"NothingPlus", pair("plus", kNothing, number("3")), "", kMisfit},
        ValueCase{"Minus", pair("minus", kTwoByThree, outer("1 1", "1 2 0.5")), "-1 1 0.5;-1 -8 -2.5;"},
        ValueCase{"MinusMisfit", pair("minus", column("1"), column("1 2")), "", kMisfit},
        ValueCase{"Times", pair("times", kTwoByThree, kThreeByTwo), "-95 19;190 -38;"},
        ValueCase{"TimesMisfit", pair("times", kTwoByThree, kTwoByThree), "", kMisfit},
        ValueCase{"TimesTooLarge",
                  pair("times", singleColumn("4000", "0"), element("transpose", singleColumn("4000", "0"))),
                  "", "a matrix of 4000 by 4000 elements is too large, in \"times\""},
        ValueCase{"Pow", pair("elementPow", column("2 -3 0"), column("3 9")), "8;-27;0;"},
        ValueCase{"PowNothing", pair("elementPow", number("7"), single("1", "0", "0", "0")), "7;",
                  "position out of bounds"},
        ValueCase{"Root", pair("elementRoot", column("16 81"), number("4")), "2;3;"},
        ValueCase{"RootOfZero", pair("elementRoot", kSigns, number("-0")), "-1;0;1;NaN;0;NaN;"},
        ValueCase{"RootNothing", pair("elementRoot", number("9"), kNothing), "3;"},
        ValueCase{"LogN", pair("elementLogN", column("8 0.5 0"), number("2")), "3;-1;-INF;"},
        ValueCase{"LogNNothing", pair("elementLogN", column("1 0 -1"), kNothing), "0;-INF;NaN;"}),
    [](const auto& which) { return which.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Comparisons, NqExpressionValue,
    testing::Values(ValueCase{"And", pair("and", kSigns, kZeros), "0;0;0;0;0;1;"},
                    ValueCase{"AndBoth", pair("and", kSigns, kSigns), "1;0;1;1;0;1;"},
                    ValueCase{"Or", pair("or", kSigns, kZeros), "1;0;1;1;0;1;"},
                    ValueCase{"OrBoth", pair("or", kZeros, kZeros), "0;0;0;0;0;1;"},
                    ValueCase{"Less", pair("lessThan", kSigns, kZeros), "1;0;0;0;0;0;"},
                    ValueCase{"Greater", pair("greaterThan", kSigns, kZeros), "0;0;1;0;0;0;"},
                    ValueCase{"LessOrEqual", pair("lessThanOrEqualTo", kSigns, kZeros), "1;1;0;0;1;0;"},
                    ValueCase{"GreaterOrEqual", pair("greaterThanOrEqualTo", kSigns, kZeros), "0;1;1;0;1;0;"},
                    ValueCase{"Corner", pair("lessThan", kTwoByThree, kThreeByTwo), "0 0;0 1;"},
                    ValueCase{"OtherCorner", pair("or", kThreeByTwo, column("0 0 0 0")), "0;1;1;"},
                    ValueCase{"WithNothing", pair("greaterThan", number("1"), kNothing), ""}),
    [](const auto& which) { return which.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Unary, NqExpressionValue,
    testing::Values(ValueCase{"Inverse", element("elementInverse", column("4 0 -0.5")), "0.25;INF;-2;"},
                    ValueCase{"Negative", element("negative", column("4 0 -INF")), "-4;-0;INF;"},
                    ValueCase{"Sine", element("sine", column("0 -0.5")), "0;-0.479425538604203;"},
                    ValueCase{"Cosine", element("cosine", column("0 -0.5")), "1;0.8775825618903728;"},
                    ValueCase{"Log", element("elementLog", column("1 0 2")), "0;-INF;0.6931471805599453;"},
                    ValueCase{"Transpose", element("transpose", kTwoByThree), "0 0;3 -6;1 -2;"},
                    ValueCase{"Childless", element("sine", element("transpose")), ""}),
    [](const auto& which) { return which.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Leaves, NqExpressionValue,
    testing::Values(
        ValueCase{"Empty", "", ""}, ValueCase{"Scalar", number("-0.1"), "-0.1;"},
        ValueCase{"SingleColumn", singleColumn("3", "1"), "0;-1.5;0;"},
        ValueCase{"SingleColumnOutside", singleColumn("2", "2"), "0;0;"},
        ValueCase{"SingleColumnDefault", element("singleElementColumn"), "0;"},
        ValueCase{"SingleColumnHuge", singleColumn(kMost, "1"), "", kTooLarge + "1 elements"},
        ValueCase{"SingleMatrix", single("2", "3", "1", "2"), "0 0 0;0 0 2.5;"},
        ValueCase{"SingleMatrixBelow", single("2", "3", "2", "0"), "0 0 0;0 0 0;",
                  "NqExpressionSingleElementMatrix::value(): position out of bounds\n"},
        ValueCase{"SingleMatrixBeside", single("1", "1", "0", "1"), "0;", "position out of bounds\n"},
        ValueCase{"SingleMatrixHuge", single(kMost, kMost, "0", "0"), "", kTooLarge + kMost},
        ValueCase{"RowsWithoutEntries", single(kMost, "0", "0", "0"), "", kTooLarge + "0 elements"},
        ValueCase{"OneTooMany", single("10000001", "1", "0", "0"), "", "10000001 by 1 elements"},
        ValueCase{"Identity", identity("3"), "1 0 0;0 1 0;0 0 1;"},
        ValueCase{"NoIdentity", identity("0"), ""},
        ValueCase{"IdentityHuge", identity(kMost), "", kTooLarge + kMost},
        ValueCase{"Diagonal", diagonal("2", "3", "4 5 6"), "4 0 0;0 5 0;"},
        ValueCase{"DiagonalTall", diagonal("3", "2", "4 5 6"), "4 0;0 5;0 0;"},
        ValueCase{"DiagonalShort", diagonal("2", "2", "4"), "4 0;0 0;"},
        ValueCase{"DiagonalDefault", element("diagonalMatrix"), "1;"},
        ValueCase{"DiagonalHuge", diagonal(kMost, "1", "4"), "", kTooLarge + "1 elements"},
        ValueCase{"Column", column(" 1 -INF\n1e-300"), "1;-INF;1e-300;"},
        ValueCase{"NoColumn", column(""), ""}, ValueCase{"ColumnDefault", element("generalColumn"), "1;"}),
    [](const auto& which) { return which.param.name; });

TEST_P(NqExpressionValue, IsThatOfTheTree) {
    const ValueCase& which = GetParam();
    NqPrintCapture print;
    NqExpressionContainer expression;
    ASSERT_TRUE(NqXmlDocument::readString(document(which.tree), expression)) << print.text();
    EXPECT_EQ(textOf(expression.value()), which.value);
    EXPECT_EQ(print.lines().size(), which.message.empty() ? 0U : 1U) << print.text();
    EXPECT_TRUE(print.contains(which.message)) << print.text();
    EXPECT_TRUE(print.lines().empty() || print.lines().front().first == Nq::PrintFailure);
    EXPECT_EQ(textOf(expression.value()), which.value);

    static const NqSchemaValidator theSchema(expression, "expression");
    const NqExpressionContainer read = nqThroughXml(expression);
    if (which.tree.find("NaN") == std::string::npos) { // which equals nothing
        EXPECT_TRUE(read.equality(&expression));
    }
    const std::string written = nqWritten(expression);
    EXPECT_EQ(nqWritten(read), written);
    EXPECT_TRUE(theSchema.accepts(written)) << written;
    EXPECT_EQ(read.equality(std::make_unique<NqExpressionContainer>().get()), which.tree.empty());
    EXPECT_EQ(textOf(NqExpressionContainer(read).value()), which.value);
}

struct HalfCase {
    const char* element;
    std::string ofLeft; ///< with 4.0 as the only child
    std::string ofRight;
};

TEST(NqExpressionBinary, HasAValueOfItsOwnForEachMissingChild) {
    for (const HalfCase& which : std::initializer_list<HalfCase>{{"plus", "4;", "4;"},
                                                                 {"minus", "4;", "-4;"},
                                                                 {"times", "", ""},
                                                                 {"elementPow", "4;", ""},
                                                                 {"elementRoot", "2;", ""},
                                                                 {"elementLogN", "1.3862943611198906;", ""},
                                                                 {"and", "", ""},
                                                                 {"or", "", ""},
                                                                 {"lessThan", "", ""},
                                                                 {"greaterThan", "", ""},
                                                                 {"lessThanOrEqualTo", "", ""},
                                                                 {"greaterThanOrEqualTo", "", ""}}) {
        const auto four = NqExpressionScalarConstant::objectWithValue(4.0);
        for (const bool isLeft : {true, false}) {
            const std::unique_ptr<NqXmlObject> made(
                NqExpressionContainer().newObjectFromToken(which.element));
            auto* node = dynamic_cast<NqExpressionBaseBinary*>(made.get());
            ASSERT_TRUE(node) << which.element;
            EXPECT_EQ(textOf(node->value()), "") << which.element;
            isLeft ? node->setLeft(four) : node->setRight(four);
            EXPECT_EQ(textOf(node->value()), isLeft ? which.ofLeft : which.ofRight) << which.element;
        }
    }
}

} // namespace
