#pragma once

#include "NqBenchmarkCase.h"

#include <string>

/// Control steps a second of independent loops on one robot, one on each thread: on one thread, and on two
/// with loops that each thread made itself, or one made for all. By the wall clock, the best of some runs.
/// Beside it the memory of a loop with its end-effectors, without the robot.
class NqThroughput {
public:
    NqThroughput(const NqBenchmarkCase& benchmarkCase, unsigned steps, unsigned runs);

    std::string text(const std::string& title) const;

private:
    double m_Alone = 0.0; ///< steps a second
    double m_OwnLoops = 0.0;
    std::size_t m_Bytes;
    double m_LoopsOfOne = 0.0;
};
