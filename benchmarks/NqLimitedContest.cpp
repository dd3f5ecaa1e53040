#include "NqLimitedContest.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr unsigned kJacobians = 16;
constexpr double kEndless = std::numeric_limits<double>::infinity();

} // namespace

NqLimitedContest::NqLimitedContest(unsigned rows, unsigned columns)
    : m_Title("solver under bounds, " + std::to_string(columns) + " joints, " + std::to_string(rows) +
              " rows"),
      m_Jacobians(kJacobians, NqReArray(rows, columns)), m_Tool(std::make_shared<NqLimitedVelocityTool>()) {
    std::mt19937_64 random(20242);
    const auto drawn = [&] { return static_cast<double>(random() >> 11) * 0x1p-52 - 1.0; };
    for (NqReArray& jacobian : m_Jacobians) {
        for (unsigned i = 0; i < rows; ++i) {
            std::generate(jacobian[i].begin(), jacobian[i].end(), drawn);
        }
    }
    m_Gradient.resize(columns);
    m_Velocity.resize(rows);
    std::generate(m_Gradient.begin(), m_Gradient.end(), drawn);
    std::generate(m_Velocity.begin(), m_Velocity.end(), drawn);
    m_Metric = std::vector<double>(columns, 1.0);
}

/// Bounds close to the fastest rates: lowered until so many are held, whatever the others then do.
NqLimitedContest::Bounds NqLimitedContest::holding(std::size_t jacobian, unsigned rates) {
    const std::size_t n = m_Gradient.size();
    Bounds bounds{std::vector<double>(n, -kEndless), std::vector<double>(n, kEndless)};
    m_Tool->solve(m_Jacobians[jacobian], m_Metric, m_Gradient, m_Velocity, bounds.lower, bounds.upper);
    std::vector<double> sizes;
    for (const double rate : m_Tool->rates()) {
        sizes.push_back(std::abs(rate));
    }
    double limit = *std::max_element(sizes.begin(), sizes.end());
    for (unsigned tries = 0; tries < 400; ++tries) {
        std::fill(bounds.lower.begin(), bounds.lower.end(), -limit);
        std::fill(bounds.upper.begin(), bounds.upper.end(), limit);
        const auto outcome = m_Tool->solve(m_Jacobians[jacobian], m_Metric, m_Gradient, m_Velocity,
                                           bounds.lower, bounds.upper);
        const std::size_t held =
            outcome == NqLimitedVelocityTool::Outcome::Unlimited ? 0 : m_Tool->holds().size();
        if (held >= rates) {
            break;
        }
        limit *= 0.99;
    }
    return bounds;
}

void NqLimitedContest::add(NqBenchmarkRun& run, const std::string& subject, unsigned rates) {
    std::vector<Bounds>& bounds = m_Bounds.emplace_back();
    for (std::size_t i = 0; i < m_Jacobians.size(); ++i) {
        bounds.push_back(holding(i, rates));
    }
    const std::size_t which = m_Bounds.size() - 1;
    run.add(m_Title, subject, 4 * kJacobians, [this, which](unsigned count) {
        for (unsigned step = 0; step < count; ++step) {
            const std::size_t i = step % m_Jacobians.size();
            m_Tool->solve(m_Jacobians[i], m_Metric, m_Gradient, m_Velocity, m_Bounds[which][i].lower,
                          m_Bounds[which][i].upper);
        }
    });
}

void NqLimitedContest::addTo(NqBenchmarkRun& run) {
    m_Bounds.reserve(3);
    add(run, "none met", 0);
    add(run, "one held", 1);
    add(run, "two held", 2);
}
