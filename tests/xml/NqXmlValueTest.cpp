#include "NqXmlTestClasses.h"
#include "matrix/NqArrayTesting.h"

#include <nqControlCore/foundation/text/NqTextConversion.h>

#include <bit>

namespace {

TEST(NqXmlValue, RealsKeepTheirBits) {
    using Limits = std::numeric_limits<double>;
    NqXmlRealVector reals{0.0,       -0.0, Limits::denorm_min(), -Limits::min(), Limits::max(), INFINITY,
                          -INFINITY, 0.1};
    std::mt19937_64 random(7);
    for (int i = 0; i < 2000; ++i) {
        const auto real = std::bit_cast<double>(random());
        reals.pushBack(real == real ? real : 1.0);
    }
    NqTestReals single;
    std::ranges::for_each(reals, [&](double real) { single.pushBack(real); });
    const NqTestReals entries = nqThroughXml(single);
    EXPECT_TRUE(nqSameBits(nqThroughXml(reals).values(), reals.values()));
    EXPECT_TRUE(nqSameBits({entries.begin(), entries.end()}, reals.values()));
    const std::string zeros(400, '0');
    EXPECT_EQ(NqSTRING2DOUBLE("-0.0001e400"), -Limits::infinity());
    EXPECT_EQ(NqSTRING2DOUBLE("1" + zeros + "e-10"), Limits::infinity());
    EXPECT_EQ(NqSTRING2DOUBLE("0." + zeros + "1e10"), 0.0);
    EXPECT_TRUE(std::isnan(nqThroughXml(NqXmlBasicType<double>(Limits::quiet_NaN())).value()));
}

TEST(NqXmlValue, TextsComeBackFromElementsAttributesAndKeys) {
    for (const char* text :
         {"", " ", "  two  blanks  ", "<a href=\"x\">&amp;</a>", "it's", "line\nbreak", "\r\n\t", "]]>",
          "gr\xC3\xBC\xC3\x9F \xE2\x9C\x93 \xF0\x9F\xA6\xBE", "<!DOCTYPE x [", "&#65;"}) {
        EXPECT_EQ(nqThroughXml(NqTestTexts{text})[0], text);
        NqTestShapeMap map;
        NqTestSquare square;
        square.m_Name = text;
        map.add(text, square);
        EXPECT_EQ(nqThroughXml(map), map) << text;
    }
}

TEST(NqXmlValue, WholeNumbersMayHaveASign) {
    const auto expectRead = [](auto expected, const char* text) {
        NqXmlBasicType<decltype(expected)> value;
        EXPECT_TRUE(value.setValueFromString(text)) << text;
        EXPECT_EQ(value.value(), expected) << text;
    };
    expectRead(5, " +5 ");
    expectRead(std::numeric_limits<int>::min(), "-2147483648");
    expectRead(4294967295U, "+4294967295");
    expectRead(std::uint16_t{65535}, "65535");
    EXPECT_TRUE(NqSchemaValidator(NqXmlBasicType<int>()).accepts("<value>+5</value>"));
}

TEST(NqXmlValue, EveryRealIsAKey) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    NqXmlMapType<NqXmlBasicType<double>, NqXmlBasicType<int>> map;
    for (const double key : {2.0, nan, 1.0, nan, 3.0}) {
        map.add(key, static_cast<int>(map.size()));
    }
    NqXmlBasicType<int> value;
    ASSERT_EQ(map.size(), 4U);
    EXPECT_TRUE(map.lookup(nan, value) && value == 3);
    EXPECT_TRUE(map.lookup(3.0, value) && value == 3);
    EXPECT_EQ(nqWritten(nqThroughXml(map)), nqWritten(map));
}

TEST(NqXmlValue, BadTextsFailTheReadAndKeepTheValue) {
    const auto real = made(NqXmlBasicType<double>(4.0)), whole = made(NqXmlBasicType<int>(4));
    const std::pair<std::shared_ptr<NqXmlObject>, std::string> cases[] = {
        {real, "1.5x"},
        {real, " "},
        {real, "1,5"},
        {real, "+-5"},
        {real, "nan(ind)"},
        {whole, "+-5"},
        {whole, "+"},
        {whole, "2147483648"},
        {made(NqXmlBasicType<unsigned>(4U)), "-1"},
        {made(NqXmlBasicType<unsigned short>(std::uint16_t{4})), "65536"},
        {made(NqXmlBasicType<bool>(true)), "yes"},
        {made(NqXmlRealVector(3)), "1 2 three"},
        {made(NqXmlVector(NqVector(1, 2, 3))), "1 2"},
        {made(NqXmlOrientation()), "1 2 3 4 5"},
        {made(NqXmlEnumType<unsigned>(2U)), "sideways"}};
    for (const auto& [object, text] : cases) {
        NqPrintCapture print;
        const std::unique_ptr<NqXmlObject> before(object->clone());
        EXPECT_FALSE(NqXmlDocument::readString("<value>\n" + text + "</value>", *object, "bad.xml")) << text;
        EXPECT_TRUE(object->equality(before.get())) << text;
        EXPECT_TRUE(print.contains(text)) << print.text();
        EXPECT_TRUE(print.contains("is no value of element \"value\" -- file: bad.xml, line: 1"))
            << print.text();
    }
}

