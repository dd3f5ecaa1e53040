#include "support/NqTesting.h"

#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <cstdio>
#include <ctime>
#include <locale>

namespace {

std::string joint(const std::string& type, const std::string& parent, const std::string& child,
                  const std::string& content = "") {
    return "<joint name='" + parent + "-" + child + "' type='" + type + "'><parent link='" + parent +
           "'/><child link='" + child + "'/>" + content + "</joint>";
}
const std::string kLimit = "<limit lower='-1.5' upper='2.5' velocity='3' effort='4'/>";

std::string robot(const std::string& content) {
    return "<robot name='r'>" + content + "</robot>";
}
/// Links a, b and c, on the third line, with joints.
std::string abc(const std::string& joints) {
    return robot("\n\n<link name='a'/><link name='b'/><link name='c'/>" + joints);
}
/// The same with c fixed to a, and b joined to a.
std::string ab(const std::string& type, const std::string& content = "") {
    return abc(joint("fixed", "a", "c") + joint(type, "a", "b", content));
}

TEST(UrdfReader, JointsInertialDataAndOrder) {
    // A locale of decimal commas changes nothing.
    struct Commas : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Commas));
    NqPrintCapture prints;
    NqIndividualManipulator m;
    const bool done = NqUrdfReader::readString(
        "<?xml version='1.0'?><robot name='r' xmlns:x='urn:x'><link name='a'/><link name='c'/>"
        "<link name='z'><visual><geometry><mesh filename='%n%s' scale='huge'/></geometry>"
        "<material name='nowhere'/></visual><inertial><origin xyz='1 0 0' rpy='0 0 1.5707963267948966'/>"
        "<mass value='2'/><inertia ixx='1' ixy='0' ixz='0' iyy='4' iyz='0' izz='3'/></inertial></link>"
        "<link name='b'/><gazebo><limit lower='none'/></gazebo>" +
            joint("revolute", "a", "z", "<axis xyz='0 0 2'/><mimic joint='a-b' multiplier='2'/>" + kLimit) +
            joint("continuous", "z", "c", "<limit velocity='5' effort='6'/>") +
            joint("prismatic", "a", "b", "<axis xyz='0 1 0'/>" + kLimit) +
            "\n\n<x:joint name='no joint'/><xacro:include filename='undeclared'/></robot>",
        m);
    std::locale::global(before);
    ASSERT_TRUE(done) << prints.text();
    ASSERT_EQ(prints.lines().size(), 2u);
    EXPECT_TRUE(prints.lines()[0].first == 3 && prints.lines()[1].first == 3);
    EXPECT_TRUE(prints.contains("line 3: <x:joint> is passed by") && prints.contains("(2 in all)"));
    EXPECT_TRUE(prints.contains("\"a-z\" mimics \"a-b\""));

    EXPECT_EQ(m.manipulatorLabel(), "r");
    ASSERT_EQ(m.numberOfJoints(), 3u);
    EXPECT_EQ(m.linkByIndex(0)->linkLabel() + m.linkByIndex(1)->linkLabel() + m.linkByIndex(2)->linkLabel(),
              "zcb");
    const NqJointDescription& revolute = m.linkByIndex(0)->joint();
    EXPECT_TRUE(revolute.name() == "a-z" && !revolute.isContinuous());
    EXPECT_TRUE(revolute.lowerPositionLimit() == -1.5 && revolute.upperPositionLimit() == 2.5);
    const NqJointDescription& continuous = m.linkByIndex(1)->joint();
    EXPECT_TRUE(continuous.isContinuous() && continuous.rateLimit() == 5.0 &&
                continuous.effortLimit() == 6.0);
    EXPECT_EQ(continuous.jointMotion(0.0, 2.0), NqGeneralMotion({}, {0, 0, 2}));
    EXPECT_EQ(m.linkByIndex(2)->joint().jointMotion(0.0, 1.0), NqGeneralMotion({0, 0, 1}, {}));
    EXPECT_EQ(m.linkByIndex(0)->primaryFrameOffset(), NqCoordinateSystemTransformation());

    // Inertial frames that are turned are compared with another library's.
    EXPECT_EQ(m.linkByIndex(0)->massProperties().centerOfMass(), NqVector(1, 0, 0));
}

TEST(UrdfReader, FixedJointsMimicNothingAndHaveNoLimits) {
    NqPrintCapture prints;
    NqIndividualManipulator m;
    EXPECT_TRUE(NqUrdfReader::readString(
        ab("fixed", "<mimic joint='a-c'/><limit lower='2' upper='1' effort='-1' velocity='-1'/>"), m));
    EXPECT_EQ(prints.text(), "");
}

std::string inertial(const std::string& mass) {
    return robot("<link name='a'><inertial>" + mass +
                 "<inertia ixx='1' ixy='0' ixz='0' iyy='1' iyz='0' izz='1'/></inertial></link>");
}
/// The texts of the numbers below a count, one after the other.
std::string repeated(int count, auto textOf) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += textOf(std::to_string(i));
    }
    return text;
}
std::string chain(int links) {
    return "<link name='0'/>" + repeated(links - 1, [](const std::string& parent) {
               const std::string child = std::to_string(std::stoi(parent) + 1);
               return "<link name='" + child + "'/>" + joint("continuous", parent, child);
           });
}
std::string attribute(const std::string& number) {
    return " a" + number + "=''";
}

