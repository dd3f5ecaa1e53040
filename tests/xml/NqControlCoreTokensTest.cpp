#include "support/NqTesting.h"

#include <nqControlCore/xml/NqControlCoreTokens.h>

#include <nqControlCore/endeffector/NqEndEffectorMap.h>

#include <regex>

namespace {

using namespace NqControlCore;

/// Constants follow the naming rule, and the names are those of the files that exist.
TEST(NqControlCoreTokens, AreTheWholeVocabulary) {
    const std::map<std::string, std::string> exceptions = {
        {"CoreResult", "coreResultToken"},
        {"ManipulatorEndEffectorVelocity", "manipulatorEndEffectorVelocityToken"},
        {"GeneralPlacements", "generalPlamements"},
        {"LinkLabels", "jointLabels"},
        {"LinkWeights", "jointWeights"},
        {"RCMEndEffector", "rcmEndEffector"},
        {"TriggerLinkLabel", "triggerLink"}};
    const std::string header = nqContentOf(nqHeaderFile("/xml/NqControlCoreTokens.h"));
    const std::regex constant("NqToken Nq(\\w+)Token =\\s+ns \\+ \"(\\w+)\";");
    std::string names;
    for (std::sregex_iterator each(header.begin(), header.end(), constant), end; each != end; ++each) {
        std::string byRule = (*each)[1];
        const auto exception = exceptions.find(byRule);
        byRule[0] = static_cast<char>(byRule[0] - 'A' + 'a');
        EXPECT_EQ((*each)[2], exception == exceptions.end() ? byRule : exception->second);
        names += (*each)[2].str() + "\n";
    }
    EXPECT_EQ(names, nqContentOf(nqGoldenFile("/vocabulary.txt")));
    EXPECT_EQ(NqEndEffectorMap().token(), NqEndEffectorMapToken);
    EXPECT_EQ(NqLinkLabelsToken.token(), "http://nq.example/namespace/ct#jointLabels");
    EXPECT_FALSE(NqOneNormToken == ns + "oneNorm" || NqTwoNormToken == ns + "twoNorm");
    EXPECT_EQ(NqOneNormToken.token() + NqTwoNormToken.token() + NqInfinityNormToken.token(),
              "oneNormtwoNorminfinityNorm");
}

// Names of another module, made from the namespace, are there before anything else.
constinit const NqToken kMine = ns + "mine";
const std::string kMineText = kMine.token();
static_assert(NqGainToken.localName() == "gain" && NqGainToken.namespaceUri() == ns.localName());

TEST(NqToken, OwnsWhatIsNoConstant) {
    EXPECT_EQ(kMineText, "http://nq.example/namespace/ct#mine");
    EXPECT_EQ(NqToken(kMine).localName().data(), kMine.localName().data());
    std::string name = "late in the program, and too long to be kept in place";
    const std::string before = name;
    const NqToken late = NqToken(kMine + "/") + name.c_str();
    NqToken copy = "gone";
    {
        const NqToken original = late;
        copy = original;
        name = "overwritten";
    }
    EXPECT_TRUE(copy.token() == kMineText + "/" + before && copy.localName() == before);
    EXPECT_TRUE(copy == late && copy == NqToken(copy.c_str())) << "wherever the text is divided";
    EXPECT_TRUE(kMine < copy && !(copy < kMine) && NqToken("a") < NqToken("\xC3"));
}

TEST(NqToken, NamesWithoutNamespaceAreThoseOfTheParent) {
    EXPECT_TRUE((ns + "gain").names("gain") && NqToken("gain").names(NqGainToken));
    EXPECT_FALSE((NqToken("urn:other#") + "gain").names(NqGainToken) || NqToken("gains").names(NqGainToken));
}

} // namespace
