#pragma once

#include "NqBenchmarkCase.h"

/// The cases that are always measured.
namespace NqBenchmarkCases {

/// (a) A frame on the hand of a 7-joint arm. `models` is the folder with the robots.
std::unique_ptr<NqBenchmarkCase> arm(const std::string& models, unsigned steps = 256);

/// (b) A point on its flange.
std::unique_ptr<NqBenchmarkCase> armWithPoint(const std::string& models, unsigned steps = 256);

/// (c) Frames on the feet and hands of a humanoid whose pelvis is fixed.
std::unique_ptr<NqBenchmarkCase> humanoid(const std::string& models, unsigned steps = 256);

/// (d) Frames at the ends of chains, of 7 to 200 joints.
std::vector<std::unique_ptr<NqBenchmarkCase>> chains();

} // namespace NqBenchmarkCases