TEST(UrdfReader, RefusesBadDescriptionsAndLeavesTheManipulator) {
    struct BadDescription {
        const char* name;
        std::string text, complaint;
    };
    const BadDescription cases[] = {
        {"Empty", "", "line"},
        {"Binary", std::string("\x7f\0\xff\xfe", 4), "line 1"},
        {"CutOff", "<robot name='r'>\n<link name='a'>", "line 2"},
        {"OtherRoot", "<sdf/>", "no robot"},
        {"NoName", "<robot><link name='a'/></robot>", "name"},
        {"NoLinks", robot(""), "link"},
        {"UnnamedLink", robot("<link/>"), "link"},
        {"EmptyLabel", robot("<link name='a'/><link name=''/>" + joint("fixed", "a", "")), "a-"},
        {"DuplicateLink", robot("<link name='a'/><link name='a'/>"), "not unique"},
        {"DuplicateJoint", ab("fixed", "</joint><joint name='a-b' type='fixed'>"), "not unique"},
        {"UnknownChild", abc(joint("fixed", "a", "x")), "x"},
        {"UnknownParent", abc(joint("fixed", "x", "a")), "x"},
        {"TwoRoots", abc(joint("fixed", "a", "b")), "root"},
        {"NoRoot", robot("<link name='a'/>" + joint("fixed", "a", "a")), "loop"},
        {"Loop", abc(joint("fixed", "b", "c") + joint("fixed", "c", "b")), "loop"},
        {"TwoParents", abc(joint("fixed", "a", "b") + joint("fixed", "a", "c") + joint("fixed", "b", "c")),
         "\"c\" is the child of two joints"},
        {"Floating", ab("floating"), "joint \"a-b\" is floating"},
        {"UnknownType", ab("screw"), "a-b"},
        {"NoLimits", ab("revolute"), "a-b"},
        {"ZeroAxis", ab("continuous", "<axis xyz='0 0 0'/>"), "joint \"a-b\""},
        {"NegativeRate", ab("continuous", "<limit velocity='-1' effort='1'/>"),
         "\"a-b\" has a negative limit"},
        {"NegativeEffort", ab("revolute", "<limit upper='1' velocity='1' effort='-1'/>"),
         "\"a-b\" has a negative limit"},
        {"ReversedLimits", ab("prismatic", "<limit lower='2' upper='1' velocity='1' effort='1'/>"),
         "\"a-b\" has its lower limit above the upper one"},
        {"NanLimit", ab("revolute", "<limit lower='nan' upper='1' velocity='1' effort='1'/>"),
         "lower of <limit> isn't finite numbers in joint \"a-b\""},
        {"NanAxis", ab("continuous", "<axis xyz='0 nan 1'/>"), "xyz of <axis>"},
        {"InfiniteOrigin", ab("fixed", "<origin xyz='0 1e999 0'/>"), "xyz of <origin>"},
        {"TextForNumber", ab("fixed", "<origin rpy='0 %s%n 0'/>"), "line 3: rpy of <origin>"},
        {"TwoNumbers", ab("fixed", "<origin xyz='0 0'/>"), "2 elements"},
        {"NegativeMass", inertial("<mass value='-1'/>"), "link \"a\" has a negative mass"},
        {"NanMass", inertial("<mass value='nan'/>"), "value of <mass>"},
        {"MassMissing", inertial(""), "mass"},
        {"EntityBomb", "<!DOCTYPE robot [<!ENTITY a 'aa'>]>" + robot("<link name='&a;'/>"), "document type"},
        {"ManyAttributes", "\n<robot name='r' " + repeated(300, attribute) + "/>",
         "line 2: too many attributes"},
        {"DeepNesting", robot(repeated(100000, [](auto) { return "<link>"; })), "line 1"},
        {"TooManyLinks", robot(chain(5000)), "more than 4096 links"},
        {"LongChainWithALoop", robot(chain(4000) + "<link name='p'/>" + joint("fixed", "p", "p")), "loop"},
        {"TooLarge", robot(std::string(std::size_t(17) << 20, ' ')), "larger than"}};
    for (const auto& [name, text, complaint] : cases) {
        SCOPED_TRACE(name);
        NqPrintCapture prints;
        NqIndividualManipulator manipulator("before", "base");
        EXPECT_FALSE(NqUrdfReader::readString(text, manipulator));
        EXPECT_EQ(manipulator.manipulatorLabel(), "before");
        ASSERT_FALSE(prints.lines().empty());
        EXPECT_EQ(prints.lines().back().first, 4u);
        EXPECT_TRUE(prints.contains("NqUrdfReader: text: ") && prints.contains(complaint)) << prints.text();
    }
}

TEST(UrdfReader, ManyChildrenInOneJointCostNoMoreThanInMany) {
    const std::string children =
        repeated(20000, [](const std::string& number) { return "<child link='" + number + "'/>"; });
    NqPrintCapture prints;
    NqIndividualManipulator manipulator;
    const std::clock_t start = std::clock();
    EXPECT_FALSE(NqUrdfReader::readString(
        abc("<joint name='j' type='fixed'>" + children + "<parent link='a'/></joint>"), manipulator));
    EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);
}

TEST(UrdfReader, FilesThatCantBeReadAreNamed) {
    NqPrintCapture prints;
    NqIndividualManipulator manipulator;
    const std::string broken = testing::TempDir() + "nqBroken.urdf";
    std::ofstream(broken) << "<robot name='r'>";
    for (const std::string& name : {testing::TempDir() + "nq no such file.urdf", std::string("/"),
                                    std::string("/dev/zero"), std::string(), broken}) {
        prints.clear();
        EXPECT_FALSE(NqUrdfReader::readFile(name, manipulator));
        EXPECT_TRUE(prints.contains("NqUrdfReader: " + name + ": ")) << prints.text();
    }
    std::remove(broken.c_str());
}

} // namespace
