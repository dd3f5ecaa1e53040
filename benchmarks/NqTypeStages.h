#pragma once

#include "NqBenchmarkCase.h"
#include "NqBenchmarkRun.h"

/// The stages of a control step for one constraint of each type that a file can hold: those samples that the
/// tests work on.
namespace NqTypeStages {

/// On the robot of the case, at its poses, with targets that are its placements half way. The constraint sits
/// on `link`, or on `secondLink` too where it is between two; these have joints. Rows are measured from the
/// joint positions on, filter and error with the frames that these left. False if there is no case.
bool add(std::shared_ptr<const NqBenchmarkCase> benchmarkCase, const std::string& link,
         const std::string& secondLink, NqBenchmarkRun& run);

} // namespace NqTypeStages
