#include "support/NqTesting.h"

#include <nqControlCore/endeffector/NqEndEffectorMap.h>
#include <nqControlCore/endeffector/NqEndEffectorTypes.h>
#include <nqControlCore/endeffector/NqEndEffectorVector.h>

namespace {

using RelativeData = NqEndEffectorRelativeLinkData;

TEST(NqRelativeLinkData, OldFilesGiveTheModeByAFlagThatIsForgotten) {
    const std::pair<const char*, RelativeData::RelativeMode> cases[] = {
        {"<isRelativeLink>true</isRelativeLink>", RelativeData::relativeModeInternal},
        {"<isRelativeLink>false</isRelativeLink>", RelativeData::relativeModeNone},
        {"<isRelativeLink>true</isRelativeLink><relativeMode>relativeModeExternal</relativeMode>",
         RelativeData::relativeModeExternal},
        {"<relativeMode>relativeModeInternal</relativeMode>", RelativeData::relativeModeInternal}};
    for (const auto& [fields, mode] : cases) {
        RelativeData data, same;
        ASSERT_TRUE(NqXmlDocument::readString(std::string("<relativeLinkData>") + fields +
                                                  "<relativeLinkId>wrist</relativeLinkId></relativeLinkData>",
                                              data));
        same.setRelativeMode(mode);
        same.setRelativeLinkID("wrist");
        EXPECT_TRUE(data.relativeMode() == mode && data == same) << fields;
        EXPECT_EQ(nqWritten(data).find("isRelativeLink"), std::string::npos) << fields;
        same.setRelativeManipulatorIndex(1);
        EXPECT_FALSE(data == same);
    }
}

TEST(NqEndEffectorCollections, MakeAndHoldEveryType) {
    NqEndEffectorVector vector;
    NqEndEffectorMap map;
    NqEndEffectorTypes::forEach([&]<typename EndEffector>() {
        const NqToken& token = EndEffector::classToken();
        const std::unique_ptr<NqEndEffector> made(vector.endEffectorFromToken(token));
        const std::unique_ptr<NqEndEffector> byMap(map.endEffectorFromToken(token));
        ASSERT_TRUE(dynamic_cast<EndEffector*>(made.get()) && byMap && byMap->equality(made.get()));
        made->setLinkIdentifier("hand");
        map.add(std::string(token.localName()), *made);
    });
    EXPECT_EQ(vector.endEffectorFromToken("pointMotionFilter"), nullptr);
    EXPECT_EQ(map.endEffectorFromToken("nothing"), nullptr);
    EXPECT_TRUE(nqThroughXml(map) == map);
}

TEST(NqEndEffectorCollections, SetRelativeLinkDataWhereThereIsAnElement) {
    RelativeData data;
    data.setRelativeMode(RelativeData::relativeModeInternal);
    data.setRelativeLinkID("chest");
    NqEndEffectorVector vector;
    vector.pushBack(NqPointEndEffector());
    EXPECT_TRUE(vector.setRelativeLinkData(0, data) && vector[0]->relativeLinkData() == data);
    NqEndEffectorMap map;
    map.add(std::string("hand"), NqPointEndEffector());
    EXPECT_TRUE(map.setRelativeLinkData(std::string("hand"), data));
    NqPrintCapture capture;
    EXPECT_FALSE(vector.setRelativeLinkData(1, data));
    EXPECT_FALSE(map.setRelativeLinkData(std::string("foot"), data));
    EXPECT_EQ(capture.text(), "");
}

} // namespace
