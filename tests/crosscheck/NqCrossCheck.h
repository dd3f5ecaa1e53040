#pragma once

#include "support/NqTesting.h"

#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <cstdio>
#include <filesystem>

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

/// A description that this library and another one read, in one state after the other.
template <typename Model>
class NqCrossCheckTest : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override { ASSERT_TRUE(m_Model.read(GetParam())); }

    /// Sets state after state, and takes the largest deviation that `deviationOf()` gives.
    void expectAgreement(const char* what, double tolerance, auto deviationOf) {
        std::mt19937_64 random(kCrossCheckSeed);
        double largest = 0.0;
        for (int pose = 0; pose < kCrossCheckPoses; ++pose) {
            m_Model.setRandomState(random);
            const double deviation = deviationOf();
            EXPECT_LE(deviation, tolerance) << what << ", pose " << pose << ", seed " << kCrossCheckSeed;
            largest = std::max(largest, deviation);
        }
        std::printf("%s: %s within %.1e\n", GetParam().c_str(), what, largest);
    }

    Model m_Model;
};

// The distance of what we have from the reference, relative to the size of that (at least 1).

inline double nqDeviation(const NqVector& reference, const NqVector& actual) {
    return (actual - reference).mag() / std::max(1.0, reference.mag());
}

/// Of the entry that is furthest off, relative to the largest one; infinite where there are more or fewer.
inline double nqDeviation(std::span<const double> reference, std::span<const double> actual) {
    if (reference.size() != actual.size()) {
        return HUGE_VAL;
    }
    double largest = 1.0, difference = 0.0;
    for (std::size_t i = 0; i < reference.size(); ++i) {
        largest = std::max(largest, std::fabs(reference[i]));
        // Written so that NaN counts.
        difference = std::fabs(actual[i] - reference[i]) <= difference ? difference
                                                                       : std::fabs(actual[i] - reference[i]);
    }
    return difference / largest;
}

inline double nqDeviation(std::span<const NqVector> reference, std::span<const NqVector> actual) {
    const auto entries = [](std::span<const NqVector> vectors) {
        std::vector<double> result;
        for (const NqVector& v : vectors) {
            result.insert(result.end(), {v.x(), v.y(), v.z()});
        }
        return result;
    };
    return nqDeviation(entries(reference), entries(actual));
}
