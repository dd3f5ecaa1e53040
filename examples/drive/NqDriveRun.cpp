#include "NqDriveRun.h"

#include "NqArmSketcher.h"
#include "NqDriveText.h"
#include "NqMessageCollector.h"

#include <algorithm>
#include <chrono>
#include <cmath>

using NqDriveText::fixed;
using NqDriveText::inQuotes;
using NqDriveText::significant;

namespace {

/// Without a lower largest error for this long, in seconds of the run, the arm counts as stuck.
constexpr double kPatience = 2.0;
/// What counts as lower: this share of the tolerance.
constexpr double kLeastProgress = 0.1;
/// At the last way point the end-effectors must also be at rest: slower than this many tolerances per second.
constexpr double kRestSpeed = 10.0;
/// Postures drawn between the start and the end.
constexpr std::size_t kPosturesBetween = 12;
/// Points of an end-effector's path that are handed on for drawing.
constexpr std::size_t kPathPoints = 1500;

std::string inQuotes(const std::string& text) {
    return "'" + text + "'";
}

} // namespace

NqDriveRun::NqDriveRun(const NqDriveTask& task)
    : m_Task(task), m_Loop(task.manipulator(), task.endEffectors(), 1.0 / task.options().rate),
      m_Recorder(m_Loop.joints(), m_Loop.endEffectors()) {
    m_Loop.setMetric(task.metric());
    m_Loop.setPosture(task.posture(), task.options().gain);
    m_Loop.setPositions(task.start());

    m_Record.options = task.options();
    m_Record.robot = task.manipulator().manipulatorLabel();
    m_Record.notes = task.notes();
    m_Record.metric = task.metric();
    m_Record.posture = task.posture();
    m_Record.endEffectors.resize(m_Loop.endEffectors());
    for (std::size_t e = 0; e < m_Loop.endEffectors(); ++e) {
        m_Record.endEffectors[e].name = task.endEffectorNames()[e];
        m_Record.endEffectors[e].speedLimit =
            m_Loop.endEffector(e).motionThreshold() * m_Loop.endEffector(e).speedFactor();
    }
    m_Record.joints.resize(m_Loop.joints());
    for (unsigned j = 0; j < m_Loop.joints(); ++j) {
        NqDriveRecord::Joint& joint = m_Record.joints[j];
        joint.description = task.manipulator().linkByIndex(j)->joint();
        joint.start = joint.end = joint.least = joint.greatest = task.start()[j];
    }
    for (const auto& targets : task.targets()) {
        NqDriveRecord::WayPoint& wayPoint = m_Record.wayPoints.emplace_back();
        wayPoint.positions.resize(m_Loop.joints());
        for (const NqEndEffectorPlacement& target : targets) {
            wayPoint.targets.push_back(target.coordSysXForm().translation());
        }
    }
    m_LastPoints = m_Loop.points();
}

std::size_t NqDriveRun::farthest() const {
    const auto& errors = m_Loop.errors();
    return static_cast<std::size_t>(std::max_element(errors.begin(), errors.end()) - errors.begin());
}

void NqDriveRun::execute(Watcher& watcher) {
    using Outcome = NqDriveRecord::Outcome;
    const NqMessageCollector messages;
    const auto begin = std::chrono::steady_clock::now();
    const auto steps = static_cast<std::uint64_t>(std::ceil(m_Task.options().time * m_Task.options().rate));
    Outcome outcome = Outcome::TimeOut;
    startWayPoint();
    noteSample(true);
    while (true) {
        if (isWayPointReached()) {
            NqDriveRecord::WayPoint& wayPoint = m_Record.wayPoints[m_WayPoint];
            wayPoint.time = m_Loop.time();
            std::copy(m_Loop.positions().begin(), m_Loop.positions().end(), wayPoint.positions.begin());
            watcher.wayPointReached(*this);
            if (m_WayPoint + 1 == m_Record.wayPoints.size()) {
                outcome = Outcome::Reached;
                break;
            }
            ++m_WayPoint;
            startWayPoint();
            continue;
        }
        if (m_Loop.steps() >= steps) {
            break;
        }
        if (!m_Loop.step()) {
            outcome = Outcome::NoSolution;
            break;
        }
        noteStep();
        noteSample(false);
        watcher.stepDone(*this);
        if (isStalled()) {
            const bool isAtLimit = m_Loop.time() - m_RangeTime < 0.5 * kPatience && m_RangeTime > 0.0;
            outcome = isAtLimit ? Outcome::JointAtLimit : Outcome::NoProgress;
            break;
        }
    }
    m_Record.wallTime = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    if (m_Recorder.time(m_Recorder.rows() - 1) < m_Loop.time()) {
        noteSample(true);
    }
    m_Record.notes.insert(m_Record.notes.end(), messages.lines().begin(), messages.lines().end());
    conclude(outcome);
}

