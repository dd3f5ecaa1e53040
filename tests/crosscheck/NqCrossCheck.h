#pragma once

#include "support/NqTestFiles.h"

#include <nqControlCore/foundation/math/NqVector.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

// What comparisons with other libraries have in common.

inline constexpr unsigned kCrossCheckSeed = 20240;
inline constexpr int kCrossCheckPoses = 20;

/// Descriptions to compare on: the models of the project, those of its tests, and the files in the folder
/// that the environment variable NQ_CROSSCHECK_MODELS names.
inline std::vector<std::string> nqCrossCheckFiles() {
    std::vector<std::string> result;
    const char* further = std::getenv("NQ_CROSSCHECK_MODELS");
    for (const std::string& folder :
         {nqModelFile(), nqTestModelFile(), std::string(further ? further : "")}) {
        if (!folder.empty()) {
            for (const auto& entry : std::filesystem::directory_iterator(folder)) {
                if (entry.path().extension() == ".urdf") {
                    result.push_back(entry.path().string());
                }
            }
        }
    }
    std::ranges::sort(result);
    return result;
}

/// Names a test by its file.
inline std::string nqCrossCheckName(const testing::TestParamInfo<std::string>& info) {
    const std::string stem = info.param.substr(info.param.find_last_of('/') + 1);
    return stem.substr(0, stem.find('.'));
}

/// The distance of what we have from the reference, relative to the size of that (at least 1); infinite for
/// NaN.
inline double nqDeviation(const NqVector& reference, const NqVector& actual) {
    const double deviation = (actual - reference).mag() / std::max(1.0, reference.mag());
    return std::isnan(deviation) ? HUGE_VAL : deviation;
}

/// Lets `deviationOf` take state after state from a random generator, and expects the deviations that it
/// gives to be within a tolerance.
template <typename DeviationOf>
void nqExpectAgreement(const std::string& what, double tolerance, DeviationOf deviationOf) {
    std::mt19937_64 random(kCrossCheckSeed);
    double largest = 0.0;
    for (int pose = 0; pose < kCrossCheckPoses; ++pose) {
        const double deviation = deviationOf(random);
        EXPECT_LE(deviation, tolerance) << what << ", pose " << pose << ", seed " << kCrossCheckSeed;
        largest = std::max(largest, deviation);
    }
    std::printf("%s within %.1e\n", what.c_str(), largest);
}
