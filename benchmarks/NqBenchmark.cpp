#include "NqBenchmark.h"

#include "NqAgreement.h"
#include "NqBenchmarkCases.h"
#include "NqBenchmarkMachine.h"
#include "NqBenchmarkText.h"
#include "NqOwnPeer.h"
#include "NqPeers.h"
#include "NqStages.h"
#include "NqStepTimes.h"
#include "NqThroughput.h"
#include "NqTypeStages.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>

namespace {

constexpr unsigned kTimedSteps = 100000;
constexpr unsigned kTimedRuns = 5;
constexpr unsigned kThreadRuns = 41;
/// Between cold steps so much is written that nothing of them is left in the caches.
constexpr unsigned kColdSteps = 1000;
constexpr std::size_t kSpoiledBytes = 16 << 20;

/// What no library can do without: sine and cosine of as many joints.
void makeSinesAndCosines(const std::vector<double>& angles) {
    for (const double angle : angles) {
        double sine = 0.0, cosine = 0.0;
        ::sincos(angle, &sine, &cosine);
        benchmark::DoNotOptimize(sine);
        benchmark::DoNotOptimize(cosine);
    }
}

} // namespace

int NqBenchmark::execute(char* program) {
    if (!m_Options.count.empty()) {
        return count();
    }
    if (!makeContests() || !check()) {
        return 1;
    }
    if (m_Options.checksOnly) {
        return 0;
    }
    std::printf("%s\n", NqBenchmarkMachine::text().c_str());
    if (!addWork()) {
        return 1;
    }
    m_Run.execute(program, m_Options.isQuick ? 5 : 21, m_Options.isQuick ? 0.002 : 0.01);
    std::fputs(m_Run.table().text().c_str(), stdout);
    const std::string stepTimes = m_Options.stepTimes ? measureStepTimes() : std::string();
    return writeJson(stepTimes) ? 0 : 1;
}

bool NqBenchmark::enter(std::unique_ptr<NqBenchmarkCase> benchmarkCase, bool hasStages) {
    if (!benchmarkCase) {
        return false;
    }
    auto peers = nqPeers(*benchmarkCase);
    m_Contests.push_back({std::move(benchmarkCase), std::move(peers), hasStages});
    return true;
}

bool NqBenchmark::makeContests() {
    using namespace NqBenchmarkCases;
    const std::string& models = m_Options.models;
    if ((m_Options.arm && !(enter(arm(models)) && enter(armWithPoint(models)))) ||
        (m_Options.humanoid && !enter(humanoid(models)))) {
        return false;
    }
    if (!m_Options.model.empty() &&
        !enter(NqBenchmarkCase::makeFromFile(m_Options.model, m_Options.model, m_Options.links, std::nullopt,
                                             256))) {
        return false;
    }
    if (m_Options.chains) {
        for (auto& chain : chains()) {
            if (!enter(std::move(chain), false)) {
                return false;
            }
        }
    }
    if (m_Options.solver) {
        if (const auto benchmarkCase = humanoid(models, 16)) {
            m_Solvers.push_back(NqSolverContest::of(*benchmarkCase));
        }
        for (const auto& [columns, rows] : {std::pair(7U, 6U), {7U, 3U}, {20U, 12U}, {44U, 24U}}) {
            m_Solvers.push_back(NqSolverContest::random(rows, columns));
            m_LimitedSolvers.push_back(std::make_unique<NqLimitedContest>(rows, columns));
        }
    }
    return true;
}

bool NqBenchmark::check() {
    for (const Contest& contest : m_Contests) {
        NqAgreement agreement(*contest.benchmarkCase);
        for (const auto& peer : contest.peers) {
            if (!agreement.check(*peer)) {
                return false;
            }
        }
        std::printf("%s: %zu agree within %.1e\n", contest.benchmarkCase->title().c_str(),
                    contest.peers.size(), agreement.largest());
    }
    return std::all_of(m_Solvers.begin(), m_Solvers.end(),
                       [](NqSolverContest& contest) { return contest.check(); });
}

bool NqBenchmark::addWork() {
    for (const Contest& contest : m_Contests) {
        addContest(contest);
    }
    for (NqSolverContest& contest : m_Solvers) {
        contest.addTo(m_Run);
    }
    for (const auto& contest : m_LimitedSolvers) {
        contest->addTo(m_Run);
    }
    if (m_Options.stages) {
        for (const Contest& contest : m_Contests) {
            if (contest.hasStages) {
                NqStages::addControlStep(*contest.benchmarkCase, m_Run);
            }
        }
        NqStages::addFilters(m_Run);
        NqStages::addExpressions(m_Run);
        NqStages::addXml(m_Run);
    }
    if (m_Options.types) {
        using namespace NqBenchmarkCases;
        return NqTypeStages::add(arm(m_Options.models), "link7", "link4", m_Run) &&
               NqTypeStages::add(humanoid(m_Options.models), "left_hand", "chest", m_Run);
    }
    return true;
}

