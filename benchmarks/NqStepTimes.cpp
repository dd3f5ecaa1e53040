#include "NqStepTimes.h"

#include "NqBenchmarkText.h"

#include <algorithm>
#include <chrono>

NqStepTimes::NqStepTimes(NqControlPeer& peer, unsigned steps) : m_Sorted(steps) {
    using Clock = std::chrono::steady_clock;
    for (unsigned step = 0; step < 1000; ++step) {
        peer.step(step);
    }
    for (unsigned step = 0; step < steps; ++step) {
        const Clock::time_point start = Clock::now();
        peer.step(step);
        m_Sorted[step] = std::chrono::duration<double, std::nano>(Clock::now() - start).count();
    }
    std::sort(m_Sorted.begin(), m_Sorted.end());
}

double NqStepTimes::quantile(double share) const {
    const auto index = static_cast<std::size_t>(share * static_cast<double>(m_Sorted.size()));
    return m_Sorted[std::min(index, m_Sorted.size() - 1)];
}

std::string NqStepTimes::text(const std::string& title) const {
    return NqBenchmarkText::formatted("  %-54s %7.0f %7.0f %7.0f %9.0f\n", title.c_str(), quantile(0.5),
                                      quantile(0.99), quantile(0.999), quantile(1.0));
}

std::string NqStepTimes::json(const std::string& title) const {
    return NqBenchmarkText::formatted(
        "{\"subject\": %s, \"steps\": %zu, \"median_ns\": %.0f, \"p99_ns\": %.0f, "
        "\"p999_ns\": %.0f, \"longest_ns\": %.0f}",
        NqBenchmarkText::quoted(title).c_str(), m_Sorted.size(), quantile(0.5), quantile(0.99),
        quantile(0.999), quantile(1.0));
}
