#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

/// Runs the tests with a temporary folder of their own, so that tests that run side by side don't meet in
/// their files.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    std::string folder = std::filesystem::temp_directory_path() / "nqTests.XXXXXX";
    if (!mkdtemp(folder.data())) {
        std::perror(folder.c_str());
        return 1;
    }
    setenv("TEST_TMPDIR", folder.c_str(), 1);
    const int result = RUN_ALL_TESTS();
    std::filesystem::remove_all(folder);
    return result;
}
