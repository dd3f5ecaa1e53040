#include "NqXmlTestClasses.h"
#include "matrix/NqArrayTesting.h"
#include "support/NqPrintCapture.h"
#include "support/NqXmlRoundTrip.h"

#include <nqControlCore/foundation/text/NqTextConversion.h>

#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <random>
#include <sstream>

namespace {

TEST(NqXmlValue, RealsKeepTheirBits) {
    using Limits = std::numeric_limits<double>;
    NqXmlRealVector reals{0.0,
                          -0.0,
                          Limits::denorm_min(),
                          -Limits::min(),
                          Limits::max(),
                          Limits::infinity(),
                          -Limits::infinity(),
                          0.1};
    std::mt19937_64 random(7);
    for (int i = 0; i < 2000; ++i) {
        const auto real = std::bit_cast<double>(random());
        reals.pushBack(real == real ? real : 1.0);
    }
    NqTestReals single;
    for (const double real : reals) {
        single.pushBack(real);
    }
    const NqXmlRealVector list = nqThroughXml(reals);
    const NqTestReals entries = nqThroughXml(single);
    ASSERT_EQ(entries.size(), reals.size());
    EXPECT_TRUE(nqSameBits(list.values(), reals.values()));
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

struct BadText {
    const char* what;
    std::shared_ptr<NqXmlObject> object;
    const char* text;
};

class NqXmlBadText : public testing::TestWithParam<BadText> {};

INSTANTIATE_TEST_SUITE_P(
    Kinds, NqXmlBadText,
    testing::Values(BadText{"real", std::make_shared<NqXmlBasicType<double>>(4.0), "1.5x"},
                    BadText{"empty real", std::make_shared<NqXmlBasicType<double>>(4.0), " "},
                    BadText{"comma", std::make_shared<NqXmlBasicType<double>>(4.0), "1,5"},
                    BadText{"int", std::make_shared<NqXmlBasicType<int>>(4), "2147483648"},
                    BadText{"unsigned", std::make_shared<NqXmlBasicType<unsigned>>(4U), "-1"},
                    BadText{"short", std::make_shared<NqXmlBasicType<unsigned short>>(std::uint16_t{4}),
                            "65536"},
                    BadText{"bool", std::make_shared<NqXmlBasicType<bool>>(true), "yes"},
                    BadText{"list", std::make_shared<NqXmlRealVector>(3), "1 2 three"},
                    BadText{"vector", std::make_shared<NqXmlVector>(NqVector(1, 2, 3)), "1 2"},
                    BadText{"orientation", std::make_shared<NqXmlOrientation>(), "1 2 3 4 5"},
                    BadText{"name", std::make_shared<NqXmlEnumType<unsigned>>(2U), "sideways"}));

TEST_P(NqXmlBadText, FailsTheReadAndKeepsTheValue) {
    NqPrintCapture print;
    const std::unique_ptr<NqXmlObject> before(GetParam().object->clone());
    EXPECT_FALSE(NqXmlDocument::readString("<value>\n" + std::string(GetParam().text) + "</value>",
                                           *GetParam().object, "bad.xml"));
    EXPECT_TRUE(GetParam().object->equality(before.get()));
    EXPECT_TRUE(print.contains(GetParam().text)) << print.text();
    EXPECT_TRUE(print.contains("is no value of element \"value\" -- file: bad.xml, line: 1")) << print.text();
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

TEST(NqXmlWriter, RefusesWhatXmlCannotHold) {
    for (const char* text : {"\a", "\xC3", "\xED\xA0\x80", "\xEF\xBF\xBF"}) {
        NqPrintCapture print;
        std::string document = "kept";
        EXPECT_FALSE(NqXmlDocument::writeString(document, NqTestTexts{"fine", text}));
        EXPECT_TRUE(print.contains("a text holds characters that XML cannot"));
        EXPECT_EQ(document, "kept");
    }
}

} // namespace
