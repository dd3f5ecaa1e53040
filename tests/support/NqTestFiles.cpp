#include "support/NqTestFiles.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

// The only source that knows the place of the project, so that the others compile the same everywhere.
std::string nqModelFile(const std::string& name) {
    return NQ_PROJECT "/models" + name;
}
std::string nqTestModelFile(const std::string& name) {
    return NQ_PROJECT "/tests/manipulator/models" + name;
}
std::string nqGoldenFile(const std::string& name) {
    return NQ_PROJECT "/tests/golden" + name;
}
std::string nqHeaderFile(const std::string& name) {
    return NQ_PROJECT "/nqControlCore" + name;
}
std::string nqCorpusFolder() {
    return NQ_PROJECT "/tests/fuzz/corpus/";
}
std::vector<std::string> nqFilesIn(const std::string& folder, const std::string& ending) {
    std::vector<std::string> names;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        if (file.path().string().ends_with(ending)) {
            names.push_back(file.path().filename());
        }
    }
    std::ranges::sort(names);
    return names;
}
std::string nqContentOf(const std::string& fileName) {
    std::ifstream stream(fileName, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}