void NqBenchmark::addContest(const Contest& contest) {
    const NqBenchmarkCase& benchmarkCase = *contest.benchmarkCase;
    const unsigned steps = benchmarkCase.steps();
    const std::string kinematics = benchmarkCase.title() + ": frames, Jacobian, velocity";
    std::string last;
    for (const auto& peer : contest.peers) {
        if (const std::string name = peer->kinematicsName(); !name.empty() && name != last) {
            last = name;
            m_Run.add(kinematics, name, steps, [&peer](unsigned count) {
                for (unsigned k = 0; k < count; ++k) {
                    peer->kinematics(k);
                }
            });
        }
    }
    m_Run.add(kinematics, "sincos of as many angles", steps, [&benchmarkCase](unsigned count) {
        for (unsigned k = 0; k < count; ++k) {
            makeSinesAndCosines(benchmarkCase.pose(k).positions);
        }
    });
    for (const auto& peer : contest.peers) {
        m_Run.add(benchmarkCase.title() + ": control step", peer->name(), steps, [&peer](unsigned count) {
            for (unsigned k = 0; k < count; ++k) {
                peer->step(k);
            }
        });
    }
    for (const auto& peer : contest.peers) {
        peer->step(0);
        if (peer->bareStep(0)) {
            m_Run.add(benchmarkCase.title() + ": bare step, without filter and error", peer->name(), steps,
                      [&peer](unsigned count) {
                          for (unsigned k = 0; k < count; ++k) {
                              peer->bareStep(k);
                          }
                      });
        }
    }
}

std::string NqBenchmark::measureStepTimes() {
    std::string json;
    std::printf("\n%-60s %7s %7s %7s %9s %8s\n", "single steps of ours, ns of wall clock", "median", "99 %",
                "99.9 %", "longest", "switches");
    for (const auto& makeCase :
         {NqBenchmarkCases::arm, NqBenchmarkCases::armWithPoint, NqBenchmarkCases::humanoid}) {
        if (const auto benchmarkCase = makeCase(m_Options.models, 256)) {
            NqOwnPeer own(*benchmarkCase);
            const NqStepTimes times(own, kTimedSteps, m_Options.isQuick ? 1 : kTimedRuns);
            std::fputs(times.text(benchmarkCase->title()).c_str(), stdout);
            json += (json.empty() ? "\n    " : ",\n    ") + times.json(benchmarkCase->title());
            const NqStepTimes cold(own, kColdSteps, 1, kSpoiledBytes);
            const std::string title = benchmarkCase->title() + ", cold";
            std::fputs(cold.text(title).c_str(), stdout);
            json += ",\n    " + cold.json(title);
        }
    }
    NqThroughput::print("steps a second of independent loops", m_Options.models,
                        m_Options.isQuick ? 5 : kThreadRuns);
    return json;
}

bool NqBenchmark::writeJson(const std::string& stepTimes) const {
    if (m_Options.json.empty()) {
        return true;
    }
    std::ofstream file(m_Options.json);
    file << "{\n  \"machine\": " << NqBenchmarkMachine::json() << ",\n  \"table\": " << m_Run.table().json()
         << ",\n  \"single_steps\": [" << stepTimes << "\n  ]\n}\n";
    file.close();
    if (!file) {
        std::fprintf(stderr, "cannot write '%s'\n", m_Options.json.c_str());
    }
    return static_cast<bool>(file);
}

int NqBenchmark::count() const {
    using namespace NqBenchmarkCases;
    const std::string& models = m_Options.models;
    const auto benchmarkCase = m_Options.count == "a"   ? arm(models)
                               : m_Options.count == "b" ? armWithPoint(models)
                               : m_Options.count == "c" ? humanoid(models)
                                                        : nullptr;
    if (!benchmarkCase) {
        std::fprintf(stderr, "nqBenchmark: there is no case '%s' to count\n", m_Options.count.c_str());
        return 1;
    }
    for (const auto& peer : nqPeers(*benchmarkCase)) {
        if (peer->name() == m_Options.subject) {
            for (unsigned step = 0; step < m_Options.steps; ++step) {
                peer->step(step);
            }
            return 0;
        }
    }
    std::fprintf(stderr, "nqBenchmark: nobody named '%s' takes part\n", m_Options.subject.c_str());
    return 1;
}
