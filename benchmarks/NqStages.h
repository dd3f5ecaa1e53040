#pragma once

#include "NqBenchmarkCase.h"
#include "NqBenchmarkRun.h"

/// The parts of our control step one by one, and what else a controller may call.
class NqStages {
public:
    /// The stages of a control step of the case, which must outlive the measurement.
    static void addControlStep(const NqBenchmarkCase& benchmarkCase, NqBenchmarkRun& run);

    /// One step of each motion filter.
    static void addFilters(NqBenchmarkRun& run);

    /// An expression; entries are per node.
    static void addExpressions(NqBenchmarkRun& run);

    /// Writing and reading a list with one constraint of each type.
    static void addXml(NqBenchmarkRun& run);
};
