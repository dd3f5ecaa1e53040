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

namespace {

constexpr unsigned kMostThreads = 2;
constexpr double kRunSeconds = 0.02;

using Clock = std::chrono::steady_clock;
using Make = std::function<NqThroughput::Loop()>;

double secondsOf(const NqThroughput::Loop& loop, unsigned steps) {
    const Clock::time_point start = Clock::now();
    loop(steps);
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double stepsPerSecond(const Make& make, unsigned threads, unsigned steps, bool isMadeByOne) {
    std::array<NqThroughput::Loop, kMostThreads> loops;
    std::array<double, kMostThreads> rates{};
    const auto makeReady = [&](unsigned i) {
        loops[i] = make();
        loops[i](1);
    };
    for (unsigned i = 0; i < threads && isMadeByOne; ++i) {
        makeReady(i);
    }
    std::barrier atStart(threads);
    std::array<std::thread, kMostThreads> running;
    for (unsigned i = 0; i < threads; ++i) {
        running[i] = std::thread([&, i] {
            if (!isMadeByOne) {
                makeReady(i);
            }
            loops[i](steps / 4); // until the threads have found a core each
            atStart.arrive_and_wait();
            rates[i] = steps / secondsOf(loops[i], steps);
        });
    }
    for (unsigned i = 0; i < threads; ++i) {
        running[i].join();
    }
    return rates[0] + rates[1];
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
        const double rate = stepsPerSecond(make, 1, steps, false);
        alone.push_back(rate);
        ownLoops.push_back(stepsPerSecond(make, 2, steps, false) / rate);
        loopsOfOne.push_back(stepsPerSecond(make, 2, steps, true) / rate);
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
