#include "support/NqTestFiles.h"

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
