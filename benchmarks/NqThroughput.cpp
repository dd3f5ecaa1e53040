#include "NqThroughput.h"

#include "NqBenchmarkText.h"
#include "NqOwnPeer.h"

#include <algorithm>
#include <array>
#include <barrier>
#include <chrono>
#include <memory>
#include <thread>

#include <malloc.h>

namespace {

constexpr unsigned kMostThreads = 2;

double stepsPerSecond(const NqBenchmarkCase& benchmarkCase, unsigned threads, unsigned steps,
                      bool isMadeByOne) {
    std::array<std::unique_ptr<NqOwnPeer>, kMostThreads> loops;
    const auto make = [&](unsigned i) {
        loops[i] = std::make_unique<NqOwnPeer>(benchmarkCase);
        loops[i]->step(0);
    };
    for (unsigned i = 0; i < threads && isMadeByOne; ++i) {
        make(i);
    }
    using Clock = std::chrono::steady_clock;
    Clock::time_point start, end;
    std::barrier atStart(threads, [&]() noexcept { start = Clock::now(); });
    std::barrier atEnd(threads, [&]() noexcept { end = Clock::now(); });
    std::array<std::thread, kMostThreads> running;
    for (unsigned i = 0; i < threads; ++i) {
        running[i] = std::thread([&, i] {
            if (!isMadeByOne) {
                make(i);
            }
            atStart.arrive_and_wait();
            for (unsigned step = 0; step < steps; ++step) {
                loops[i]->step(step);
            }
            atEnd.arrive_and_wait();
        });
    }
    for (unsigned i = 0; i < threads; ++i) {
        running[i].join();
    }
    return threads * steps / std::chrono::duration<double>(end - start).count();
}

/// Memory of a loop after its first step.
std::size_t bytesOfLoop(const NqBenchmarkCase& benchmarkCase) {
    const std::size_t before = mallinfo2().uordblks;
    const auto loop = std::make_unique<NqOwnPeer>(benchmarkCase);
    loop->step(0);
    return mallinfo2().uordblks - before;
}

} // namespace

NqThroughput::NqThroughput(const NqBenchmarkCase& benchmarkCase, unsigned steps, unsigned runs)
    : m_Bytes(bytesOfLoop(benchmarkCase)) {
    for (unsigned run = 0; run < runs; ++run) {
        m_Alone = std::max(m_Alone, stepsPerSecond(benchmarkCase, 1, steps, false));
        m_OwnLoops = std::max(m_OwnLoops, stepsPerSecond(benchmarkCase, 2, steps, false));
        m_LoopsOfOne = std::max(m_LoopsOfOne, stepsPerSecond(benchmarkCase, 2, steps, true));
    }
}

std::string NqThroughput::text(const std::string& title) const {
    return NqBenchmarkText::formatted("  %-44s %9.0f %14.2f %18.2f %11zu\n", title.c_str(), m_Alone,
                                      m_OwnLoops / m_Alone, m_LoopsOfOne / m_Alone, m_Bytes);
}
