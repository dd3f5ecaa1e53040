#pragma once

#include "NqBenchmarkTable.h"

#include <functional>

/// Measures with Google Benchmark, which finds the number of iterations, repeats, and mixes the repetitions
/// of all who are measured, so that what happens on the machine meanwhile falls on everyone.
///
/// It is given the times: processor time of this thread, by the clock of the operating system. That leaves
/// out what other processes take, and how the harness itself was compiled.
class NqBenchmarkRun {
public:
    /// `steps` repetitions of `work` are timed together; entries are per one of these. It may be a stage of
    /// what the subject does.
    void add(const std::string& task, const std::string& subject, unsigned steps,
             std::function<void(unsigned steps)> work, const std::string& stage = {});

    /// As often as `repetitions` says, each `seconds` long at least. `program` is the name in argv.
    void execute(char* program, int repetitions, double seconds);

    const NqBenchmarkTable& table() const { return m_Table; }

private:
    struct Entry {
        unsigned steps;
        std::function<void(unsigned)> work;
    };

    std::vector<Entry> m_Entries;
    NqBenchmarkTable m_Table;
};
