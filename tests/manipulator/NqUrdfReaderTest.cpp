#include <manipulator/NqTestManipulators.h>
#include <support/NqPrintCapture.h>

#include <cstdio>
#include <fstream>
#include <limits>
#include <locale>

namespace {

std::string joint(const std::string& type, const std::string& parent, const std::string& child,
                  const std::string& content = "") {
    return "<joint name='" + parent + "-" + child + "' type='" + type + "'><parent link='" + parent +
           "'/><child link='" + child + "'/>" + content + "</joint>";
}
const std::string kLimit = "<limit lower='-1.5' upper='2.5' velocity='3' effort='4'/>";
const std::string kLinks = "<link name='a'/><link name='b'/><link name='c'/>";
std::string robot(const std::string& content) {
    return "<robot name='r'>" + content + "</robot>";
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
            "<x:joint name='no joint'/></robot>",
        m);
    std::locale::global(before);
    ASSERT_TRUE(done) << prints.text();
    ASSERT_EQ(prints.lines().size(), 1u);
    EXPECT_EQ(prints.lines()[0].first, 3u);
    EXPECT_TRUE(prints.contains("\"a-z\" mimics \"a-b\""));

    EXPECT_EQ(m.manipulatorLabel(), "r");
    ASSERT_EQ(m.numberOfJoints(), 3u);
    EXPECT_EQ(m.linkByIndex(0)->linkLabel() + m.linkByIndex(1)->linkLabel() + m.linkByIndex(2)->linkLabel(),
              "zcb");
    const NqJointDescription& revolute = m.linkByIndex(0)->joint();
    EXPECT_EQ(revolute.name(), "a-z");
    EXPECT_EQ(revolute.lowerPositionLimit(), -1.5);
    EXPECT_EQ(revolute.upperPositionLimit(), 2.5);
    EXPECT_FALSE(revolute.isContinuous());
    const NqJointDescription& continuous = m.linkByIndex(1)->joint();
    EXPECT_TRUE(continuous.isContinuous());
    EXPECT_EQ(continuous.upperPositionLimit(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(continuous.rateLimit(), 5.0);
    EXPECT_EQ(continuous.effortLimit(), 6.0);
    EXPECT_EQ(m.linkByIndex(2)->joint().jointMotion(0.0, 1.0),
              NqGeneralMotion(NqVector(0, 0, 1), NqVector()));
    EXPECT_EQ(m.linkByIndex(0)->primaryFrameOffset(), NqCoordinateSystemTransformation());

    // Turned by a right angle, the larger moment lies along x; 2 kg stand at 1 m from the origin.
    const NqRigidBodyMassProperties& mass = m.linkByIndex(0)->massProperties();
    EXPECT_EQ(mass.centerOfMass(), NqVector(1, 0, 0));
    EXPECT_NEAR(mass.secondMoment().ixx(), 4.0, 1e-15);
    EXPECT_NEAR(mass.secondMoment().iyy(), 1.0 + 2.0, 1e-15);
    EXPECT_NEAR(mass.secondMoment().izz(), 3.0 + 2.0, 1e-15);
    EXPECT_NEAR(mass.secondMoment().ixy(), 0.0, 1e-15);
}

struct BadDescription {
    const char* name;
    std::string text;
    std::string complaint;
};
void PrintTo(const BadDescription& bad, std::ostream* stream) {
    *stream << bad.name;
}

class UrdfReaderRefuses : public testing::TestWithParam<BadDescription> {};

TEST_P(UrdfReaderRefuses, AndLeavesTheManipulator) {
    NqPrintCapture prints;
    NqIndividualManipulator manipulator("before", "base");
    EXPECT_FALSE(NqUrdfReader::readString(GetParam().text, manipulator));
    EXPECT_EQ(manipulator.manipulatorLabel(), "before");
    ASSERT_FALSE(prints.lines().empty());
    EXPECT_EQ(prints.lines().back().first, 4u);
    EXPECT_TRUE(prints.contains("NqUrdfReader: text: ")) << prints.text();
    EXPECT_TRUE(prints.contains(GetParam().complaint)) << prints.text();
}

std::string chain(int links) {
    std::string text = "<link name='0'/>";
    for (int i = 1; i < links; ++i) {
        text += "<link name='" + std::to_string(i) + "'/>" +
                joint("continuous", std::to_string(i - 1), std::to_string(i));
    }
    return text;
}

std::string repeated(int count, const std::string& text) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, UrdfReaderRefuses,
    testing::Values(
        BadDescription{"Empty", "", "line"}, //
        BadDescription{"Binary", std::string("\x7f\0\xff\xfe", 4), "line 1"},
        BadDescription{"CutOff", "<robot name='r'>\n<link name='a'>", "line 2"},
        BadDescription{"OtherRoot", "<sdf/>", "no robot"},
        BadDescription{"NoName", "<robot><link name='a'/></robot>", "name"},
        BadDescription{"NoLinks", robot(""), "link"}, BadDescription{"UnnamedLink", robot("<link/>"), "link"},
        BadDescription{"EmptyLabel", robot("<link name='a'/><link name=''/>" + joint("fixed", "a", "")),
                       "a-"},
        BadDescription{"DuplicateLink", robot("<link name='a'/><link name='a'/>"), "not unique"},
        BadDescription{"DuplicateJoint",
                       robot(kLinks + joint("fixed", "a", "b") +
                             "<joint name='a-b' type='fixed'><parent link='b'/><child link='c'/></joint>"),
                       "not unique"},
        BadDescription{"UnknownChild", robot(kLinks + joint("fixed", "a", "x")), "x"},
        BadDescription{"UnknownParent", robot(kLinks + joint("fixed", "x", "a")), "x"},
        BadDescription{"TwoRoots", robot(kLinks + joint("fixed", "a", "b")), "root"},
        BadDescription{
            "NoRoot",
            robot("<link name='a'/><link name='b'/>" + joint("fixed", "a", "b") + joint("fixed", "b", "a")),
            "loop"},
        BadDescription{"Loop", robot(kLinks + joint("fixed", "b", "c") + joint("fixed", "c", "b")), "loop"},
        BadDescription{
            "TwoParents",
            robot(kLinks + joint("fixed", "a", "b") + joint("fixed", "a", "c") + joint("fixed", "b", "c")),
            "\"c\" is the child of two joints"},
        BadDescription{"Floating", robot(kLinks + joint("fixed", "a", "b") + joint("floating", "b", "c")),
                       "joint \"b-c\" is floating"},
        BadDescription{"UnknownType", robot(kLinks + joint("screw", "a", "b")), "a-b"},
        BadDescription{"NoLimits", robot("<link name='a'/><link name='b'/>" + joint("revolute", "a", "b")),
                       "a-b"},
        BadDescription{
            "ZeroAxis",
            robot("<link name='a'/><link name='b'/>" + joint("continuous", "a", "b", "<axis xyz='0 0 0'/>")),
            "joint \"a-b\""},
        BadDescription{"NanAxis",
                       robot("<link name='a'/><link name='b'/>" +
                             joint("continuous", "a", "b", "<axis xyz='0 nan 1'/>")),
                       "xyz of <axis>"},
        BadDescription{
            "InfiniteOrigin",
            robot("<link name='a'/><link name='b'/>" + joint("fixed", "a", "b", "<origin xyz='0 1e999 0'/>")),
            "xyz of <origin>"},
        BadDescription{"TextForNumber",
                       robot("<link name='a'/>\n<link name='b'/>\n" +
                             joint("fixed", "a", "b", "<origin rpy='0 %s%n 0'/>")),
                       "line 3: rpy of <origin>"},
        BadDescription{
            "TwoNumbers",
            robot("<link name='a'/><link name='b'/>" + joint("fixed", "a", "b", "<origin xyz='0 0'/>")), ""},
        BadDescription{"NegativeMass",
                       robot("<link name='a'><inertial><mass value='-1'/><inertia ixx='1' ixy='0' ixz='0' "
                             "iyy='1' iyz='0' izz='1'/></inertial></link>"),
                       "link \"a\" has a negative mass"},
        BadDescription{"MassMissing",
                       robot("<link name='a'><inertial><inertia ixx='1' ixy='0' ixz='0' iyy='1' iyz='0' "
                             "izz='1'/></inertial></link>"),
                       ""},
        BadDescription{"EntityBomb",
                       "<!DOCTYPE robot [<!ENTITY a 'aaaa'><!ENTITY b '&a;&a;&a;&a;'>]>" +
                           robot("<link name='&b;'/>"),
                       "document type"},
        BadDescription{"DeepNesting", robot(repeated(100000, "<link name='a'>")), "line 1"},
        BadDescription{"TooManyLinks", robot(chain(5000)), "more than 4096 links"},
        BadDescription{"LongChainWithALoop",
                       robot(chain(4000) + "<link name='p'/><link name='q'/>" + joint("fixed", "p", "q") +
                             joint("fixed", "q", "p")),
                       "loop"},
        BadDescription{"TooLarge", robot(std::string(std::size_t(17) << 20, ' ')), "larger than"}),
    [](const auto& test) { return test.param.name; });

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
