#include "NqThroughput.h"

#include "NqBenchmarkCases.h"
#include "NqBenchmarkText.h"
#include "NqOwnPeer.h"

#include <algorithm>
#include <array>
#include <barrier>
#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <pthread.h>
#include <sched.h>

namespace {

constexpr unsigned kThreads = 2;
constexpr double kRunSeconds = 0.02;

using Clock = std::chrono::steady_clock;
using Make = std::function<NqThroughput::Loop()>;

double secondsOf(const NqThroughput::Loop& loop, unsigned steps) {
    const Clock::time_point start = Clock::now();
    loop(steps);
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Keeps this thread on the i-th of the cores that the process may use.
void keepOnCore(unsigned i) {
    static const cpu_set_t allowed = [] {
        cpu_set_t cores;
        sched_getaffinity(0, sizeof cores, &cores);
        return cores;
    }();
    unsigned count = 0;
    for (unsigned core = 0; core < CPU_SETSIZE; ++core) {
        if (CPU_ISSET(core, &allowed) && count++ == i) {
            cpu_set_t one;
            CPU_ZERO(&one);
            CPU_SET(core, &one);
            pthread_setaffinity_np(pthread_self(), sizeof one, &one);
        }
    }
}

struct Rates {
    double alone = 0.0; ///< mean of what each core does while the other one rests
    double together = 0.0;
};

/// Two loops, each on a core of its own: first one, then the other, then both.
Rates measure(const Make& make, unsigned steps, bool isMadeByOne) {
    std::array<NqThroughput::Loop, kThreads> loops;
    std::array<double, kThreads> alone{}, together{};
    const auto makeReady = [&](unsigned i) {
        loops[i] = make();
        loops[i](1);
    };
    for (unsigned i = 0; i < kThreads && isMadeByOne; ++i) {
        makeReady(i);
    }
    std::barrier atTurn(kThreads);
    std::array<std::thread, kThreads> running;
    for (unsigned i = 0; i < kThreads; ++i) {
        running[i] = std::thread([&, i] {
            keepOnCore(i);
            if (!isMadeByOne) {
                makeReady(i);
            }
            for (unsigned turn = 0; turn < kThreads; ++turn) {
                atTurn.arrive_and_wait();
                if (turn == i) {
                    alone[i] = steps / secondsOf(loops[i], steps);
                }
            }
            atTurn.arrive_and_wait();
            together[i] = steps / secondsOf(loops[i], steps);
        });
    }
    for (std::thread& thread : running) {
        thread.join();
    }
    return {(alone[0] + alone[1]) / kThreads, together[0] + together[1]};
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

NqThroughput NqThroughput::ofControl(const NqBenchmarkCase& benchmarkCase, unsigned runs) {
    const auto make = [&benchmarkCase]() -> Loop {
        const bool isOfLimbs = benchmarkCase.tasks().size() > 1;
        auto own = std::make_shared<NqOwnPeer>(benchmarkCase, isOfLimbs ? NqOwnPeer::NullSpace::Sparse
                                                                        : NqOwnPeer::NullSpace::Dense);
        return [own = std::move(own)](unsigned steps) {
            for (unsigned step = 0; step < steps; ++step) {
                own->step(step);
            }
        };
    };
    constexpr unsigned kTried = 2 * 256;
    const double seconds = secondsOf(make(), kTried);
    return {make, static_cast<unsigned>(kTried * kRunSeconds / seconds) + 1, runs};
}

NqThroughput NqThroughput::ofAdditions(unsigned runs) {
    const auto make = []() -> Loop {
        return [](unsigned steps) {
            unsigned sum = 0;
            for (unsigned step = 0; step < steps; ++step) {
                benchmark::DoNotOptimize(sum += step);
            }
        };
    };
    constexpr unsigned kTried = 1'000'000;
    return {make, static_cast<unsigned>(kTried * kRunSeconds / secondsOf(make(), kTried)), runs};
}

NqThroughput::NqThroughput(const Make& make, unsigned steps, unsigned runs) {
    const std::size_t before = mallinfo2().uordblks;
    Loop loop = make();
    loop(1);
    m_Bytes = mallinfo2().uordblks - before;
    loop = nullptr;
    std::vector<double> alone, ownLoops, loopsOfOne;
    for (unsigned run = 0; run < runs; ++run) {
        const Rates own = measure(make, steps, false), ofOne = measure(make, steps, true);
        alone.push_back(own.alone);
        ownLoops.push_back(own.together / own.alone);
        loopsOfOne.push_back(ofOne.together / ofOne.alone);
    }
    m_Alone = median(alone);
    m_OwnLoops = median(ownLoops);
    m_LoopsOfOne = median(loopsOfOne);
}

void NqThroughput::print(const char* title, const std::string& models, unsigned runs) {
    std::printf("\n%-42s %13s %14s %18s %11s\n", title, "one", "two threads", "made by one thread",
                "bytes each");
    for (const auto& makeCase : {NqBenchmarkCases::arm, NqBenchmarkCases::humanoid}) {
        if (const auto benchmarkCase = makeCase(models, 256)) {
            std::fputs(ofControl(*benchmarkCase, runs).text(benchmarkCase->title()).c_str(), stdout);
        }
    }
    std::fputs(ofAdditions(runs).text("additions, with no memory").c_str(), stdout);
}

std::string NqThroughput::text(const std::string& title) const {
    return NqBenchmarkText::formatted("  %-40s %13.0f %14.2f %18.2f %11zu\n", title.c_str(), m_Alone,
                                      m_OwnLoops, m_LoopsOfOne, m_Bytes);
}
