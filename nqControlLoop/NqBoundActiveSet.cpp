#include <nqControlLoop/NqBoundActiveSet.h>
#include <nqControlLoop/NqCholesky.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// By how much a bound may be passed before that counts, for a bound of 1.
constexpr double kSlack = 1.0e-12;

/// By how much the last settling may still move an unknown.
constexpr double kSettled = 1.0e-9;

double slackOf(double bound) {
    return kSlack * (1.0 + std::abs(bound));
}

} // namespace

void NqBoundActiveSet::resize(unsigned unknowns) {
    m_Unknowns = unknowns;
    m_Columns.assign(unknowns, std::vector<double>(unknowns));
    m_Factor.assign(unknowns, std::vector<double>(unknowns));
    m_HasColumn.assign(unknowns, false);
    m_IsHeld.assign(unknowns, false);
    m_Holds.clear();
    m_Holds.reserve(unknowns);
    m_Change.assign(unknowns, 0.0);
    m_Start.assign(unknowns, 0.0);
}

void NqBoundActiveSet::forgetResponse() {
    std::fill(m_HasColumn.begin(), m_HasColumn.end(), false);
}

const std::vector<double>& NqBoundActiveSet::columnOf(Response& response, unsigned k) {
    if (!m_HasColumn[k]) {
        response.column(k, m_Columns[k]);
        m_HasColumn[k] = true;
    }
    return m_Columns[k];
}

/// The free unknown that is farthest beyond a bound becomes the entering one.
bool NqBoundActiveSet::pickViolated(const std::vector<double>& lower, const std::vector<double>& upper,
                                    const std::vector<double>& x) {
    double worst = 0.0;
    for (unsigned k = 0; k < m_Unknowns; ++k) {
        if (m_IsHeld[k]) {
            continue;
        }
        const double above = x[k] - upper[k];
        const double below = lower[k] - x[k];
        if (above > worst && above > slackOf(upper[k])) {
            worst = above;
            m_Entering = {k, true, 0.0};
        }
        if (below > worst && below > slackOf(lower[k])) {
            worst = below;
            m_Entering = {k, false, 0.0};
        }
    }
    return worst > 0.0;
}

/// Cholesky factors of P among the held unknowns.
void NqBoundActiveSet::factor(Response& response) {
    for (std::size_t i = 0; i < m_Holds.size(); ++i) {
        const std::vector<double>& column = columnOf(response, m_Holds[i].unknown);
        for (std::size_t j = 0; j <= i; ++j) {
            m_Factor[i][j] = column[m_Holds[j].unknown];
        }
    }
    NqCholesky::factor(m_Factor, m_Holds.size(), std::numeric_limits<double>::min());
}

/// How the held multipliers must change, for one of the entering one, so that the held unknowns stay.
void NqBoundActiveSet::direction(Response& response) {
    const std::vector<double>& column = columnOf(response, m_Entering.unknown);
    for (std::size_t i = 0; i < m_Holds.size(); ++i) {
        m_Change[i] = column[m_Holds[i].unknown];
    }
    NqCholesky::solve(m_Factor, m_Holds.size(), m_Change);
}

void NqBoundActiveSet::letGo(std::size_t hold) {
    m_IsHeld[m_Holds[hold].unknown] = false;
    m_Holds.erase(m_Holds.begin() + static_cast<std::ptrdiff_t>(hold));
}

