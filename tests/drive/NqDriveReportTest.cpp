#include "NqDriveTesting.h"

#include <NqDriveCsv.h>
#include <NqDriveReport.h>
#include <NqDriveText.h>
#include <NqSvg.h>

#include <nqControlCore/endeffector/special/NqCenterOfMassEndEffector.h>

#include <libxml/parser.h>

#include <algorithm>
#include <memory>

namespace {

bool isWellFormed(const std::string& text) {
    const std::unique_ptr<xmlDoc, void (*)(xmlDocPtr)> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), "page", nullptr, XML_PARSE_NONET),
        xmlFreeDoc);
    return document != nullptr;
}

/// A robot that floats reaches out without momentum: its base gives way, its centre of mass stays.
TEST(NqDriveReport, TellsOfABaseThatFloats) {
    NqDriveOptions options;
    options.model = nqModelFile("/floater7.urdf");
    options.endEffectors = nqModelFile("/floater7.endeffectors.xml");
    options.wayPoints.push_back({true, {{{0.1, 0.1, 0.1}, {}}, {}}, ""});
    options.start = {0.0, 0.6, 0.0, 0.8, 0.0, 0.6, 0.0};
    options.isBaseFree = true;
    NqDriveTask task;
    ASSERT_TRUE(task.load(options)) << task.complaint();
    NqDriveRun run(task);
    Watcher watcher;
    run.execute(watcher);
    ASSERT_TRUE(run.record().isReached()) << run.record().verdict;

    const std::size_t last = run.recorder().rows() - 1;
    EXPECT_GT(run.recorder().base(last).translation().mag(), 5.0e-3);
    NqVector centres[2];
    for (const std::size_t row : {std::size_t{0}, last}) {
        NqPositionState position(options.start);
        for (unsigned j = 0; j < 7; ++j) {
            position.jointPositions()[j] = run.recorder().position(row, j);
        }
        position.setBaseFrame(run.recorder().base(row));
        NqManipulatorActiveState state(task.manipulator());
        state.setPositionState(position);
        NqEndEffectorPlacement placement;
        NqCenterOfMassEndEffector().calculatePlacement(task.manipulator(), state, placement);
        centres[row == last] = placement.coordSysXForm().translation();
    }
    EXPECT_LT((centres[1] - centres[0]).mag(), 1.0e-4);
    const std::string csv = NqDriveCsv(run.record(), run.recorder()).text();
    EXPECT_NE(csv.find(",base.x,base.y,base.z,base.qw,"), std::string::npos);

    options.start.clear();
    options.endEffectors = nqModelFile("/arm7.orientation.endeffectors.xml");
    options.model = nqModelFile("/arm7.urdf");
    EXPECT_FALSE(task.load(options));
    EXPECT_NE(task.complaint().find("can't be used with a free base"), std::string::npos) << task.complaint();
}

/// Names that would break a page or a table if they went in as they are, on a lift and an endless joint.
TEST(NqDriveReport, SurvivesHostileNamesAndEndlessJoints) {
    const std::string robot = testing::TempDir() + "hostile.urdf";
    const std::string effectors = testing::TempDir() + "hostile.xml";
    std::ofstream(robot)
        << R"(<robot name="&lt;/svg&gt;&amp;&quot;'é"><link name="base"/><link name="a"/><link name="b"/>
        <link name="&lt;b&gt;,c"/>
        <joint name="j,&quot;1&lt;" type="prismatic"><parent link="base"/><child link="a"/><axis xyz="0 0 1"/>
        <limit lower="-1" upper="1" velocity="1" effort="1"/></joint>
        <joint name="j2" type="continuous"><parent link="a"/><child link="b"/><axis xyz="0 0 1"/></joint>
        <joint name="j3" type="prismatic"><parent link="b"/><child link="&lt;b&gt;,c"/><axis xyz="1 0 0"/>
        <limit lower="-1" upper="1" velocity="1" effort="1"/></joint></robot>)";
    std::ofstream(effectors)
        << R"(<endEffectorVector xmlns="http://nq.example/namespace/ct#"><pointEndEffector>
        <linkIdentifier>&lt;b&gt;,c</linkIdentifier></pointEndEffector></endEffectorVector>)";
    NqDriveOptions options;
    options.model = robot;
    options.endEffectors = effectors;
    options.wayPoints.push_back({false, {{{0.1, 0.4, 0.3}, {}}}, "<&file>:1"});
    options.start = {0.0, 0.0, 0.5};
    NqDriveTask task;
    ASSERT_TRUE(task.load(options)) << task.complaint();
    NqDriveRun run(task);
    Watcher watcher;
    run.execute(watcher);
    ASSERT_TRUE(run.record().isReached()) << run.record().verdict;

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
