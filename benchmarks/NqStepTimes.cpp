#include "NqStepTimes.h"

#include "NqBenchmarkText.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>

#include <sys/resource.h>

namespace {

/// How often this thread has had to make room for others.
long interruptions() {
    rusage usage;
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nivcsw;
}

} // namespace

NqStepTimes::NqStepTimes(NqControlPeer& peer, unsigned steps, unsigned runs, std::size_t spoiledBytes) {
    using Clock = std::chrono::steady_clock;
    std::vector<double> times(steps);
    std::vector<unsigned char> others(spoiledBytes);
    for (unsigned run = 0; run < runs; ++run) {
        const long before = interruptions();
        for (unsigned step = 0; step < steps; ++step) {
            std::fill(others.begin(), others.end(), static_cast<unsigned char>(step));
            benchmark::DoNotOptimize(others.data());
            const Clock::time_point start = Clock::now();
            peer.step(step);
            times[step] = std::chrono::duration<double, std::nano>(Clock::now() - start).count();
        }
        const long during = interruptions() - before;
        std::sort(times.begin(), times.end());
        if (run == 0 || during < m_Interruptions ||
            (during == m_Interruptions && times.back() < m_Sorted.back())) {
            m_Sorted = times;
            m_Interruptions = during;
        }
    }
}

double NqStepTimes::quantile(double share) const {
    const auto index = static_cast<std::size_t>(share * static_cast<double>(m_Sorted.size()));
    return m_Sorted[std::min(index, m_Sorted.size() - 1)];
}

std::string NqStepTimes::text(const std::string& title) const {
    return NqBenchmarkText::formatted("  %-58s %7.0f %7.0f %7.0f %9.0f %8ld\n", title.c_str(), quantile(0.5),
                                      quantile(0.99), quantile(0.999), quantile(1.0), m_Interruptions);
}

std::string NqStepTimes::json(const std::string& title) const {
    return NqBenchmarkText::formatted(
        "{\"subject\": %s, \"steps\": %zu, \"median_ns\": %.0f, \"p99_ns\": %.0f, "
        "\"p999_ns\": %.0f, \"longest_ns\": %.0f, \"interruptions\": %ld}",
        NqBenchmarkText::quoted(title).c_str(), m_Sorted.size(), quantile(0.5), quantile(0.99),
        quantile(0.999), quantile(1.0), m_Interruptions);
}
