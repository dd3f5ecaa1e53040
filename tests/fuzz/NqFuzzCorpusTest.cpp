#include "NqFuzzTarget.h"
#include "support/NqTesting.h"

namespace {

class NqFuzzCorpus : public testing::TestWithParam<NqFuzzTarget> {};

INSTANTIATE_TEST_SUITE_P(Targets, NqFuzzCorpus,
                         testing::ValuesIn(NqFuzzTarget::all().begin(), NqFuzzTarget::all().end()),
                         [](const auto& which) { return std::string(which.param.name); });

/// Ends the program where it doesn't.
TEST_P(NqFuzzCorpus, HoldsWhatFuzzingHasShown) {
    const std::string folder = nqCorpusFolder() + GetParam().name + "/";
    const std::vector<std::string> files = nqFilesIn(folder);
    EXPECT_FALSE(files.empty());
    for (const std::string& file : files) {
        GetParam()(nqContentOf(folder + file), folder + file);
    }
}

} // namespace
