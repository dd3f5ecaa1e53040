#include "NqXmlTestClasses.h"
#include "support/NqPrintCapture.h"

#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace {

using namespace std::string_literals;

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    all.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string inVector(const std::string& value) {
    return "<vectorType count='1'>\n<group>\n<value>" + value + "</value></group></vectorType>";
}

std::string nested(std::size_t depth) {
    return "<vectorType count='0'>" + repeated("<a>", depth) + repeated("</a>", depth) + "</vectorType>";
}

/// Entities each of which names the one before ten times over.
std::string bomb() {
    std::string declarations = "<!ENTITY e0 'lol'>";
    for (int i = 1; i < 12; ++i) {
        declarations += "\n<!ENTITY e" + std::to_string(i) + " '" +
                        repeated("&e" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    return "<?xml version='1.0'?>\n<!DOCTYPE vectorType [" + declarations + "]>" + inVector("&e11;");
}

std::string inTwoBytes(const std::string& text) {
    std::string wide;
    for (const char character : text) {
        wide += {character, '\0'};
    }
    return wide;
}

constexpr const char* kRefused = "document types and entities are refused";
constexpr const char* kBreaksOff = "the document breaks off, or goes on behind its end";
constexpr const char* kNotUtf8 = "no XML document in UTF-8";

struct HostileCase {
    const char* name;
    std::string (*document)();
    bool result;
    const char* message; ///< in one of the messages, with file and line number behind it
    unsigned line;
};

class NqXmlHostileDocument : public testing::TestWithParam<HostileCase> {};

std::string manyAttributes() {
    std::string tag = "<vectorType";
    for (int i = 0; i < 50'000; ++i) {
        tag += " a" + std::to_string(i) + "=\">\"";
    }
    return tag + "/>";
}

INSTANTIATE_TEST_SUITE_P(
    Entities, NqXmlHostileDocument,
    testing::Values(
        HostileCase{"Bomb", bomb, false, kRefused, 2},
        HostileCase{"External", [] { return "<!DOCTYPE a SYSTEM 'http://nq.example/a.dtd'><a/>"s; }, false,
                    kRefused, 1},
        HostileCase{"BehindMuch",
                    [] { return "\n<!--" + repeated("' -> <!DOCTYPE ", 997) + "-->\n<?p <?>\n<!DOCTYPE a>"; },
                    false, kRefused, 4},
        HostileCase{"InOtherEncoding", [] { return "\xFF\xFE" + inTwoBytes("<!DOCTYPE a>"); }, false,
                    kNotUtf8, 1},
        HostileCase{"InTwoBytes", [] { return inTwoBytes("<!DOCTYPE a>"); }, false, kNotUtf8, 1},
        HostileCase{"InSevenBits",
                    [] { return "<?xml version='1.0' encoding='UTF-7'?>+ADwAIQ-DOCTYPE a><a/>"s; }, false,
                    "Document is empty", 1},
        HostileCase{"Undefined", [] { return inVector("&unheard;"); }, false, "Entity 'unheard' not defined",
                    3},
        HostileCase{"InText", [] { return inVector("<![CDATA[<!DOCTYPE ]]><!-- <!DOCTYPE -->"); }, true, "",
                    0}),
    [](const auto& which) { return which.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Masses, NqXmlHostileDocument,
    testing::Values(
        HostileCase{"Deep255", [] { return nested(255); }, true, "element \"a\" is not known here", 1},
        HostileCase{"Deep256", [] { return nested(256); }, false, "nested deeper than 256 elements", 1},
        HostileCase{"Deep100000", [] { return repeated("<vectorType>", 100'000); }, false,
                    "nested deeper than 256 elements", 1},
        HostileCase{"HugeText", [] { return inVector(std::string(11'000'000, 'x')); }, false,
                    "huge text node", 3},
        HostileCase{"HugeAttribute", [] { return "<a b='" + std::string(11'000'000, '1') + "'/>"; }, false,
                    "Huge input lookup", 1},
        HostileCase{"Attributes", manyAttributes, false, "too many attributes in one tag", 1},
        HostileCase{"Strangers",
                    [] { return "<vectorType>" + repeated("<other/>\n", 20'000) + "</vectorType>"; }, true,
                    "element \"other\" is not known here and is skipped", 200}),
    [](const auto& which) { return which.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Forms, NqXmlHostileDocument,
    testing::Values(
        HostileCase{"Empty", [] { return ""s; }, false, kBreaksOff, 1},
        HostileCase{"Nul", [] { return inVector("a\0b"s); }, false, kNotUtf8, 3},
        HostileCase{"Control", [] { return inVector("\a"); }, false, "invalid Char value 7", 3},
        HostileCase{"BrokenUtf8", [] { return inVector("\xFF"); }, false, "Input is not proper UTF-8", 3},
        HostileCase{"WrongRoot", [] { return "<?xml version='1.0'?>\n<setType/>"s; }, false,
                    "the root element is \"setType\" and not \"vectorType\"", 2},
        HostileCase{"WrongEnd", [] { return "<vectorType>\n</vector>"s; }, false, "tag mismatch", 2},
        HostileCase{"Late", [] { return inVector("a") + repeated("\n", 5000) + "&"; }, false, kBreaksOff,
                    5003}),
    [](const auto& which) { return which.param.name; });

TEST_P(NqXmlHostileDocument, IsRefusedOrReadWithinBounds) {
    NqPrintCapture print;
    NqTestTexts texts;
    const std::string document = GetParam().document();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(NqXmlDocument::readString(document, texts, "bad.xml"), GetParam().result);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_LE(print.lines().size(), 205U);
    ASSERT_EQ(print.lines().empty(), GetParam().line == 0) << print.text();
    const std::string place = " -- file: bad.xml, line: " + std::to_string(GetParam().line) + "\n";
    EXPECT_TRUE(GetParam().line == 0 || std::ranges::any_of(print.lines(),
                                                            [&](const auto& line) {
                                                                return line.second.find(GetParam().message) !=
                                                                           std::string::npos &&
                                                                       line.second.ends_with(place);
                                                            }))
        << print.text();
}

TEST(NqXmlReader, NamesWhatItCannotRead) {
    NqTestTexts texts;
    for (const auto& [fileName, message] :
         {std::pair{"/no/such/file.xml", "cannot be opened: "}, std::pair{"/tmp", "cannot be read: "},
          std::pair{"/dev/null", "the document breaks off"}}) {
        NqPrintCapture print;
        testing::internal::CaptureStderr(); // libxml2 is to say nothing by itself
        EXPECT_FALSE(NqXmlDocument::readFile(fileName, texts));
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_TRUE(print.contains(message)) << print.text();
        EXPECT_TRUE(print.contains(std::string("file: ") + fileName)) << print.text();
        EXPECT_EQ(print.lines().size(), 1U);
    }
}

} // namespace
