#include <nqControlLoop/NqPostureSearch.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <utility>

namespace {

constexpr unsigned kStarts = 40;
constexpr unsigned kThoroughStarts = 1000; ///< as long as no posture is found,
constexpr double kEffort = 1.0e5;          ///< and so many over the square of the joints
constexpr unsigned kWanted = 8;            ///< postures to choose from
constexpr unsigned kSteps = 60;            ///< from each start
constexpr unsigned kTrialSteps = 10;       ///< in which the error must fall,
constexpr double kFall = 0.9;              ///< to this share
constexpr unsigned kPieces = 12;           ///< of the way to a posture, to see how long it takes
constexpr double kTimeStep = 0.1;          ///< s, in which a joint moves a few tenths of a radian
/// How much nearer than the loop's own tolerance a posture must come.
constexpr double kShare = 0.5;

NqControlLoopSettings searching(NqControlLoopSettings settings) {
    settings.setTimeStep(kTimeStep);
    settings.setAccelerationTime(0.0);
    settings.setAccelerationLimits({});
    settings.setPosture({});
    settings.setPostureGain(0.0);
    settings.setApproach(1.0 / kTimeStep);
    settings.setBlocked(NqControlLoopSettings::Slide);
    settings.setIsBaseFixed(true); // a posture is of the joints alone
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
    NqPositionState present{NqXmlRealVector(m_Present)};
    present.setBaseFrame(loop.baseFrame());
    m_Loop.setState(present, NqVelocityState(static_cast<unsigned>(m_Present.size())));
    m_Moves.assign(m_Present.size(), false);
    for (unsigned i = 0; i < m_Loop.rows(); ++i) {
        for (std::size_t j = 0; j < m_Moves.size(); ++j) {
            m_Moves[j] = m_Moves[j] || m_Loop.jacobian()[i][j] != 0.0;
        }
    }
}

bool NqPostureSearch::reach(const std::vector<double>& start, bool mayGiveUp) {
    m_Loop.setPositions(start);
    double before = std::numeric_limits<double>::infinity();
    for (unsigned i = 0; i < kSteps; ++i) {
        const double error = m_Loop.largestError();
        if (error <= m_Tolerance) {
            return true;
        }
        if (mayGiveUp && i % kTrialSteps == 0) {
            if (error > kFall * before) {
                return false;
            }
            before = error;
        }
        if (!m_Loop.step()) {
            return false;
        }
    }
    return m_Loop.largestError() <= m_Tolerance;
}

/// Takes joints that turn by whole turns as near to the present posture as their ranges allow.
void NqPostureSearch::turnNearest(std::vector<double>& posture) {
    constexpr double turn = 2.0 * std::numbers::pi;
    for (unsigned j = 0; j < posture.size(); ++j) {
        const NqJointDescription& joint = m_Manipulator.linkByIndex(j)->joint();
        const double turned = posture[j] - turn * std::round((posture[j] - m_Present[j]) / turn);
        if (joint.type() == NqJointDescription::Revolute && turned != posture[j] &&
            turned >= joint.lowerPositionLimit() && turned <= joint.upperPositionLimit()) {
            const double found = std::exchange(posture[j], turned);
            m_Loop.setPositions(posture);
            if (m_Loop.largestError() > 2.0 * m_Tolerance) {
                posture[j] = found; // a number is wanted of the joint, turns and all
            }
        }
    }
}

/// How long the way there takes, s, along the straight line of the joints: by the slowest of joints and
/// end-effectors in each piece of it.
double NqPostureSearch::travel(const std::vector<double>& posture) {
    double slowest = 0.0; // of the joints, for a piece
    for (unsigned j = 0; j < posture.size(); ++j) {
        const double rate = m_Manipulator.linkByIndex(j)->joint().rateLimit();
        const double way = std::abs(posture[j] - m_Present[j]) / kPieces;
        slowest = std::max(slowest, way / (std::isfinite(rate) ? rate : 1.0));
    }
    double time = 0.0;
    std::vector<NqCoordinateSystemTransformation> before;
    std::vector<double> between = m_Present;
    for (unsigned piece = 0; piece <= kPieces; ++piece) {
        for (unsigned j = 0; j < posture.size(); ++j) {
            between[j] = m_Present[j] + (posture[j] - m_Present[j]) * piece / kPieces;
        }
        m_Loop.setPositions(between);
        double longest = slowest;
        for (std::size_t p = 0; p < m_Loop.parts().size() && piece > 0; ++p) {
            const auto& [e, part] = m_Loop.parts()[p];
            const NqCoordinateSystemTransformation& placement = m_Loop.placements()[e];
            double way = 0.0;
            if (part.isAngular) {
                NqVector axis;
                (before[e].orientation().inverse() * placement.orientation()).getAngleAxis(way, axis);
            } else {
                way = (placement.translation() - before[e].translation()).mag();
            }
            longest = std::max(longest, way / part.speedLimit);
        }
        time += piece > 0 ? longest : 0.0;
        before = m_Loop.placements();
    }
    return time;
}

bool NqPostureSearch::find(std::vector<double>& posture, bool isThorough) {
    std::mt19937_64 random(1);
    std::vector<double> start = m_Present;
    double least = std::numeric_limits<double>::infinity();
    unsigned found = 0;
    const double joints = static_cast<double>(start.size());
    const auto most = static_cast<unsigned>(
        isThorough ? std::clamp<double>(kEffort / (joints * joints), kStarts, kThoroughStarts) : kStarts);
    for (unsigned attempt = 0; attempt < (found == 0 ? most : kStarts) && found < kWanted; ++attempt) {
        const double distance = std::min(1.0, 0.2 + 1.6 * attempt / kStarts);
        for (unsigned j = 0; j < start.size(); ++j) {
            const NqJointDescription& joint = m_Manipulator.linkByIndex(j)->joint();
            const double lower = std::max(joint.lowerPositionLimit(), m_Present[j] - std::numbers::pi);
            const double upper = std::min(joint.upperPositionLimit(), m_Present[j] + std::numbers::pi);
            const double drawn =
                lower + (upper - lower) * std::ldexp(static_cast<double>(random() >> 11), -53);
            start[j] = m_Moves[j] && m_Loop.limits()[j].rate > 0.0
                           ? m_Present[j] + distance * (drawn - m_Present[j])
                           : m_Present[j];
        }
        if (reach(start, attempt >= kStarts)) {
            ++found;
            std::vector<double> there = m_Loop.positions();
            turnNearest(there);
            for (unsigned j = 0; j < there.size(); ++j) { // one that was measured beyond its range and stays
                const NqJointBounds::Limits& limits = m_Loop.limits()[j];
                there[j] = std::min(std::max(there[j], limits.lower), limits.upper);
            }
            if (const double time = travel(there); time < least) {
                least = time;
                posture = there;
            }
        }
    }
    return found > 0;
}