NqBoundActiveSet::Outcome NqBoundActiveSet::solve(Response& response, const std::vector<double>& lower,
                                                  const std::vector<double>& upper,
                                                  const std::vector<double>& freedom, double leastShare,
                                                  std::vector<double>& x) {
    std::copy(x.begin(), x.end(), m_Start.begin());
    std::fill(m_IsHeld.begin(), m_IsHeld.end(), false);
    m_Holds.clear();
    m_Steps = 0;
    while (pickViolated(lower, upper, x)) {
        const unsigned p = m_Entering.unknown;
        const double bound = boundOf(m_Entering, lower, upper);
        const double sign = m_Entering.isUpper ? 1.0 : -1.0;
        const std::vector<double>& column = columnOf(response, p);
        bool isEntered = false;
        while (!isEntered) {
            if (++m_Steps > maxSteps()) {
                return Outcome::Capped;
            }
            direction(response);
            double gain = column[p];
            std::size_t blocking = m_Holds.size();
            double dualStep = std::numeric_limits<double>::infinity();
            for (std::size_t i = 0; i < m_Holds.size(); ++i) {
                const Hold& hold = m_Holds[i];
                gain -= m_Change[i] * column[hold.unknown];
                const double approach = sign * m_Change[i] * (hold.isUpper ? 1.0 : -1.0);
                if (lower[hold.unknown] < upper[hold.unknown] && approach > kSlack &&
                    std::abs(hold.multiplier) < dualStep * approach) {
                    dualStep = std::abs(hold.multiplier) / approach;
                    blocking = i;
                }
            }
            const bool isFree = gain > leastShare * freedom[p];
            const double fullStep = std::max(sign * (x[p] - bound), 0.0) / gain;
            isEntered = isFree && fullStep <= dualStep;
            if (!isEntered && blocking == m_Holds.size()) {
                return Outcome::Contradiction; // nothing to let go, or no numbers
            }
            const double step = sign * (isEntered ? fullStep : dualStep);
            if (isFree) {
                for (unsigned k = 0; k < m_Unknowns; ++k) {
                    double move = column[k];
                    for (std::size_t i = 0; i < m_Holds.size(); ++i) {
                        move -= m_Change[i] * m_Columns[m_Holds[i].unknown][k];
                    }
                    x[k] -= step * move;
                }
            }
            for (std::size_t i = 0; i < m_Holds.size(); ++i) {
                m_Holds[i].multiplier -= step * m_Change[i];
            }
            m_Entering.multiplier += step;
            if (isEntered) {
                m_IsHeld[p] = true;
                m_Holds.push_back(m_Entering);
            } else {
                letGo(blocking);
            }
            factor(response);
        }
    }
    return settle(response, lower, upper, x) ? Outcome::Solved : Outcome::Contradiction;
}

/// The same once more from the start, free of the rounding of the steps. False where that isn't the same: the
/// held unknowns then leave each other no freedom but rounding.
bool NqBoundActiveSet::settle(Response& response, const std::vector<double>& lower,
                              const std::vector<double>& upper, std::vector<double>& x) {
    if (!m_Holds.empty()) {
        for (std::size_t i = 0; i < m_Holds.size(); ++i) {
            m_Change[i] = x[m_Holds[i].unknown] - boundOf(m_Holds[i], lower, upper);
        }
        NqCholesky::solve(m_Factor, m_Holds.size(), m_Change);
        for (std::size_t i = 0; i < m_Holds.size(); ++i) {
            m_Holds[i].multiplier += m_Change[i];
        }
        std::copy(m_Start.begin(), m_Start.end(), x.begin());
        for (const Hold& hold : m_Holds) {
            const std::vector<double>& column = columnOf(response, hold.unknown);
            for (unsigned k = 0; k < m_Unknowns; ++k) {
                x[k] -= hold.multiplier * column[k];
            }
        }
    }
    double size = 1.0;
    double change = 0.0;
    const auto put = [&](unsigned k, double value) {
        size = std::max(size, std::abs(value));
        change = std::max(change, std::abs(x[k] - value));
        x[k] = value;
    };
    for (unsigned k = 0; k < m_Unknowns; ++k) {
        put(k, std::clamp(x[k], lower[k], upper[k]));
    }
    for (const Hold& hold : m_Holds) {
        put(hold.unknown, boundOf(hold, lower, upper));
    }
    return change <= kSettled * size;
}
