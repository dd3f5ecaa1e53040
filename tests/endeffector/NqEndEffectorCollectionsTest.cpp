#include "support/NqPrintCapture.h"

#include <nqControlCore/endeffector/NqEndEffectorMap.h>
#include <nqControlCore/endeffector/NqEndEffectorTypes.h>
#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using RelativeData = NqEndEffectorRelativeLinkData;

struct RelativeCase {
    const char* text;
    RelativeData::RelativeMode mode;
};

class NqRelativeLinkReading : public testing::TestWithParam<RelativeCase> {};

INSTANTIATE_TEST_SUITE_P(
    OldAndNewFiles, NqRelativeLinkReading,
    testing::Values(RelativeCase{"<isRelativeLink>true</isRelativeLink>", RelativeData::relativeModeInternal},
                    RelativeCase{"<isRelativeLink>false</isRelativeLink>", RelativeData::relativeModeNone},
                    RelativeCase{"<isRelativeLink>true</isRelativeLink><relativeMode>relativeModeExternal"
                                 "</relativeMode>",
                                 RelativeData::relativeModeExternal},
                    RelativeCase{"<relativeMode>relativeModeInternal</relativeMode>",
                                 RelativeData::relativeModeInternal}));

TEST_P(NqRelativeLinkReading, GivesTheModeAndForgetsTheFlag) {
    RelativeData data;
    const std::string text = std::string("<relativeLinkData>") + GetParam().text +
                             "<relativeLinkId>wrist</relativeLinkId></relativeLinkData>";
    ASSERT_TRUE(NqXmlDocument::readString(text, data));
    EXPECT_EQ(data.relativeMode(), GetParam().mode);

    RelativeData same;
    same.setRelativeMode(GetParam().mode);
    same.setRelativeLinkID("wrist");
    EXPECT_TRUE(data == same);
    std::string written;
    ASSERT_TRUE(NqXmlDocument::writeString(written, data));
    EXPECT_EQ(written.find("isRelativeLink"), std::string::npos);
    same.setRelativeManipulatorIndex(1);
    EXPECT_FALSE(data == same);
}

TEST(NqEndEffectorCollections, HoldReadAndWriteEveryType) {
    NqEndEffectorVector vector;
    NqEndEffectorMap map;
    NqEndEffectorTypes::forEach([&]<typename EndEffector>() {
        const std::unique_ptr<NqEndEffector> made(vector.endEffectorFromToken(EndEffector::classToken()));
        ASSERT_TRUE(made && dynamic_cast<EndEffector*>(made.get()));
        const std::unique_ptr<NqEndEffector> byMap(map.endEffectorFromToken(EndEffector::classToken()));
        ASSERT_TRUE(byMap && byMap->equality(made.get()));
        made->setLinkIdentifier("hand");
        vector.pushBack(*made);
        map.add(std::string(EndEffector::classToken().localName()), *made);
    });
    EXPECT_EQ(vector.endEffectorFromToken("pointMotionFilter"), nullptr);
    EXPECT_EQ(map.endEffectorFromToken("nothing"), nullptr);

    const auto expectRoundTrip = [](const auto& written) {
        std::string text;
        ASSERT_TRUE(NqXmlDocument::writeString(text, written));
        std::remove_cvref_t<decltype(written)> read;
        ASSERT_TRUE(NqXmlDocument::readString(text, read));
        EXPECT_TRUE(read == written);
    };
    expectRoundTrip(vector);
    expectRoundTrip(map);
}

TEST(NqEndEffectorCollections, SetRelativeLinkDataWhereThereIsAnElement) {
    RelativeData data;
    data.setRelativeMode(RelativeData::relativeModeInternal);
    data.setRelativeLinkID("chest");
    NqPrintCapture capture;
    NqEndEffectorVector vector;
    vector.pushBack(NqPointEndEffector());
    EXPECT_TRUE(vector.setRelativeLinkData(0, data));
    EXPECT_FALSE(vector.setRelativeLinkData(1, data));
    EXPECT_TRUE(vector[0]->relativeLinkData() == data);
    NqEndEffectorMap map;
    map.add(std::string("hand"), NqPointEndEffector());
    EXPECT_TRUE(map.setRelativeLinkData(std::string("hand"), data));
    EXPECT_FALSE(map.setRelativeLinkData(std::string("foot"), data));
    EXPECT_EQ(capture.text(), "");
}

} // namespace
