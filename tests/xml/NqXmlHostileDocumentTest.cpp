#include "NqXmlTestClasses.h"

#include <chrono>

namespace {

using namespace std::string_literals;

std::string inVector(const std::string& value) {
    return "<vectorType count='1'>\n<group>\n<value>" + value + "</value></group></vectorType>";
}

std::string nested(std::size_t depth) {
    return "<vectorType count='0'>" + nqRepeated("<a>", depth) + nqRepeated("</a>", depth) + "</vectorType>";
}

/// Entities each of which names the one before ten times over.
std::string bomb() {
    std::string declarations = "<!ENTITY e0 'lol'>";
    for (int i = 1; i < 12; ++i) {
        declarations += "\n<!ENTITY e" + std::to_string(i) + " '" +
                        nqRepeated("&e" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    return "<?xml version='1.0'?>\n<!DOCTYPE vectorType [" + declarations + "]>" + inVector("&e11;");
}

std::string manyAttributes() {
    std::string tag = "<vectorType";
    for (int i = 0; i < 50'000; ++i) {
        tag += " a" + std::to_string(i) + "=\">\"";
    }
    return tag + "/>";
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
constexpr const char* kTooDeep = "nested deeper than 256 elements";

struct HostileCase {
    const char* name;
    std::string (*document)();
    unsigned line;       ///< of one of the messages; 0 for none at all
    const char* message; ///< in it, with file and line number behind it
    bool result = false;
};

class NqXmlHostileDocument : public testing::TestWithParam<HostileCase> {};

INSTANTIATE_TEST_SUITE_P(
    Documents, NqXmlHostileDocument,
    testing::Values(
        HostileCase{"Bomb", bomb, 2, kRefused},
        HostileCase{"External", [] { return "<!DOCTYPE a SYSTEM 'http://nq.example/a.dtd'><a/>"s; }, 1,
                    kRefused},
        HostileCase{
            "BehindMuch",
            [] { return "\n<!--" + nqRepeated("' -> <!DOCTYPE ", 997) + "-->\n<?p <?>\n<!DOCTYPE a>"; }, 4,
            kRefused},
        HostileCase{"InOtherEncoding", [] { return "\xFF\xFE" + inTwoBytes("<!DOCTYPE a>"); }, 1, kNotUtf8},
        HostileCase{"InTwoBytes", [] { return inTwoBytes("<!DOCTYPE a>"); }, 1, kNotUtf8},
        HostileCase{"InSevenBits",
                    [] { return "<?xml version='1.0' encoding='UTF-7'?>+ADwAIQ-DOCTYPE a><a/>"s; }, 1,
                    "Document is empty"},
        HostileCase{"Undefined", [] { return inVector("&unheard;"); }, 3, "Entity 'unheard' not defined"},
        HostileCase{"InText", [] { return inVector("<![CDATA[<!DOCTYPE ]]><!-- <!DOCTYPE -->"); }, 0, "",
                    true},
        HostileCase{"Deep255", [] { return nested(255); }, 1, "element \"a\" is not known here", true},
        HostileCase{"Deep256", [] { return nested(256); }, 1, kTooDeep},
        HostileCase{"Deep100000", [] { return nqRepeated("<vectorType>", 100'000); }, 1, kTooDeep},
        HostileCase{"HugeText", [] { return inVector(std::string(11'000'000, 'x')); }, 3, "huge text node"},
        HostileCase{"HugeAttribute", [] { return "<a b='" + std::string(11'000'000, '1') + "'/>"; }, 1,
                    "Huge input lookup"},
        HostileCase{"Attributes", manyAttributes, 1, "too many attributes in one tag"},
        HostileCase{"Strangers",
                    [] { return "<vectorType>" + nqRepeated("<other/>\n", 20'000) + "</vectorType>"; }, 200,
                    "element \"other\" is not known here and is skipped", true},
        HostileCase{"Empty", [] { return ""s; }, 1, kBreaksOff},
        HostileCase{"Nul", [] { return inVector("a\0b"s); }, 3, kNotUtf8},
        HostileCase{"Control", [] { return inVector("\a"); }, 3, "invalid Char value 7"},
        HostileCase{"BrokenUtf8", [] { return inVector("\xFF"); }, 3, "Input is not proper UTF-8"},
        HostileCase{"WrongRoot", [] { return "<?xml version='1.0'?>\n<setType/>"s; }, 2,
                    "the root element is \"setType\" and not \"vectorType\""},
        HostileCase{"WrongEnd", [] { return "<vectorType>\n</vector>"s; }, 2, "tag mismatch"},
        HostileCase{"Late", [] { return inVector("a") + nqRepeated("\n", 5000) + "&"; }, 5003, kBreaksOff}),
    [](const auto& which) { return which.param.name; });

TEST_P(NqXmlHostileDocument, IsRefusedOrReadWithinBounds) {
    const auto& [name, document, line, message, result] = GetParam();
    NqPrintCapture print;
    NqTestTexts texts;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(NqXmlDocument::readString(document(), texts, "bad.xml"), result);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_LE(print.lines().size(), 205U);
    bool isFound = line == 0 && print.lines().empty();
    const std::string place = " -- file: bad.xml, line: " + std::to_string(line) + "\n";
    for (const auto& [type, text] : print.lines()) {
        isFound = isFound || (text.find(message) != std::string::npos && text.ends_with(place));
    }
    EXPECT_TRUE(isFound) << print.text();
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
        EXPECT_TRUE(print.contains(message) && print.contains(std::string("file: ") + fileName))
            << print.text();
        EXPECT_EQ(print.lines().size(), 1U);
    }
}

} // namespace
