#include <NqDriveOptions.h>

#include <gtest/gtest.h>

namespace {

using Request = NqDriveOptions::Request;

Request parse(std::vector<const char*> arguments, NqDriveOptions& options, std::string& complaint) {
    arguments.insert(arguments.begin(), {"nqDrive", "robot", "effectors"});
    return NqDriveOptions::parse(static_cast<int>(arguments.size()), arguments.data(), options, complaint);
}

TEST(NqDriveOptions, ReadsTheWholeCommandLine) {
    NqDriveOptions options;
    std::string complaint;
    const auto request =
        parse({"--target", "-1,2e-1,3/hold", "--relative=0,0,-.5/1,1,1", "--metric", "5,6", "--metric",
               "a=b=2,c=3", "--posture", "0.5,1", "--gain=2", "--rate", "500", "--quiet", "--svg", "x.svg"},
              options, complaint);
    ASSERT_EQ(request, Request::Run) << complaint;
    ASSERT_EQ(options.wayPoints.size(), 2u);
    EXPECT_EQ(options.wayPoints[0].targets[0], NqVector(-1.0, 0.2, 3.0));
    EXPECT_FALSE(options.wayPoints[0].targets[1].has_value());
    EXPECT_TRUE(options.wayPoints[1].isRelative);
    EXPECT_EQ(options.wayPoints[1].targets[1], NqVector(1.0, 1.0, 1.0));
    EXPECT_EQ(options.metric, (std::vector<double>{5.0, 6.0}));
    EXPECT_EQ(options.metricByLabel[0], std::make_pair(std::string("a=b"), 2.0));
    EXPECT_EQ(options.posture, NqDriveOptions::Posture::Given);
    EXPECT_EQ(options.rate, 500.0);
    EXPECT_EQ(options.svg, "x.svg");
}

TEST(NqDriveOptions, RefusesNonsenseInOneLineThatNamesTheOption) {
    const std::vector<std::vector<const char*>> commands{
        {"--target", "1,2"},       {"--target", "1,2,nan"},  {"--target", "1,2,3/"}, {"--target", "1,2,3,4"},
        {"--relative", "1,2,inf"}, {"--rate", "0"},          {"--rate", "1e9"},      {"--time", "-1"},
        {"--tolerance", "0"},      {"--tolerance", "small"}, {"--gain", "NaN"},      {"--metric", "1,0"},
        {"--metric", "a=0"},       {"--metric", "=1"},       {"--posture", "midle"}, {"--start", "1,,2"},
        {"--output", ""},          {"--quiet=yes"},          {"--svg", "--quiet"},   {"--start"},
        {"--frobnicate", "1"},
    };
    for (std::vector<const char*> command : commands) {
        const std::string name = std::string(command[0]).substr(0, std::string(command[0]).find('='));
        command.insert(command.begin(), {"--target", "0,0,0"});
        NqDriveOptions options;
        std::string complaint;
        EXPECT_EQ(parse(command, options, complaint), Request::Refused) << command[2];
        EXPECT_NE(complaint.find(name), std::string::npos) << complaint;
        EXPECT_EQ(complaint.find('\n'), std::string::npos) << complaint;
    }
    NqDriveOptions options;
    std::string complaint;
    EXPECT_EQ(parse({}, options, complaint), Request::Refused) << "no target";
    EXPECT_EQ(parse({"third", "--target", "0,0,0"}, options, complaint), Request::Refused);
}

} // namespace
