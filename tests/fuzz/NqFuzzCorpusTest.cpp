#include "NqFuzzTarget.h"
#include "support/NqTesting.h"

#include <filesystem>

namespace {

class NqFuzzCorpus : public testing::TestWithParam<NqFuzzTarget> {};

INSTANTIATE_TEST_SUITE_P(Targets, NqFuzzCorpus,
                         testing::ValuesIn(NqFuzzTarget::all().begin(), NqFuzzTarget::all().end()),
                         [](const auto& which) { return std::string(which.param.name); });

/// Ends the program where it doesn't.
TEST_P(NqFuzzCorpus, HoldsWhatFuzzingHasShown) {
    unsigned files = 0;
    for (const auto& file : std::filesystem::directory_iterator(nqCorpusFolder() + GetParam().name)) {
        GetParam()(nqContentOf(file.path()), file.path());
        ++files;
    }
    EXPECT_GT(files, 0U);
}

} // namespace
