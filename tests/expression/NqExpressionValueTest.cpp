#include "NqExpressionTesting.h"
#include "support/NqSchemaValidator.h"

#include <pthread.h>

namespace {

using namespace nqExpression;

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

const TreeCase kValues[] = {
    {"Plus", pair("plus", kTwoByThree, outer("1 1", "1 2 0.5")), "1 5 1.5;1 -4 -1.5;"},
    {"PlusMisfit", pair("plus", kTwoByThree, kThreeByTwo), "", kMisfit},
    {"PlusNothing", pair("plus", number("3"), kNothing), "3;"},
    {"NothingPlus", pair("plus", kNothing, number("3")), "", kMisfit},
    {"Minus", pair("minus", kTwoByThree, outer("1 1", "1 2 0.5")), "-1 1 0.5;-1 -8 -2.5;"},
    {"MinusMisfit", pair("minus", column("1"), column("1 2")), "", kMisfit},
    {"Times", pair("times", kTwoByThree, kThreeByTwo), "-95 19;190 -38;"},
    {"TimesMisfit", pair("times", kTwoByThree, kTwoByThree), "", kMisfit},
    {"TimesTooLarge",
     pair("times", singleColumn("4000", "0"), element("transpose", singleColumn("4000", "0"))), "",
     "a matrix of 4000 by 4000 elements is too large, in \"times\""},
    {"Pow", pair("elementPow", column("2 -3 0"), column("3 9")), "8;-27;0;"},
    {"PowNothing", pair("elementPow", number("7"), single("1", "0", "0", "0")), "7;",
     "position out of bounds"},
    {"Root", pair("elementRoot", column("16 81"), number("4")), "2;3;"},
    {"RootOfZero", pair("elementRoot", kSigns, number("-0")), "-1;0;1;NaN;0;NaN;"},
    {"RootNothing", pair("elementRoot", number("9"), kNothing), "3;"},
    {"LogN", pair("elementLogN", column("8 0.5 0"), number("2")), "3;-1;-INF;"},
    {"LogNNothing", pair("elementLogN", column("1 0 -1"), kNothing), "0;-INF;NaN;"},
    {"And", pair("and", kSigns, kZeros), "0;0;0;0;0;1;"},
    {"AndBoth", pair("and", kSigns, kSigns), "1;0;1;1;0;1;"},
    {"Or", pair("or", kSigns, kZeros), "1;0;1;1;0;1;"},
    {"OrBoth", pair("or", kZeros, kZeros), "0;0;0;0;0;1;"},
    {"Less", pair("lessThan", kSigns, kZeros), "1;0;0;0;0;0;"},
    {"Greater", pair("greaterThan", kSigns, kZeros), "0;0;1;0;0;0;"},
    {"LessOrEqual", pair("lessThanOrEqualTo", kSigns, kZeros), "1;1;0;0;1;0;"},
    {"GreaterOrEqual", pair("greaterThanOrEqualTo", kSigns, kZeros), "0;1;1;0;1;0;"},
    {"Corner", pair("lessThan", kTwoByThree, kThreeByTwo), "0 0;0 1;"},
    {"OtherCorner", pair("or", kThreeByTwo, column("0 0 0 0")), "0;1;1;"},
    {"WithNothing", pair("greaterThan", number("1"), kNothing), ""},
    {"HalfPlus", element("plus", number("4")), "4;"},
    {"HalfMinus", element("minus", number("4")), "4;"},
    {"HalfTimes", element("times", number("4")), ""},
    {"HalfPow", element("elementPow", number("4")), "4;"},
    {"HalfRoot", element("elementRoot", number("4")), "2;"},
    {"HalfLogN", element("elementLogN", number("4")), "1.3862943611198906;"},
    {"HalfAnd", element("and", number("4")), ""},
    {"HalfOr", element("or", number("4")), ""},
    {"HalfLess", element("lessThan", number("4")), ""},
    {"HalfGreater", element("greaterThan", number("4")), ""},
    {"HalfLessOrEqual", element("lessThanOrEqualTo", number("4")), ""},
    {"HalfGreaterOrEqual", element("greaterThanOrEqualTo", number("4")), ""},
    {"Inverse", element("elementInverse", column("4 0 -0.5")), "0.25;INF;-2;"},
    {"Negative", element("negative", column("4 0 -INF")), "-4;-0;INF;"},
    {"Sine", element("sine", column("0 -0.5")), "0;-0.479425538604203;"},
    {"Cosine", element("cosine", column("0 -0.5")), "1;0.8775825618903728;"},
    {"Log", element("elementLog", column("1 0 2")), "0;-INF;0.6931471805599453;"},
    {"Transpose", element("transpose", kTwoByThree), "0 0;3 -6;1 -2;"},
    {"Childless", element("sine", element("transpose")), ""},
    {"Empty", "", ""},
    {"Scalar", number("-0.1"), "-0.1;"},
    {"SingleColumn", singleColumn("3", "1"), "0;-1.5;0;"},
    {"SingleColumnOutside", singleColumn("2", "2"), "0;0;"},
    {"SingleColumnDefault", element("singleElementColumn"), "0;"},
    {"SingleColumnHuge", singleColumn(kMost, "1"), "", kTooLarge + "1 elements"},
    {"SingleMatrix", single("2", "3", "1", "2"), "0 0 0;0 0 2.5;"},
    {"SingleMatrixBelow", single("2", "3", "2", "0"), "0 0 0;0 0 0;",
     "NqExpressionSingleElementMatrix::value(): position out of bounds\n"},
    {"SingleMatrixBeside", single("1", "1", "0", "1"), "0;", "position out of bounds\n"},
    {"SingleMatrixHuge", single(kMost, kMost, "0", "0"), "", kTooLarge + kMost},
    {"RowsWithoutEntries", single(kMost, "0", "0", "0"), "", kTooLarge + "0 elements"},
    {"OneTooMany", single("10000001", "1", "0", "0"), "", "10000001 by 1 elements"},
    {"Identity", identity("3"), "1 0 0;0 1 0;0 0 1;"},
    {"NoIdentity", identity("0"), ""},
    {"IdentityHuge", identity(kMost), "", kTooLarge + kMost},
    {"Diagonal", diagonal("2", "3", "4 5 6"), "4 0 0;0 5 0;"},
    {"DiagonalTall", diagonal("3", "2", "4 5 6"), "4 0;0 5;0 0;"},
    {"DiagonalShort", diagonal("2", "2", "4"), "4 0;0 0;"},
    {"DiagonalDefault", element("diagonalMatrix"), "1;"},
    {"DiagonalHuge", diagonal(kMost, "1", "4"), "", kTooLarge + "1 elements"},
    {"Column", column(" 1 -INF\n1e-300"), "1;-INF;1e-300;"},
    {"NoColumn", column(""), ""},
    {"ColumnDefault", element("generalColumn"), "1;"}};

class NqExpressionValue : public testing::TestWithParam<TreeCase> {};

INSTANTIATE_TEST_SUITE_P(Trees, NqExpressionValue, testing::ValuesIn(kValues), nqCaseName);

TEST_P(NqExpressionValue, IsThatOfTheTree) {
    const NqExpressionContainer expression = goThrough(GetParam());
    static const NqSchemaValidator theSchema(expression);
    EXPECT_TRUE(theSchema.accepts(nqWritten(expression)));
}

void goThroughAll(const std::vector<TreeCase>& cases) {
    std::ranges::for_each(cases, goThrough);
}

std::string constants(std::size_t count) {
    return nqRepeated(number("1"), count);
}

std::string chain(std::size_t depth) {
    return nqRepeated("<negative>", depth) + number("1") + nqRepeated("</negative>", depth);
}

TEST(NqExpressionReading, TakesWhatItKnowsAndTellsOfTheRest) {
    const std::string unknown = " is not known here";
    goThroughAll(
        {{"three", element("minus", number("5") + number("9") + number("1")), "4;"},
         {"two", element("negative", number("5") + number("9")), "-9;"},
         {"two trees", number("5") + number("9"), "9;"},
         {"library", element("addLibraries", element("library", "x")) + number("5"), "5;",
          "library \"x\" is not loaded"},
         {"after", number("5") + element("stranger"), "5;", "\"stranger\"" + unknown, false},
         {"within", element("minus", number("5") + element("stranger", number("3")) + number("1")), "4;",
          "\"stranger\"" + unknown + " and is skipped -- file: (text), line: 1\n", false},
         {"container", element("plus", element("expressionContainer") + number("2")), "2;",
          "\"expressionContainer\"" + unknown, false},
         {"bad number", element("plus", number("5") + number("x")), "5;",
          "\"x\" is no value of element \"scalarConstant\"", false},
         {"bad size", element("identityMatrix", element("size", "4294967296")), "1;",
          "\"4294967296\" is no value", false},
         {"child of a leaf", element("identityMatrix", number("3")), "1;", "\"scalarConstant\"" + unknown},
         {"of another class", element("unit"), "", "\"unit\"" + unknown, false}});
}

TEST(NqExpressionReading, LeavesNoHalfOfAnExpression) {
    NqPrintCapture print;
    const std::string whole = document(element("minus", number("7") + number("4")));
    for (std::size_t length = whole.find("minus"); length < whole.size(); ++length) {
        NqExpressionContainer expression;
        expression.setTopElement(NqExpressionScalarConstant::objectWithValue(17.0));
        EXPECT_FALSE(NqXmlDocument::readString(whole.substr(0, length), expression)) << length;
        EXPECT_TRUE(textOf(expression.value()) == "3;" || !expression.topElement()) << length;
    }
}

TEST(NqExpressionReading, BoundsHostileTrees) {
    const std::string wide = nqRepeated(element("plus", constants(255)), 255);
    const std::string large = element("identityMatrix", element("size", "3000"));
    std::string sum = number("0");
    for (int i = 0; i < 9; ++i) { // each counts with its column, so that only the first ones find room
        sum = element("plus", element("lessThan", large + number("1")) + sum);
    }
    const std::string tooMany = "the expression has more than 65536 elements";
    goThroughAll({{"256", element("plus", constants(256)), "2;"},
                  {"many in one", element("plus", constants(100'000)), "2;",
                   "more than 256 elements stand in one of an expression -- file: (text), line: 1\n", false},
                  {"65536", constants(65536), "1;"},
                  {"65537", constants(65537), "1;", tooMany + " -- file: (text), line: 1\n", false},
                  {"wide", element("plus", wide) + number("3"), "3;"},
                  {"too wide", element("plus", wide) + wide + number("3"), "2;", tooMany, false},
                  {"large", sum, "", "take more than 500000000 bytes together"},
                  {"deep", chain(255), "", "nested deeper than 256 elements", false}});
    NqExpressionContainer expression;
    for (int i = 0; i < 2; ++i) { // of which each counts anew
        EXPECT_TRUE(NqXmlDocument::readString(document(constants(40'000)), expression));
        EXPECT_EQ(expression.topElement()->container(), &expression);
    }
}

TEST(NqExpressionReading, TheDeepestTreeNeedsLittleStack) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 1U << 20), 0);
    pthread_t thread{};
    const auto run = [](void*) -> void* {
        goThrough({"deepest", chain(254), "1;"});
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, nullptr), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

} // namespace
