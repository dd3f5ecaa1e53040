#include "NqDriveTesting.h"

#include <NqDriveCsv.h>
#include <NqDriveReport.h>
#include <NqDriveText.h>
#include <NqSvg.h>

#include <libxml/parser.h>

namespace {

bool isWellFormed(const std::string& text) {
    const std::unique_ptr<xmlDoc, void (*)(xmlDocPtr)> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), "page", nullptr, XML_PARSE_NONET),
        xmlFreeDoc);
    return document != nullptr;
}

class NqDriveReports : public NqDriveFixture {};

/// A robot that floats reaches out: its base gives way.
TEST_F(NqDriveReports, TellOfABaseThatFloats) {
    load("floater7.urdf", "floater7.endeffectors.xml",
         {"--relative", "0.1,0.1,0.1/hold", "--start", "0,0.6,0,0.8,0,0.6,0", "--free-base"});
    const NqDriveRun run = reachAll();
    const std::size_t last = run.recorder().rows() - 1;
    EXPECT_GT(run.recorder().base(last).translation().mag(), 5.0e-3);
    const std::string csv = NqDriveCsv(run.record(), run.recorder()).text();
    EXPECT_NE(csv.find(",base.x,base.y,base.z,base.qw,"), std::string::npos);
}

/// Names that would break a page or a table if they went in as they are, on a lift and an endless joint.
TEST_F(NqDriveReports, SurviveHostileNamesAndEndlessJoints) {
    const std::string robot = writeTemporary(
        "hostile.urdf",
        R"(<robot name="&lt;/svg&gt;&amp;&quot;'é"><link name="base"/><link name="a"/><link name="b"/>
        <link name="&lt;b&gt;,c"/>
        <joint name="j,&quot;1&lt;" type="prismatic"><parent link="base"/><child link="a"/><axis xyz="0 0 1"/>
        <limit lower="-1" upper="1" velocity="1" effort="1"/></joint>
        <joint name="j2" type="continuous"><parent link="a"/><child link="b"/><axis xyz="0 0 1"/></joint>
        <joint name="j3" type="prismatic"><parent link="b"/><child link="&lt;b&gt;,c"/><axis xyz="1 0 0"/>
        <limit lower="-1" upper="1" velocity="1" effort="1"/></joint></robot>)");
    const std::string effectors =
        "<pointEndEffector><linkIdentifier>&lt;b&gt;,c</linkIdentifier></pointEndEffector>";
    loadPoints(robot, effectors,
               {"--targets", writeTemporary("<&file>", "0.1,0.4,0.3\n").c_str(), "--start", "0,0,0.5"});
    const NqDriveRun run = reachAll();
    const NqDriveReport report(run.record(), run.recorder());
    for (const std::string& page : {report.html(), report.svg()}) {
        EXPECT_TRUE(isWellFormed(page));
        for (const char* number : {"\"nan", ",nan", " nan", "\"inf", ",inf", "\"-inf"}) {
            EXPECT_EQ(page.find(number), std::string::npos) << number;
        }
        EXPECT_EQ(page.find("src="), std::string::npos) << "the page is to need no other file";
    }

    const std::string csv = NqDriveCsv(run.record(), run.recorder()).text();
    EXPECT_EQ(
        csv.substr(0, csv.find('\n')),
        "time,wayPoint,determinant,slowing,\"j,\"\"1<.position\",j2.position,j3.position,\"j,\"\"1<.rate\","
        "j2.rate,j3.rate,\"<b>,c.x\",\"<b>,c.y\",\"<b>,c.z\",\"<b>,c.error\",\"<b>,c.speed\","
        "\"<b>,c.acceleration\"");
    EXPECT_EQ(static_cast<std::size_t>(std::count(csv.begin(), csv.end(), '\n')), run.recorder().rows() + 2);
}

} // namespace
