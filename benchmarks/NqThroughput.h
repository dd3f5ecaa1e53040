#pragma once

#include "NqBenchmarkCase.h"

#include <functional>
#include <string>

/// Steps a second of independent loops: of one, and of two at once on two cores, with loops that each thread
/// made itself, or one made for both. By the wall clock, in short turns that follow each other, since the
/// cores of a virtual machine are seldom equal and seldom keep their speed: what both do at once is divided
/// by the mean of what each does alone. The rate and the two ratios are medians.
class NqThroughput {
public:
    /// Makes that many steps.
    using Loop = std::function<void(unsigned steps)>;

    /// Control steps of this library.
    static NqThroughput ofControl(const NqBenchmarkCase& benchmarkCase, unsigned runs);

    /// Steps that need neither memory nor each other: what the machine gives to a second thread.
    static NqThroughput ofAdditions(unsigned runs);

    /// The table of all of them, with the robots of a folder.
    static void print(const char* title, const std::string& models, unsigned runs);

    std::string text(const std::string& title) const;

private:
    using Make = std::function<Loop()>;

    NqThroughput(const Make& make, unsigned steps, unsigned runs);

    double m_Alone = 0.0; ///< steps a second
    double m_OwnLoops = 0.0;
    double m_LoopsOfOne = 0.0;
    std::size_t m_Bytes = 0; ///< of a loop with its end-effectors, without the robot
};
