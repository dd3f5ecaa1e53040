#include <nqControlLoop/NqPostureSearch.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace {

constexpr unsigned kStarts = 40;
constexpr unsigned kWanted = 4;   ///< postures to choose from
constexpr unsigned kSteps = 60;   ///< from each start
constexpr double kTimeStep = 0.1; ///< s, in which a joint moves a few tenths of a radian
/// How much nearer than the loop's own tolerance a posture must come.
constexpr double kShare = 0.5;

NqControlLoopSettings searching(NqControlLoopSettings settings) {
    settings.setTimeStep(kTimeStep);
    settings.setAccelerationTime(0.0);
    settings.setAccelerationLimits({});
    settings.setPosture({});
    settings.setApproach(1.0 / kTimeStep);
    settings.setBlocked(NqControlLoopSettings::Slide);
    return settings;
}

} // namespace

NqPostureSearch::NqPostureSearch(const NqControlLoop& loop)
    : m_Manipulator(loop.manipulator()), m_Loop(m_Manipulator, searching(loop.settings())),
      m_Present(loop.positions()), m_Tolerance(kShare * loop.settings().tolerance()) {
    for (std::size_t e = 0; e < loop.endEffectors(); ++e) {
        if (loop.isHard(e)) {
            m_Loop.addEndEffector(loop.name(e), loop.endEffector(e), false);
            m_Loop.setTarget(m_Loop.endEffectors() - 1, loop.target(e), loop.isTargetInSystem(e));
        }
    }
    m_Loop.setPositions(m_Present);
    m_Moves.assign(m_Present.size(), false);
    for (unsigned i = 0; i < m_Loop.rows(); ++i) {
        for (std::size_t j = 0; j < m_Moves.size(); ++j) {
            m_Moves[j] = m_Moves[j] || m_Loop.jacobian()[i][j] != 0.0;
        }
    }
}

bool NqPostureSearch::reach(const std::vector<double>& start) {
    m_Loop.setPositions(start);
    for (unsigned i = 0; i < kSteps; ++i) {
        if (m_Loop.largestError() <= m_Tolerance) {
            return true;
        }
        if (!m_Loop.step()) {
            return false;
        }
    }
    return m_Loop.largestError() <= m_Tolerance;
}

/// How long the slowest joint takes from the present posture, s.
double NqPostureSearch::travel(const std::vector<double>& posture) const {
    double longest = 0.0;
    for (unsigned j = 0; j < posture.size(); ++j) {
        const double rate = m_Manipulator.linkByIndex(j)->joint().rateLimit();
        longest = std::max(longest, std::abs(posture[j] - m_Present[j]) / (std::isfinite(rate) ? rate : 1.0));
    }
    return longest;
}

bool NqPostureSearch::find(std::vector<double>& posture) {
    std::mt19937_64 random(1);
    std::vector<double> start = m_Present;
    double least = std::numeric_limits<double>::infinity();
    unsigned found = 0;
    for (unsigned attempt = 0; attempt < kStarts && found < kWanted; ++attempt) {
        const double distance = std::min(1.0, 0.2 + 1.6 * attempt / kStarts);
        for (unsigned j = 0; j < start.size(); ++j) {
            const NqJointDescription& joint = m_Manipulator.linkByIndex(j)->joint();
            const double lower = std::max(joint.lowerPositionLimit(), m_Present[j] - std::numbers::pi);
            const double upper = std::min(joint.upperPositionLimit(), m_Present[j] + std::numbers::pi);
            const double drawn =
                lower + (upper - lower) * std::ldexp(static_cast<double>(random() >> 11), -53);
            start[j] = m_Moves[j] && joint.rateLimit() > 0.0
                           ? m_Present[j] + distance * (drawn - m_Present[j])
                           : m_Present[j];
        }
        if (reach(start)) {
            ++found;
            if (const double time = travel(m_Loop.positions()); time < least) {
                least = time;
                posture = m_Loop.positions();
            }
        }
    }
    return found > 0;
}
