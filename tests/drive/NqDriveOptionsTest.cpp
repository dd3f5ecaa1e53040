#include "support/NqTesting.h"

#include <NqDriveOptions.h>

#include <iterator>

namespace {

using Request = NqDriveOptions::Request;

/// What a command line gives, which has blanks between its words alone.
struct Parsed {
    explicit Parsed(const std::string& line) {
        std::istringstream stream("nqDrive robot effectors " + line);
        const std::vector<std::string> words(std::istream_iterator<std::string>(stream), {});
        std::vector<const char*> arguments;
        for (const std::string& word : words) {
            arguments.push_back(word == "''" ? "" : word.c_str());
        }
        request =
            NqDriveOptions::parse(static_cast<int>(arguments.size()), arguments.data(), options, complaint);
    }
    NqDriveOptions options;
    std::string complaint;
    Request request;
};

TEST(NqDriveOptions, ReadsTheWholeCommandLine) {
    const Parsed parsed("--target -1,2e-1,3/hold --relative=0,0,-.5@0,0,-90/0.5 --target @0,120,0/1,1,1 "
                        "--metric 5,6 --metric a=b=2,c=3 --posture 0.5,1 --gain=2 --rate 500 --quiet "
                        "--svg x.svg --soft-gain 20 --profile threehalves");
    ASSERT_EQ(parsed.request, Request::Run) << parsed.complaint;
    const NqDriveOptions& options = parsed.options;
    ASSERT_EQ(options.wayPoints.size(), 3u);
    EXPECT_EQ(options.wayPoints[0].targets[0].numbers, (std::vector<double>{-1.0, 0.2, 3.0}));
    EXPECT_FALSE(options.wayPoints[0].targets[0].orientation.has_value());
    EXPECT_TRUE(options.wayPoints[0].targets[1].isHold());
    EXPECT_TRUE(options.wayPoints[1].isRelative);
    const NqVector turned = *options.wayPoints[1].targets[0].orientation * NqVector(1.0, 0.0, 0.0);
    EXPECT_LT((turned - NqVector(0.0, -1.0, 0.0)).mag(), 1.0e-15);
    EXPECT_EQ(options.wayPoints[1].targets[1].numbers, std::vector<double>{0.5});
    EXPECT_TRUE(options.wayPoints[2].targets[0].numbers.empty());
    const NqVector z = options.wayPoints[2].targets[0].orientation->zAxis();
    EXPECT_LT((z - NqVector(std::sqrt(0.75), 0.0, -0.5)).mag(), 1.0e-15);
    EXPECT_TRUE(options.softGain == 20.0 && options.profile == 2 && options.rate == 500.0);
    EXPECT_EQ(options.metric, (std::vector<double>{5.0, 6.0}));
    EXPECT_EQ(options.metricByLabel[0], std::make_pair(std::string("a=b"), 2.0));
    EXPECT_EQ(options.posture, NqDriveOptions::Posture::Given);
    EXPECT_EQ(options.svg, "x.svg");
}

TEST(NqDriveOptions, RefusesNonsenseInOneLineThatNamesTheOption) {
    for (const std::string command :
         {"--target 1,2@0,0,9", "--target 1,2,nan",  "--target 1,2,3/", "--target 1,,3",
          "--relative 1,2,inf", "--rate 0",          "--rate 1e9",      "--time -1",
          "--tolerance 0",      "--tolerance small", "--gain NaN",      "--metric 1,0",
          "--metric a=0",       "--metric =1",       "--posture midle", "--start 1,,2",
          "--output ''",        "--quiet=yes",       "--svg --quiet",   "--start",
          "--frobnicate 1",     "--target 1,2,3@",   "--target @",      "--target 1@0,0,9",
          "--target 1,2,3@0,9", "--target @0,0,nan", "--target @1@2",   "--soft-gain 0",
          "--profile fast",     "--targets nowhere", "--targets /"}) {
        const Parsed parsed("--target 0,0,0 " + command);
        EXPECT_EQ(parsed.request, Request::Refused) << command;
        EXPECT_NE(parsed.complaint.find(command.substr(0, command.find_first_of(" ="))), std::string::npos)
            << parsed.complaint;
        EXPECT_EQ(parsed.complaint.find('\n'), std::string::npos) << parsed.complaint;
    }
    EXPECT_EQ(Parsed("").request, Request::Refused) << "no target";
    EXPECT_EQ(Parsed("third --target 0,0,0").request, Request::Refused);
}

TEST(NqDriveTargetFile, ReadsWayPointsAndNamesTheLineOfABadOne) {
    const std::string file = testing::TempDir() + "targets.txt";
    const auto read = [&](const std::string& text) {
        std::ofstream(file, std::ios::binary) << text;
        const Parsed parsed("--target 9,9,9 --targets " + file);
        return std::make_pair(parsed.options.wayPoints, parsed.complaint);
    };
    const auto [wayPoints, none] = read("# two\r\n\n  1,2,3 / hold # here\r\nrelative @0,0,5/ 0.5\n");
    EXPECT_EQ(none, "");
    ASSERT_EQ(wayPoints.size(), 3u);
    EXPECT_EQ(wayPoints[1].targets[0].numbers, (std::vector<double>{1.0, 2.0, 3.0}));
    EXPECT_TRUE(wayPoints[1].targets[1].isHold());
    EXPECT_EQ(wayPoints[1].source, file + ":3");
    EXPECT_TRUE(wayPoints[2].isRelative && wayPoints[2].targets[0].orientation);

    const std::pair<std::string, std::string> bad[] = {
        {"1,2,3\n1,2,nan\n", ":2: needs"},
        {"\n\n1,2@\n", ":3: needs"},
        {"relatively 1,2,3\n", ":1: needs"},
        {std::string("1,2,3/\0\x1b[2J", 11), ":1: needs"},
        {"1,2,3\n" + std::string(5000, '1'), ":2: the line is too long"},
        {"# nothing\n", "no way point"},
        {"", "no way point"},
    };
    for (const auto& [text, words] : bad) {
        const auto [kept, complaint] = read(text);
        EXPECT_EQ(kept.size(), 1u) << text;
        EXPECT_NE(complaint.find(words), std::string::npos) << complaint;
        EXPECT_TRUE(std::all_of(complaint.begin(), complaint.end(), [](char c) { return c >= ' '; }));
    }
    EXPECT_NE(read(nqRepeated("0,0,0\n", 10001)).second.find(":10001: more than 10000 way points"),
              std::string::npos);
}

} // namespace
