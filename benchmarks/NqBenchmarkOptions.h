#pragma once

#include <string>
#include <vector>

/// What the user asks for on the command line.
struct NqBenchmarkOptions {
    bool arm = true;      ///< cases (a) and (b)
    bool humanoid = true; ///< case (c)
    bool chains = true;   ///< case (d)
    bool stages = true;
    bool types = true;
    bool solver = true;
    bool stepTimes = true;
    bool isQuick = false;
    bool checksOnly = false;
    std::string models = NQ_MODELS;
    std::string model; ///< a robot of the user's, with frame constraints on `links`
    std::vector<std::string> links;
    std::string json;
    std::string count; ///< case, "a", "b" or "c", to make steps of without timing
    std::string subject = "ours";
    unsigned steps = 1000;

    /// False, with a line on what is wrong, for a command line that can't be understood.
    static bool parse(int argc, const char* const* argv, NqBenchmarkOptions& options);
};
