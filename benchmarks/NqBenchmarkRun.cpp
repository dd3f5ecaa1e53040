#include "NqBenchmarkRun.h"

#include <benchmark/benchmark.h>

#include <ctime>

namespace {

/// Processor time of this thread, s.
double now() {
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1.0e-9 * static_cast<double>(time.tv_nsec);
}

/// Enters the repetitions in the table; the name of a benchmark is the index of its row.
class Reporter : public benchmark::BenchmarkReporter {
public:
    Reporter(NqBenchmarkTable& table, const std::function<unsigned(std::size_t)>& stepsOf)
        : m_Table(table), m_StepsOf(stepsOf) {}

    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                const std::size_t index = std::stoul(run.run_name.function_name);
                m_Table.enter(index, 1.0e9 * run.real_accumulated_time /
                                         (static_cast<double>(run.iterations) * m_StepsOf(index)));
            }
        }
    }

private:
    NqBenchmarkTable& m_Table;
    std::function<unsigned(std::size_t)> m_StepsOf;
};

} // namespace

void NqBenchmarkRun::add(const std::string& task, const std::string& subject, unsigned steps,
                         std::function<void(unsigned)> work, const std::string& stage) {
    m_Table.add(task, subject, stage);
    m_Entries.push_back({steps, std::move(work)});
}

void NqBenchmarkRun::execute(char* program, int repetitions, double seconds) {
    if (m_Entries.empty()) {
        return;
    }
    char mix[] = "--benchmark_enable_random_interleaving=true";
    char* arguments[] = {program, mix, nullptr};
    int count = 2;
    benchmark::Initialize(&count, arguments);
    for (std::size_t i = 0; i < m_Entries.size(); ++i) {
        const Entry& entry = m_Entries[i];
        benchmark::RegisterBenchmark(std::to_string(i).c_str(),
                                     [&entry](benchmark::State& state) {
                                         for ([[maybe_unused]] auto iteration : state) {
                                             const double start = now();
                                             entry.work(entry.steps);
                                             state.SetIterationTime(now() - start);
                                         }
                                     })
            ->UseManualTime()
            ->Repetitions(repetitions)
            ->MinTime(seconds);
    }
    Reporter reporter(m_Table, [this](std::size_t index) { return m_Entries[index].steps; });
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::ClearRegisteredBenchmarks();
}