TEST(NqXmlValue, TextMayStandInPieces) {
    NqTestTexts texts;
    NqPrintCapture print;
    ASSERT_TRUE(NqXmlDocument::readString(
        "<?xml version='1.0'?><!-- note --><v:vectorType xmlns:v='urn:v' count='2'><group><?note?>"
        "<value>a<!-- note -->&lt;&#65;<![CDATA[<b>&]]><?note?>c</value><value/></group></v:vectorType>",
        texts));
    EXPECT_EQ(texts, (NqTestTexts{"a<A<b>&c", ""}));
    EXPECT_EQ(print.text(), "");
}

/// What is written with a writer that each test drives by hand, and what the writer's last operation gives.
std::string driven(const std::function<bool(NqXmlWriter&)>& drive, bool expected) {
    std::ostringstream stream;
    {
        NqXmlWriter writer("out.xml", stream);
        writer.setIndent(false);
        EXPECT_EQ(drive(writer), expected);
        EXPECT_EQ(writer.flush(), expected);
    }
    return stream.str();
}

TEST(NqXmlWriter, WritesWhatItIsTold) {
    const auto elements = [](NqXmlWriter& writer) {
        writer.setStyleSheet("a.xsl");
        writer.setSchemaLocation("urn:a a.xsd");
        writer.setLanguageSelection("de");
        const bool begun = writer.header(NqToken("urn:a#") + "a", "note");
        writer.setAttributeName("b");
        writer.incrementLinkCount();
        return begun && writer.linkCount() == 1 && writer.data("1 < 2") && writer.tab(1) &&
               writer.data("c") && writer.writeStartTagUsingParentNamespace(NqToken("urn:d#") + "d");
    };
    EXPECT_EQ(driven(elements, true),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<?xml-stylesheet type=\"text/xsl\" "
              "href=\"a.xsl\"?><!--note--><a xmlns=\"urn:a#\" "
              "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:schemaLocation=\"urn:a a.xsd\" "
              "xml:lang=\"de\" b=\"1 &lt; 2\">  c<d/></a>\n");
    const auto columns = [](NqXmlWriter& writer) {
        writer.setHeader(false);
        writer.setSchemaInstance(true);
        writer.setNumOfContentColumns(2);
        return writer.writeStartTag("a") && NqXmlRealVector(5, 0.5).write(writer) && writer.writeEndTag();
    };
    EXPECT_EQ(driven(columns, true),
              "<a xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">0.5 0.5\n0.5 0.5\n0.5</a>\n");
}

TEST(NqXmlWriter, IsFalseOnceAnythingFailed) {
    const std::pair<std::string, std::function<bool(NqXmlWriter&)>> cases[] = {
        {"a comment holds", [](auto& writer) { return writer.header("a", "b -- c"); }},
        {"a comment holds", [](auto& writer) { return writer.header("a", "b-"); }},
        {"one root", [](auto& w) { return w.header("a", "") && w.writeEndTag() && w.writeStartTag("b"); }},
        {"within the root", [](auto& writer) { return writer.content("a"); }},
        {"within the root", [](auto& w) { return w.header("a", "") && w.writeEndTag() && w.data(" "); }},
        {"a name is none", [](auto& writer) { return writer.writeStartTag("a b"); }},
        {"a name is none", [](auto& writer) { return writer.writeStartTag("a:b"); }},
        {"a name is none",
         [](auto& writer) {
             writer.setAttributeName("1");
             return writer.writeStartTag("a") && writer.data("b");
         }},
        {"", [](auto& writer) { return writer.writeEndTag(); }},
        {"", [](auto& writer) { return writer.writeStartTag("a") && writer.attributeValue("b"); }}};
    for (const auto& [message, drive] : cases) {
        NqPrintCapture print;
        driven(drive, false);
        EXPECT_TRUE(print.contains(message)) << message << ": " << print.text();
        EXPECT_EQ(print.contains("-- file: out.xml"), !message.empty());
    }
}

TEST(NqXmlWriter, RefusesWhatXmlCannotHold) {
    for (const char* text : {"\a", "\xC3", "\xED\xA0\x80", "\xEF\xBF\xBF"}) {
        NqPrintCapture print;
        std::string document = "kept";
        EXPECT_FALSE(NqXmlDocument::writeString(document, NqTestTexts{"fine", text}));
        EXPECT_TRUE(print.contains("a text holds characters that XML cannot") && document == "kept");
    }
}

} // namespace