void NqDriveRun::startWayPoint() {
    for (std::size_t e = 0; e < m_Loop.endEffectors(); ++e) {
        m_Loop.setTarget(e, m_Task.targets()[m_WayPoint][e]);
    }
    m_BestError = m_Loop.errors()[farthest()];
    m_BestTime = m_Loop.time();
}

bool NqDriveRun::isWayPointReached() const {
    const double tolerance = m_Task.options().tolerance;
    const bool isLast = m_WayPoint + 1 == m_Record.wayPoints.size();
    return std::all_of(m_Loop.errors().begin(), m_Loop.errors().end(),
                       [&](double error) { return error <= tolerance; }) &&
           (!isLast || std::all_of(m_Loop.speeds().begin(), m_Loop.speeds().end(),
                                   [&](double speed) { return speed <= kRestSpeed * tolerance; }));
}

bool NqDriveRun::isStalled() {
    const double error = m_Loop.errors()[farthest()];
    if (error < m_BestError - kLeastProgress * m_Task.options().tolerance) {
        m_BestError = error;
        m_BestTime = m_Loop.time();
    }
    return m_Loop.time() - m_BestTime > kPatience;
}

/// What the summary needs of every step, recorded or not.
void NqDriveRun::noteStep() {
    const double timeStep = 1.0 / m_Task.options().rate;
    for (std::size_t j = 0; j < m_Record.joints.size(); ++j) {
        NqDriveRecord::Joint& joint = m_Record.joints[j];
        joint.end = m_Loop.positions()[j];
        joint.least = std::min(joint.least, joint.end);
        joint.greatest = std::max(joint.greatest, joint.end);
        joint.peakRate = std::max(joint.peakRate, std::abs(m_Loop.rates()[j]));
    }
    for (std::size_t e = 0; e < m_Record.endEffectors.size(); ++e) {
        NqDriveRecord::EndEffector& endEffector = m_Record.endEffectors[e];
        endEffector.error = m_Loop.errors()[e];
        endEffector.peakSpeed = std::max(endEffector.peakSpeed, m_Loop.speeds()[e]);
        endEffector.pathLength += (m_Loop.points()[e] - m_LastPoints[e]).mag();
        m_LastPoints[e] = m_Loop.points()[e];
    }
    if (m_Loop.brake() != NqDriveLoop::Brake::None) {
        const unsigned joint = m_Loop.brakingJoint();
        m_Record.slowedTime += timeStep;
        if (m_Loop.brake() == NqDriveLoop::Brake::Rate) {
            m_Record.joints[joint].slowedByRate += timeStep;
        } else {
            m_Record.joints[joint].slowedByRange += timeStep;
            m_RangeJoint = joint;
            m_RangeTime = m_Loop.time();
        }
    }
    const double determinant = std::abs(m_Loop.determinant());
    if (determinant < m_Record.leastDeterminant) {
        m_Record.leastDeterminant = determinant;
        m_Record.leastDeterminantTime = m_Loop.time();
    }
    m_Record.greatestDeterminant = std::max(m_Record.greatestDeterminant, determinant);
}

void NqDriveRun::noteSample(bool isKept) {
    m_Recorder.add({m_Loop.time(), static_cast<double>(m_WayPoint + 1), m_Loop.determinant(),
                    m_Loop.slowing(), m_Loop.positions().data(), m_Loop.rates().data(),
                    m_Loop.points().data(), m_Loop.errors().data(), m_Loop.speeds().data()},
                   isKept);
}

void NqDriveRun::conclude(NqDriveRecord::Outcome outcome) {
    m_Record.outcome = outcome;
    m_Record.time = m_Loop.time();
    m_Record.steps = m_Loop.steps();
    for (std::size_t e = 0; e < m_Record.endEffectors.size(); ++e) {
        m_Record.endEffectors[e].error = m_Loop.errors()[e];
    }
    if (m_Record.steps == 0) {
        m_Record.leastDeterminant = std::abs(m_Loop.determinant());
    }
    m_Record.verdict = verdict();
    sketch();
}

