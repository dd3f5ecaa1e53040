#include "NqXmlTestClasses.h"
#include "support/NqPrintCapture.h"
#include "support/NqXmlRoundTrip.h"

#include <nqControlCore/endeffector/NqPointEndEffector.h>

#include <gtest/gtest.h>

#include <sstream>

namespace {

constexpr const char* kSquare =
    "<square type='given' other='x'>\n<filteringMode> proportional </filteringMode>"
    "<position>7</position>\n<unheard><size>99</size></unheard>"
    "<offset>8</offset><size>2</size></square>";

TEST(NqXmlCompoundType, ReadsInAnyOrderAndPassesByStrangers) {
    NqPrintCapture print;
    NqTestSquare square;
    ASSERT_TRUE(NqXmlDocument::readString(kSquare, square, "in.xml"));
    EXPECT_TRUE(square.m_Name == "given" && square.m_Side == 2.0 && square.m_Mode == 0U &&
                square.m_Given == 7 && square.m_Old == 8);
    EXPECT_EQ(print.text(),
              "NqXmlReader: element \"unheard\" is not known here and is skipped -- file: in.xml, line: 3\n");

    const std::string document = nqWritten(square);
    EXPECT_EQ(document.find("position"), std::string::npos); // read-only
    EXPECT_EQ(document.find("offset"), std::string::npos);   // legacy
    NqTestSquare read;
    ASSERT_TRUE(NqXmlDocument::readString(document, read));
    EXPECT_FALSE(read == square);
    read.m_Given = 7;
    EXPECT_EQ(read, square);
}

TEST(NqXmlCompoundType, AssignmentKeepsTheNamesOfValues) {
    NqTestSquare square;
    ASSERT_NE(nqWritten(square).find("trapezoidal"), std::string::npos);
    square.m_Mode = NqXmlEnumType<unsigned int>(0U);
    EXPECT_EQ(nqThroughXml(square), square);
    EXPECT_NE(nqWritten(square).find("proportional"), std::string::npos);
    square = NqTestSquare(2.0);
    EXPECT_NE(nqWritten(square).find("trapezoidal"), std::string::npos);

    NqPointEndEffector point;
    nqWritten(point);
    NqEndEffectorRelativeLinkData data;
    data.setRelativeMode(NqEndEffectorRelativeLinkData::relativeModeExternal);
    point.setRelativeLinkData(data);
    NqPointMotionFilter filter;
    filter.setFilteringMode(NqPointMotionFilter::ThreeHalves);
    point.setMotionFilter(filter);
    const std::string document = nqWritten(point);
    EXPECT_NE(document.find("relativeModeExternal"), std::string::npos);
    EXPECT_NE(document.find("threeHalves"), std::string::npos);
    EXPECT_EQ(nqThroughXml(point), point);
}

TEST(NqXmlEnumType, BindsANameAgain) {
    NqXmlEnumType<unsigned int> first(5U), second(5U);
    first.registerEnumeration(5, "five");
    second.registerEnumeration(7, "five");
    second.registerEnumeration(5, "five");
    EXPECT_EQ(second.toText(), "five");
    second.registerEnumeration(7, "five");
    EXPECT_TRUE(first.toText() == "five" && second.toText() == "5");
    EXPECT_TRUE(second.setValueFromString(" five\n") && second == 7U);
}

/// A class that writes its own frame, below NqXmlCompoundType, and one below a concrete class.
class NqPlainObject : public NqXmlCompoundType {
public:
    NqXmlObject* clone() const override { return new NqPlainObject(*this); }
    NqXmlObject* newObject() const override { return new NqPlainObject; }
    bool equality(const NqXmlObject*) const override { return false; }
    const NqToken& token() const override { return NqControlCore::NqSizeToken; }
};
class NqTestTile : public NqXmlConcrete<NqTestTile, NqTestSquare> {
public:
    static const NqToken& classToken() { return NqControlCore::NqColumnToken; }
};

TEST(NqXmlCompoundType, ComparesObjectsOfOneClass) {
    const NqPlainObject plain;
    const NqXmlCompoundType& base = plain;
    EXPECT_TRUE(base == base);
    static_assert(!std::equality_comparable<NqPlainObject>, "a base can't compare what it doesn't know");
    EXPECT_FALSE(NqTestSquare().equality(std::make_unique<NqTestTile>().get()));
    EXPECT_FALSE(NqTestTile().equality(std::make_unique<NqTestSquare>().get()));
    EXPECT_TRUE(NqTestTile().equality(std::make_unique<NqTestTile>().get()));
}

/// Counts the tables that are made for it.
class NqCountedTile : public NqXmlConcrete<NqCountedTile, NqTestTile> {
public:
    static const NqToken& classToken() { return NqControlCore::NqColumnToken; }
    static inline unsigned theTables = 0;

protected:
    NqXmlComponentMap* newComponentMap() const override {
        ++theTables;
        return NqTestTile::newComponentMap();
    }
};

/// Registers a component where others bind names of values.
class NqExtendedTile : public NqXmlConcrete<NqExtendedTile, NqTestTile> {
public:
    bool xmlInit() override {
        registerComponent("extra", &m_Extra);
        return NqTestTile::xmlInit();
    }
    NqXmlBasicType<int> m_Extra;
};

TEST(NqXmlCompoundType, KeepsTablesThatAreKnownOutside) {
    const NqCountedTile tile;
    for (unsigned i = 1; i <= 3; ++i) { // elements and attributes, for each document
        nqWritten(tile);
        EXPECT_EQ(NqCountedTile::theTables, 2 * i);
    }
    const NqXmlComponentMap& map = tile.componentMap();
    const unsigned tables = NqCountedTile::theTables;
    nqWritten(tile);
    EXPECT_EQ(NqCountedTile::theTables, tables);
    EXPECT_EQ(map.begin()->object, &tile.m_Side);

    NqExtendedTile extended;
    for (int i = 7; i < 9; ++i) { // its table is made once, in xmlInit()
        extended.m_Extra = i;
        const std::string document = nqWritten(extended);
        EXPECT_NE(document.find("<extra>" + std::to_string(i) + "</extra>"), std::string::npos);
        extended.m_Extra = 0;
        EXPECT_TRUE(NqXmlDocument::readString(document, extended));
        EXPECT_EQ(extended.m_Extra, i);
    }
}

// What would lose components in silence does not compile; see also NqXmlMisuse.cpp.
template <typename Token>
concept NqNamesAComponent = requires(Token&& token) {
    nqComponent(std::forward<Token>(token), &NqTestSquare::m_Side);
};
static_assert(NqNamesAComponent<const NqToken&>);
static_assert(!NqNamesAComponent<const char*> && !NqNamesAComponent<NqToken>);

TEST(NqXmlCompoundType, LeavesOutDefaultsOnRequest) {
    NqTestSquare square;
    square.m_Mode = 5U; // which has no name
    std::ostringstream stream;
    NqXmlWriter writer("square.xml", stream);
    writer.setHeader(false);
    writer.setWriteDefaultDataFlag(false);
    ASSERT_TRUE(writer.writeStartTag("square") && square.write(writer) && writer.writeEndTag() &&
                writer.flush());
    EXPECT_EQ(stream.str(),
              "<square>\n  <filteringMode xmlns=\"http://nq.example/namespace/ct#\">5</filteringMode>\n"
              "</square>\n");
    NqTestSquare read;
    ASSERT_TRUE(NqXmlDocument::readString(stream.str(), read));
    EXPECT_EQ(read, square);
}

/// An owner whose square is another than a square is by itself.
class NqTestFrame : public NqXmlPersistent<NqTestFrame, NqXmlCompoundType> {
public:
    static const NqToken& classToken() { return NqControlCore::NqFrameToken; }
    NqTestSquare m_Square{3.0};
    NqXmlVectorType<NqTestSquare> m_Squares{NqTestSquare(3.0)};

private:
    friend struct ::NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(nqComponent(NqControlCore::NqSizeToken, &NqTestFrame::m_Square),
                               nqComponent(NqControlCore::NqColumnToken, &NqTestFrame::m_Squares));
    }
};

TEST(NqXmlCompoundType, LeavesOutOnlyWhatTheOwnerHoldsByItself) {
    for (const double side : {1.0, 2.0, 3.0}) {
        NqTestFrame frame;
        frame.m_Square.m_Side = frame.m_Squares[0].m_Side = side;
        std::ostringstream stream;
        NqXmlWriter writer("frame.xml", stream);
        writer.setWriteDefaultDataFlag(false);
        ASSERT_TRUE(writer.writeStartTag(frame.token()) && frame.write(writer) && writer.writeEndTag() &&
                    writer.flush());
        NqTestFrame read;
        ASSERT_TRUE(NqXmlDocument::readString(stream.str(), read));
        EXPECT_EQ(read, frame) << stream.str();
        EXPECT_EQ(stream.str().find("filteringMode"), std::string::npos);
        EXPECT_EQ(stream.str().find("size") == std::string::npos, side == 3.0);
    }
}

} // namespace
