#include "NqExpressionTesting.h"
#include "support/NqPrintCapture.h"

#include <gtest/gtest.h>

#include <pthread.h>

namespace {

using namespace nqExpression;

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string chain(std::size_t depth) {
    return document(repeated("<negative>", depth) + number("1") + repeated("</negative>", depth));
}

struct BoundCase {
    std::string document;
    bool result;
    std::string value;
    std::string message;
};

/// Reads, evaluates, copies, writes and destroys an expression.
void goThrough(const BoundCase& which) {
    NqPrintCapture print;
    NqExpressionContainer expression;
    EXPECT_EQ(NqXmlDocument::readString(which.document, expression), which.result);
    EXPECT_EQ(textOf(expression.value()), which.value);
    EXPECT_TRUE(print.contains(which.message)) << print.text();
    EXPECT_EQ(print.lines().size(), which.message.empty() ? 0U : 1U) << print.text();
    EXPECT_EQ(nqThroughXml(expression), NqExpressionContainer(expression));
}

TEST(NqExpressionBounds, HoldForHostileTrees) {
    const std::string wide = repeated(element("plus", repeated(number("1"), 255)), 255);
    const std::string large = element("identityMatrix", element("size", "3000"));
    std::string sum = number("0");
    for (int i = 0; i < 9; ++i) { // each counts with its column, so that only the first ones find room
        sum = element("plus", element("lessThan", large + number("1")) + sum);
    }
    for (const BoundCase& which : std::initializer_list<BoundCase>{
             {document(element("plus", repeated(number("1"), 256))), true, "2;", ""},
             {document(element("plus", repeated(number("1"), 100'000))), false, "2;",
              "more than 256 elements stand in one of an expression -- file: (text), line: 1\n"},
             {document(repeated(number("1"), 65536)), true, "1;", ""},
             {document(repeated(number("1"), 65537)), false, "1;",
              "the expression has more than 65536 elements -- file: (text), line: 1\n"},
             {document(element("plus", wide) + number("3")), true, "3;", ""},
             {document(element("plus", wide) + wide + number("3")), false, "2;",
              "the expression has more than 65536 elements"},
             {document(sum), true, "", "take more than 500000000 bytes together"}}) {
        goThrough(which);
    }
    NqExpressionContainer expression;
    for (int i = 0; i < 2; ++i) { // of which each counts anew
        EXPECT_TRUE(NqXmlDocument::readString(document(repeated(number("1"), 40'000)), expression));
    }
}

TEST(NqExpressionBounds, TheDeepestTreeThatReadsNeedsLittleStack) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 1U << 20), 0);
    pthread_t thread{};
    const auto run = [](void*) -> void* {
        goThrough({chain(254), true, "1;", ""});
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, nullptr), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    goThrough({chain(255), false, "", "nested deeper than 256 elements"});
}

} // namespace