std::string NqDriveRun::verdict() const {
    const std::size_t count = m_Record.wayPoints.size();
    const std::string after = fixed(m_Record.time, 3) + " s";
    if (m_Record.isReached()) {
        return (count == 1 ? "the way point was reached in "
                           : "all " + std::to_string(count) + " way points were reached in ") +
               after;
    }
    const std::size_t e = farthest();
    const std::string left = inQuotes(m_Record.endEffectors[e].name) + " is " +
                             significant(m_Loop.errors()[e], 4) + " m from way point " +
                             std::to_string(m_WayPoint + 1);
    const std::string singular =
        m_Record.isNearlySingular() ? " (it came near a singular posture: out of reach?)" : "";
    const char* hint = m_Record.steps == 0 ? "; start elsewhere (--start)" : "";
    switch (m_Record.outcome) {
    case NqDriveRecord::Outcome::JointAtLimit:
        return "stopped after " + after + ": joint " +
               inQuotes(m_Record.joints[m_RangeJoint].description.name()) + " is at its limit, and " + left;
    case NqDriveRecord::Outcome::NoProgress:
        return "stopped after " + after + ": no progress for " + significant(kPatience, 3) + " s" +
               idleDirection() + ", and " + left + singular;
    case NqDriveRecord::Outcome::NoSolution:
        return "stopped after " + after + ": there are no finite joint rates, the posture is singular" +
               idleDirection() + ", and " + left + hint;
    default:
        return "the time of " + after + " is over, and " + left + singular;
    }
}

/// A direction in which no joint moves its end-effector at all, in words.
std::string NqDriveRun::idleDirection() const {
    unsigned row = 0;
    for (std::size_t e = 0; e < m_Loop.endEffectors(); ++e) {
        for (unsigned i = 0; i < m_Loop.endEffector(e).doc(); ++i, ++row) {
            const auto& entries = m_Loop.jacobian()[row];
            const bool isIdle = std::all_of(entries.begin(), entries.end(),
                                            [](double entry) { return std::abs(entry) < 1.0e-12; });
            if (isIdle) {
                return " (no joint moves " + inQuotes(m_Record.endEffectors[e].name) +
                       (i < 3 ? std::string(" along ") + "xyz"[i] : " in row " + std::to_string(i)) + ")";
            }
        }
    }
    return {};
}

void NqDriveRun::sketch() {
    NqArmSketcher sketcher(m_Task.manipulator(), m_Task.endEffectors());
    m_Record.sketch = sketcher.frame();
    m_Record.sketch.start = sketcher.posture("start", m_Task.start());
    const std::size_t rows = m_Recorder.rows();
    std::vector<double> positions(m_Loop.joints());
    for (std::size_t i = 1; i < kPosturesBetween && rows > kPosturesBetween; ++i) {
        for (std::size_t j = 0; j < positions.size(); ++j) {
            positions[j] = m_Recorder.position(i * (rows - 1) / kPosturesBetween, j);
        }
        m_Record.sketch.between.push_back(sketcher.posture("", positions));
    }
    for (std::size_t w = 0; w < m_Record.wayPoints.size(); ++w) {
        const NqDriveRecord::WayPoint& wayPoint = m_Record.wayPoints[w];
        const bool isEnd = w + 1 == m_Record.wayPoints.size();
        if (wayPoint.isReached() && !isEnd) {
            m_Record.sketch.wayPoints.push_back(sketcher.posture(std::to_string(w + 1), wayPoint.positions));
        }
    }
    for (const auto& targets : m_Task.targets()) {
        for (std::size_t e = 0; e < targets.size(); ++e) {
            m_Loop.setTarget(e, targets[e]);
            m_Record.sketch.targets.push_back(m_Loop.systemTarget(e).coordSysXForm().translation());
        }
    }
    m_Record.sketch.last = sketcher.posture(
        m_Record.isReached() ? std::to_string(m_Record.wayPoints.size()) : "end", m_Loop.positions());
    m_Record.sketch.paths.resize(m_Loop.endEffectors());
    const std::size_t stride = std::max<std::size_t>(1, rows / kPathPoints);
    for (std::size_t e = 0; e < m_Loop.endEffectors(); ++e) {
        for (std::size_t row = 0; row < rows; row += stride) {
            m_Record.sketch.paths[e].push_back(m_Recorder.point(row, e));
        }
        m_Record.sketch.paths[e].push_back(m_Recorder.point(rows - 1, e));
    }
}
