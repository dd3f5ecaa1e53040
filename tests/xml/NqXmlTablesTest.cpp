#include "NqXmlTestClasses.h"
#include "support/NqXmlRoundTrip.h"

#include <nqControlCore/foundation/xml/NqXmlWriter.h>

#include <gtest/gtest.h>

#include <sstream>

namespace {

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

TEST(NqXmlWriter, KeepsATallyOfLinks) {
    std::ostringstream stream;
    NqXmlWriter writer("links.xml", stream);
    EXPECT_FALSE(writer.schemaWriter());
    writer.setLinkTotal(3);
    writer.incrementLinkCount();
    writer.incrementLinkCount();
    EXPECT_TRUE(writer.linkCount() == 2 && writer.linkTotal() == 3);
    writer.resetLinkCount();
    EXPECT_TRUE(writer.linkCount() == 0 && writer.linkTotal() == 3);
}

} // namespace
