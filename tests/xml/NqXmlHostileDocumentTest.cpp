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
    bool result;
    unsigned line;       ///< of one of the messages; 0 for none at all
    const char* message; ///< in it, with file and line number behind it
    std::string (*document)();
};

class NqXmlHostileDocument : public testing::TestWithParam<HostileCase> {};

const HostileCase kCases[] = {
    {"Bomb", false, 2, kRefused, bomb},
    {"External", false, 1, kRefused, [] { return "<!DOCTYPE a SYSTEM 'http://nq.example/a.dtd'><a/>"s; }},
    {"BehindMuch", false, 4, kRefused,
     [] { return "\n<!--" + nqRepeated("' -> <!DOCTYPE ", 997) + "-->\n<?p <?>\n<!DOCTYPE a>"; }},
    {"InOtherEncoding", false, 1, kNotUtf8, [] { return "\xFF\xFE" + inTwoBytes("<!DOCTYPE a>"); }},
    {"InTwoBytes", false, 1, kNotUtf8, [] { return inTwoBytes("<!DOCTYPE a>"); }},
    {"InSevenBits", false, 1, "Document is empty",
     [] { return "<?xml version='1.0' encoding='UTF-7'?>+ADwAIQ-DOCTYPE a><a/>"s; }},
    {"Undefined", false, 3, "Entity 'unheard' not defined", [] { return inVector("&unheard;"); }},
    {"InText", true, 0, "", [] { return inVector("<![CDATA[<!DOCTYPE ]]><!-- <!DOCTYPE -->"); }},
    {"Deep255", true, 1, "element \"a\" is not known here", [] { return nested(255); }},
    {"Deep256", false, 1, kTooDeep, [] { return nested(256); }},
    {"Deep100000", false, 1, kTooDeep, [] { return nqRepeated("<vectorType>", 100'000); }},
    {"HugeText", false, 3, "huge text node", [] { return inVector(std::string(11'000'000, 'x')); }},
    {"HugeAttribute", false, 1, "Huge input lookup",
     [] { return "<a b='" + std::string(11'000'000, '1') + "'/>"; }},
    {"Attributes", false, 1, "too many attributes in one tag", manyAttributes},
    {"Strangers", true, 200, "element \"other\" is not known here and is skipped",
     [] { return "<vectorType>" + nqRepeated("<other/>\n", 20'000) + "</vectorType>"; }},
    {"Empty", false, 1, kBreaksOff, [] { return ""s; }},
    {"Nul", false, 3, kNotUtf8, [] { return inVector("a\0b"s); }},
    {"Control", false, 3, "invalid Char value 7", [] { return inVector("\a"); }},
    {"BrokenUtf8", false, 3, "Input is not proper UTF-8", [] { return inVector("\xFF"); }},
    {"WrongRoot", false, 2, "the root element is \"setType\" and not \"vectorType\"",
     [] { return "<?xml version='1.0'?>\n<setType/>"s; }},
    {"WrongEnd", false, 2, "tag mismatch", [] { return "<vectorType>\n</vector>"s; }},
    {"Late", false, 5003, kBreaksOff, [] { return inVector("a") + nqRepeated("\n", 5000) + "&"; }}};

INSTANTIATE_TEST_SUITE_P(Documents, NqXmlHostileDocument, testing::ValuesIn(kCases), nqCaseName);

TEST_P(NqXmlHostileDocument, IsRefusedOrReadWithinBounds) {
    const auto& [name, result, line, message, document] = GetParam();
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
