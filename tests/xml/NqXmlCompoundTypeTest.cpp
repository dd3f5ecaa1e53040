#include "NqXmlTestClasses.h"
#include "support/NqPrintCapture.h"
#include "support/NqXmlRoundTrip.h"

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

} // namespace
