#include "NqXmlTestClasses.h"

namespace {

/// The element of an object without what is as by default.
std::string withoutDefaults(const NqXmlObject& object) {
    std::ostringstream stream;
    NqXmlWriter writer("changes.xml", stream);
    writer.setHeader(false);
    writer.setWriteDefaultDataFlag(false);
    EXPECT_TRUE(writer.writeStartTag(object.token()) && object.write(writer) && writer.writeEndTag() &&
                writer.flush());
    return stream.str();
}

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
    NqXmlBasicType<double> side;
    side = square.m_Side;
    EXPECT_TRUE(side.specified() && !NqTestSquare().m_Side.specified());
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

// What would lose components in silence does not compile; see also NqXmlMisuse.cpp.
template <typename Token>
concept NqNamesAComponent = requires(Token&& token) {
    nqComponent(std::forward<Token>(token), &NqTestSquare::m_Side);
};
static_assert(NqNamesAComponent<const NqToken&>);
static_assert(!NqNamesAComponent<const char*> && !NqNamesAComponent<NqToken>);

TEST(NqXmlCompoundType, LeavesOutDefaultsOnRequest) {
    NqTestSquare square, read;
    square.m_Mode = 5U; // which has no name
    const std::string document = withoutDefaults(square);
    EXPECT_EQ(document,
              "<square xmlns=\"http://nq.example/namespace/ct#\">\n  <filteringMode>5</filteringMode>\n"
              "</square>\n");
    EXPECT_TRUE(NqXmlDocument::readString(document, read) && read == square);
    for (const double side : {1.0, 2.0, 3.0}) { // the last is what the owner holds by itself
        NqTestHolder holder, readHolder;
        holder.m_Square.m_Side = holder.m_Squares[0].m_Side = side;
        const std::string text = withoutDefaults(holder);
        EXPECT_TRUE(NqXmlDocument::readString(text, readHolder) && readHolder == holder) << text;
        EXPECT_EQ(text.find("filteringMode"), std::string::npos);
        EXPECT_EQ(text.find("size") == std::string::npos, side == 3.0) << text;
    }
}

/// A class that adds to its tables by hand.
struct NqTestTagged : NqTestSquare {
    using NqTestSquare::isReadOnlyAttribute;
    using NqTestSquare::isReadOnlyComponent;
    void registerComponents() override {
        NqTestSquare::registerComponents();
        registerAttributeComponentReadOnly(NqXml::NqCountToken, &m_Tag);
    }
    NqXmlBasicType<int> m_Tag{0};
};

TEST(NqXmlCompoundType, ReadsWhatItDoesNotWrite) {
    NqTestTagged tagged;
    ASSERT_TRUE(NqXmlDocument::readString("<square type='given' count='7'/>", tagged));
    EXPECT_TRUE(tagged.m_Tag == 7 && tagged.m_Name == "given");
    EXPECT_EQ(nqWritten(tagged).find("count"), std::string::npos);

    EXPECT_TRUE(tagged.hasChildren() && tagged.hasAttributes());
    EXPECT_TRUE(tagged.isReadOnlyAttribute(NqXml::NqCountToken));
    EXPECT_TRUE(tagged.isReadOnlyComponent(NqControlCore::NqPositionToken));
    EXPECT_FALSE(tagged.isReadOnlyAttribute(NqControlCore::NqTypeToken));
    EXPECT_FALSE(tagged.isReadOnlyComponent(NqControlCore::NqSizeToken));
    tagged.specialDescriptorMap()[NqXml::NqCountToken] = 4;
    nqWritten(tagged); // tables that were asked for stay
    EXPECT_EQ(tagged.specialDescriptorMap().at(NqXml::NqCountToken), 4U);
}

TEST(NqXmlCompoundType, AssignmentKeepsTheNamesOfValues) {
    NqTestSquare square;
    ASSERT_NE(nqWritten(square).find("trapezoidal"), std::string::npos);
    square.m_Mode = NqXmlEnumType<unsigned int>(0U);
    EXPECT_EQ(nqThroughXml(square), square);
    EXPECT_NE(nqWritten(square).find("proportional"), std::string::npos);
    square = NqTestSquare(2.0);
    EXPECT_NE(nqWritten(square).find("trapezoidal"), std::string::npos);
}

/// Below a concrete class.
class NqTestTile : public NqXmlConcrete<NqTestTile, NqTestSquare> {
public:
    static const NqToken& classToken() { return NqControlCore::NqColumnToken; }
};

TEST(NqXmlCompoundType, ComparesObjectsOfOneClass) {
    const NqTestSquare square;
    const NqTestTile tile;
    EXPECT_FALSE(square.equality(&tile) || tile.equality(&square));
    EXPECT_TRUE(tile.equality(std::make_unique<NqTestTile>().get()));
}

} // namespace
