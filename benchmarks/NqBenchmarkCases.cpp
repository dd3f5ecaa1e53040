#include "NqBenchmarkCases.h"

std::unique_ptr<NqBenchmarkCase> NqBenchmarkCases::arm(const std::string& models, unsigned steps) {
    return NqBenchmarkCase::makeFromFile("(a) 7-joint arm, frame", models + "/arm7.urdf", {"hand"},
                                         std::nullopt, steps);
}

std::unique_ptr<NqBenchmarkCase> NqBenchmarkCases::armWithPoint(const std::string& models, unsigned steps) {
    return NqBenchmarkCase::makeFromFile("(b) 7-joint arm, point", models + "/arm7.urdf", {"flange"},
                                         NqVector(0.0, 0.0, 0.1), steps);
}

std::unique_ptr<NqBenchmarkCase> NqBenchmarkCases::humanoid(const std::string& models, unsigned steps) {
    return NqBenchmarkCase::makeFromFile("(c) 44-joint humanoid, 4 frames", models + "/humanoid44.urdf",
                                         {"left_sole", "right_sole", "left_palm", "right_palm"}, std::nullopt,
                                         steps);
}

/// The longer a chain is, the fewer steps its motion has, so that a repetition stays short.
std::vector<std::unique_ptr<NqBenchmarkCase>> NqBenchmarkCases::chains() {
    std::vector<std::unique_ptr<NqBenchmarkCase>> cases;
    for (const auto& [joints, steps] :
         {std::pair(7U, 256U), {20U, 128U}, {50U, 64U}, {100U, 16U}, {200U, 8U}}) {
        cases.push_back(NqBenchmarkCase::makeChain(joints, steps));
    }
    return cases;
}
