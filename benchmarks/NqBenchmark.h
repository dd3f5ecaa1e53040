#pragma once

#include "NqBenchmarkCase.h"
#include "NqBenchmarkOptions.h"
#include "NqBenchmarkRun.h"
#include "NqControlPeer.h"
#include "NqLimitedContest.h"
#include "NqSolverContest.h"

/// The program: makes the cases, sees that all who take part come to the same results, measures them and
/// reports.
class NqBenchmark {
public:
    explicit NqBenchmark(const NqBenchmarkOptions& options) : m_Options(options) {}

    /// The exit status. `program` is the name in argv.
    int execute(char* program);

private:
    /// A case with those who take part in it.
    struct Contest {
        std::unique_ptr<NqBenchmarkCase> benchmarkCase;
        std::vector<std::unique_ptr<NqControlPeer>> peers;
        bool hasStages; ///< whether our stages are measured one by one
    };

    bool enter(std::unique_ptr<NqBenchmarkCase> benchmarkCase, bool hasStages = true);
    bool makeContests();
    bool check();
    bool addWork();
    void addContest(const Contest& contest);
    std::string measureStepTimes();
    bool writeJson(const std::string& stepTimes) const;
    int count() const;

    NqBenchmarkOptions m_Options;
    std::vector<Contest> m_Contests;
    std::vector<NqSolverContest> m_Solvers;
    std::vector<std::unique_ptr<NqLimitedContest>> m_LimitedSolvers;
    NqBenchmarkRun m_Run;
};
