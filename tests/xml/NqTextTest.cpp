#include "support/NqTesting.h"

#include <nqControlCore/foundation/text/NqTextConversion.h>

#include <atomic>
#include <thread>

namespace {

TEST(NqTextConversion, WritesDigitsOfEveryRadix) {
    const unsigned most = std::numeric_limits<unsigned>::max();
    EXPECT_EQ(NqINT2STRING(0, 10), "0");
    EXPECT_EQ(NqINT2STRING(most, 10), "4294967295");
    EXPECT_EQ(NqINT2STRING(most, 2), std::string(32, '1'));
    EXPECT_EQ(NqINT2STRING(35 * 36 + 10, 36), "za");
    EXPECT_EQ(NqINT2STRING(255, 16), "ff");
    EXPECT_EQ(NqINT2STRING(5, 1) + NqINT2STRING(5, 37) + NqINT2STRING(5, 0), "");
}

TEST(NqTextConversion, TextsThatAreNoNumbersAreZero) {
    for (const char* text :
         {"", "+-5", "--5", "+", "nan(ind)", "nan()", "0x10", "1e", "1 2", "infinite", "."}) {
        EXPECT_EQ(NqSTRING2DOUBLE(text), 0.0) << text;
    }
    EXPECT_EQ(NqSTRING2DOUBLE(" +.5e1\n"), 5.0);
    EXPECT_EQ(NqSTRING2DOUBLE("-Infinity"), -std::numeric_limits<double>::infinity());
}

TEST(NqPrint, FormatsByTypeOfTheArgument) {
    NqPrintCapture print;
    auto& out = Nq::Print::instance();
    out.write(4, "%d %u %5.2f %s|%-4d|%04x|%%", "wrist", 4294967295U, 1.005, std::string("text"), -7, 255);
    out.write(4, "%d %d %u %f %ld", 2.5, true, -1, 3, 9'000'000'000LL);
    out.write(5, "%d %s", 1);
    out.write(5, "no more", 1);
    out.write(5, "100% sure, 5 %");
    out.ostream(3, "f(): ") << "a " << 1.5;
    const std::vector<std::pair<unsigned, std::string>> expected = {
        {4, "wrist 4294967295  1.00 text|-7  |00ff|%"},
        {4, "2.5 1 -1 3 9000000000"},
        {5, "1 %s"},
        {5, "no more"},
        {5, "100% sure, 5 %"},
        {3, "f(): a 1.5"}};
    EXPECT_EQ(print.lines(), expected);
}

TEST(NqPrint, ASinkThatWasReplacedRunsNoMore) {
    auto& out = Nq::Print::instance();
    std::atomic<bool> entered = false, left = false;
    out.setSink([&](unsigned, const std::string&) {
        entered = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        left = true;
    });
    std::thread printing([&] { out.write(4, "line\n"); });
    while (!entered) {
        std::this_thread::yield();
    }
    out.setSink({});
    EXPECT_TRUE(left);
    printing.join();

    std::string lines;
    out.setSink([&](unsigned, const std::string& text) { // one that replaces itself
        out.setSink([&](unsigned, const std::string& later) { lines += later; });
        lines += text;
    });
    out.write(4, "a");
    out.write(4, "b");
    out.setSink({});
    EXPECT_EQ(lines, "ab");
}

} // namespace
