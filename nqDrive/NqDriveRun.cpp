#include "NqDriveRun.h"

#include "NqArmSketcher.h"
#include "NqDriveText.h"
#include "NqMessageCollector.h"

#include <nqControlLoop/NqPostureSearch.h>

#include <algorithm>
#include <chrono>
#include <cmath>

using NqDriveText::fixed;
using NqDriveText::inQuotes;
using NqDriveText::significant;

namespace {

/// Without a lower largest error for this long, in seconds of the run, the arm counts as stuck.
constexpr double kPatience = 2.0;
/// And for this long, s, it may still move without coming nearer.
constexpr double kRestPatience = 1.0;
/// The pace is taken over this long, s: one that won't get there in the time that is left is too slow.
constexpr double kPaceTime = 1.0;
/// Soft end-effectors count as having come as near as they can when for this long they came no nearer.
constexpr double kSoftPatience = 0.5;
/// An arm that stands still for this long, s, all rates below that, rad/s or m/s, looks for another posture.
constexpr double kRestTime = 0.5;
constexpr double kRest = 0.01;
/// What counts as lower, or nearer: this share of the tolerance.
constexpr double kLeastProgress = 0.1;
constexpr double kLeastSoftProgress = 1.0;
/// At the last way point the end-effectors must also be at rest: slower than this many tolerances per second.
constexpr double kRestSpeed = 10.0;
/// A share of the commanded step above this counts as all of it.
constexpr double kHardlySlowed = 0.98;
/// A joint that slowed the arm for this share of the slowed time, or more, is named.
constexpr double kBlameShare = 0.2;
/// How near to an end of its range a joint creeps, rad or m.
constexpr double kNearEnd = 0.01;
/// A least singular value of the rows below which the posture is called singular.
constexpr double kSingular = 0.02;
/// A run goes through another posture so often at most, and counts as there at this distance of its joints.
constexpr unsigned kDetours = 2;
constexpr unsigned kSearches = 4;
constexpr double kNearPosture = 0.02;
/// A rate that changes its sign from step to step counts with both sides above this, rad/s or m/s.
constexpr double kFlip = 0.05;
/// A velocity asked for below this is none.
constexpr double kIdle = 1.0e-9;
/// Steps between two looks at the clock.
constexpr std::uint64_t kStepsPerLook = 64;
/// Postures drawn between the start and the end.
constexpr std::size_t kPosturesBetween = 12;
/// Points of an end-effector's path that are handed on for drawing.
constexpr std::size_t kPathPoints = 1500;

/// Whether a part is so slow that a motion filter on its way to a stop minds its acceleration no longer.
bool isCreeping(const NqTargetKind::Part& part, double speed, double timeStep) {
    return speed < 2.0 * part.approach * timeStep;
}

} // namespace

NqDriveRun::NqDriveRun(const NqDriveTask& task)
    : m_Task(task), m_Loop(task.loop()), m_Recorder(m_Loop.joints(), m_Loop.endEffectors(),
                                                    m_Loop.parts().size(), task.options().keepsEveryStep) {
    m_Record.options = task.options();
    m_Record.robot = task.manipulator().manipulatorLabel();
    m_Record.notes = task.notes();
    m_Record.metric = task.metric();
    m_Record.posture = task.posture();
    for (std::size_t e = 0; e < m_Loop.endEffectors(); ++e) {
        m_Record.endEffectors.push_back({task.endEffectorNames()[e], m_Loop.kind(e), m_Loop.isHard(e)});
    }
    for (const NqControlLoop::Part& part : m_Loop.parts()) {
        std::string name = task.endEffectorNames()[part.endEffector];
        if (m_Loop.kind(part.endEffector).parts().size() > 1) {
            name += part.part.isAngular ? ", angular" : ", linear";
        }
        m_Record.parts.push_back({part.endEffector, part.part, name});
        const bool isNumber = m_Loop.kind(part.endEffector).form().content == NqTargetForm::Number;
        double& limit = m_Record.parts.back().limits.speedLimit;
        if (isNumber && !std::isfinite(limit)) {
            // The loop doesn't know of it, since there is no filter: the end-effector keeps to it by itself.
            limit = m_Loop.endEffector(part.endEffector).motionThreshold();
        }
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
        for (std::size_t e = 0; e < targets.size(); ++e) {
            wayPoint.targets.push_back(NqDriveTarget::text(m_Loop.kind(e), targets[e]));
        }
    }
}

bool NqDriveRun::isHard(std::size_t part) const {
    return m_Loop.isHard(m_Loop.parts()[part].endEffector);
}

std::size_t NqDriveRun::farthest() const {
    std::size_t farthest = 0;
    for (std::size_t p = 1; p < m_Loop.parts().size(); ++p) {
        const bool isFarther = m_Loop.errors()[p] > m_Loop.errors()[farthest];
        if (isHard(p) == isHard(farthest) ? isFarther : isHard(p)) {
            farthest = p;
        }
    }
    return farthest;
}

double NqDriveRun::hardError() const {
    const std::size_t p = farthest();
    return isHard(p) ? m_Loop.errors()[p] : 0.0;
}

/// Root of the sum of the squares, as the solver has it but for the weights.
double NqDriveRun::softError() const {
    double sum = 0.0;
    for (std::size_t p = 0; p < m_Loop.parts().size(); ++p) {
        sum += isHard(p) ? 0.0 : m_Loop.errors()[p] * m_Loop.errors()[p];
    }
    return std::sqrt(sum);
}

void NqDriveRun::execute(Watcher& watcher) {
    using Outcome = NqDriveRecord::Outcome;
    const NqMessageCollector messages;
    const auto begin = std::chrono::steady_clock::now();
    Outcome outcome = Outcome::TimeOut;
    startWayPoint();
    noteSample(true);
    while (true) {
        if (isWayPointReached()) {
            NqDriveRecord::WayPoint& wayPoint = m_Record.wayPoints[m_WayPoint];
            wayPoint.time = m_Loop.time();
            std::copy(m_Loop.positions().begin(), m_Loop.positions().end(), wayPoint.positions.begin());
            wayPoint.base = m_Loop.baseFrame();
            watcher.wayPointReached(*this);
            if (m_WayPoint + 1 == m_Record.wayPoints.size()) {
                outcome = Outcome::Reached;
                break;
            }
            ++m_WayPoint;
            startWayPoint();
            continue;
        }
        if (isTimeOver()) {
            break;
        }
        if (m_Loop.steps() % kStepsPerLook == 0 &&
            std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count() >
                m_Task.options().wall) {
            outcome = Outcome::WallTimeOut;
            break;
        }
        if (!m_Loop.step()) {
            outcome = Outcome::NoStep;
            break;
        }
        noteStep();
        noteSample(false);
        watcher.stepDone(*this);
        if (m_Loop.isGoing()) {
            endDetour();
            continue;
        }
        const bool isStopped = isStalled();
        const bool isHeld = isHeldAtRest();
        if ((isStopped || isHeld || isTooSlow()) && !beginDetour(isStopped || isHeld) && isStopped) {
            outcome = Outcome::NoProgress;
            break;
        }
    }
    m_Record.wallTime = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    if (m_Recorder.time(m_Recorder.rows() - 1) < m_Loop.time()) {
        noteSample(true);
    }
    const std::vector<std::string> notes = messages.counted();
    m_Record.notes.insert(m_Record.notes.end(), notes.begin(), notes.end());
    conclude(outcome);
}

bool NqDriveRun::isTimeOver() const {
    return static_cast<double>(m_Loop.steps()) >= m_Task.options().time * m_Task.options().rate;
}

void NqDriveRun::startWayPoint() {
    for (std::size_t e = 0; e < m_Loop.endEffectors(); ++e) {
        m_Loop.setTarget(e, m_Task.targets()[m_WayPoint][e]);
    }
    m_Searches = 0;
    watchFromHere();
}

void NqDriveRun::watchFromHere() {
    m_BestError = m_PaceError = hardError();
    m_BestSoftError = softError();
    m_BestTime = m_BestSoftTime = m_PaceTime = m_RestTime = m_Loop.time();
}

/// Soft end-effectors may be anywhere once they come no nearer or, as long as there are hard ones, when the
/// time is over.
bool NqDriveRun::isWayPointReached() const {
    const double tolerance = m_Task.options().tolerance;
    const bool isLast = m_WayPoint + 1 == m_Record.wayPoints.size();
    const bool isSoftSettled =
        m_Loop.time() - m_BestSoftTime > kSoftPatience || (isTimeOver() && m_Loop.rows() > 0);
    for (std::size_t p = 0; p < m_Loop.parts().size(); ++p) {
        const bool isNear = m_Loop.errors()[p] <= tolerance;
        const bool isAtRest = !isLast || m_Loop.speeds()[p] <= kRestSpeed * tolerance;
        if (!(isNear && isAtRest) && (isHard(p) || !isSoftSettled)) {
            return false;
        }
    }
    return true;
}

/// Whether the end-effectors have come no nearer for a while: the hard ones or, once these are there, the
/// soft ones, which until then may have had to give way.
bool NqDriveRun::isStalled() {
    const double tolerance = m_Task.options().tolerance;
    const bool isOnTheWay = hardError() > tolerance;
    if (hardError() < m_BestError - kLeastProgress * tolerance) {
        m_BestError = hardError();
        m_BestTime = m_Loop.time();
    }
    if (isOnTheWay || softError() < m_BestSoftError - kLeastSoftProgress * tolerance) {
        m_BestSoftError = softError();
        m_BestSoftTime = m_Loop.time();
    }
    const double since = isOnTheWay ? m_BestTime : std::max(m_BestTime, m_BestSoftTime);
    const double waited = m_Loop.time() - since;
    return waited > kPatience && (!isMoving() || waited > kPatience + kRestPatience);
}

bool NqDriveRun::isMoving() const {
    return std::any_of(m_Loop.rates().begin(), m_Loop.rates().end(),
                       [](double rate) { return std::abs(rate) > kRest; });
}

/// Whether the arm has stood still for a while, away from hard targets, and nothing will change that. Is so
/// once in each place.
bool NqDriveRun::isHeldAtRest() {
    if (m_Loop.rows() == 0 || isMoving() || !m_Loop.status().isStuck()) {
        m_RestTime = m_Loop.time();
        m_HasSearchedHere = false;
    }
    return m_Loop.time() - m_RestTime > kRestTime && !m_HasSearchedHere;
}

/// Whether the hard end-effectors come nearer by so little that they won't be there in time.
bool NqDriveRun::isTooSlow() {
    const double since = m_Loop.time() - m_PaceTime;
    if (since < kPaceTime) {
        return false;
    }
    const double pace = (m_PaceError - hardError()) / since;
    m_PaceError = hardError();
    m_PaceTime = m_Loop.time();
    return pace * (m_Task.options().time - m_Loop.time()) < hardError();
}

/// Whether there is another posture that reaches the targets, which the arm then goes to.
bool NqDriveRun::beginDetour(bool isThorough) {
    if (m_HasSearchedHere || !m_Task.options().mayDetour || m_Task.options().isBaseFree ||
        m_Record.detours >= kDetours || m_Searches >= kSearches ||
        hardError() <= m_Task.options().tolerance ||
        m_Loop.status().kind == NqControlLoopStatus::Contradictory || !idleDirection().empty()) {
        return false;
    }
    std::vector<double> posture;
    ++m_Searches;
    m_Record.hasSearched = !NqPostureSearch(m_Loop).find(posture, isThorough);
    m_HasSearchedHere = isThorough;
    if (m_Record.hasSearched || !m_Loop.goTo(posture)) {
        return false;
    }
    m_Record.status = m_Loop.status();
    m_LeastSingularValue = m_Loop.leastSingularValue();
    m_DetourCause = cause();
    ++m_Record.detours;
    return true;
}

void NqDriveRun::endDetour() {
    if (m_Loop.leftToGo() < kNearPosture) {
        m_Loop.follow();
        m_HasSearchedHere = false;
        watchFromHere();
    }
}

/// What the summary needs of every step, recorded or not.
void NqDriveRun::noteStep() {
    const double timeStep = 1.0 / m_Task.options().rate;
    for (std::size_t j = 0; j < m_Record.joints.size(); ++j) {
        NqDriveRecord::Joint& joint = m_Record.joints[j];
        joint.end = m_Loop.positions()[j];
        joint.least = std::min(joint.least, joint.end);
        joint.greatest = std::max(joint.greatest, joint.end);
        const double rate = m_Loop.rates()[j];
        joint.peakRate = std::max(joint.peakRate, std::abs(rate));
        joint.flips +=
            rate * joint.lastRate < 0.0 && std::min(std::abs(rate), std::abs(joint.lastRate)) > kFlip;
        joint.lastRate = rate;
    }
    for (std::size_t p = 0; p < m_Record.parts.size(); ++p) {
        NqDriveRecord::Part& part = m_Record.parts[p];
        const double speed = m_Loop.speeds()[p];
        part.peakSpeed = std::max(part.peakSpeed, speed);
        part.pathLength += speed * timeStep;
        if (!isCreeping(part.limits, speed, timeStep)) {
            part.peakAcceleration = std::max(part.peakAcceleration, m_Loop.accelerations()[p]);
        }
    }
    const NqControlLoopStatus& status = m_Loop.status();
    if (m_Loop.slowing() < kHardlySlowed) {
        m_Record.slowedTime += timeStep;
        for (const NqControlLoopStatus::Joint& held : status.joints) {
            NqDriveRecord::Joint& joint = m_Record.joints[held.joint];
            (held.cause == NqJointBounds::Cause::Range ? joint.slowedByRange : joint.slowedByRate) +=
                timeStep;
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
                    m_Loop.placements().data(), m_Loop.errors().data(), m_Loop.speeds().data(),
                    m_Loop.accelerations().data(), m_Loop.baseFrame()},
                   isKept);
}

void NqDriveRun::conclude(NqDriveRecord::Outcome outcome) {
    m_Record.outcome = outcome;
    m_Record.time = m_Loop.time();
    m_Record.steps = m_Loop.steps();
    for (std::size_t p = 0; p < m_Record.parts.size(); ++p) {
        m_Record.parts[p].error = m_Loop.errors()[p];
    }
    if (m_Record.steps == 0) {
        m_Record.leastDeterminant = std::abs(m_Loop.determinant());
    }
    m_Record.status = m_Loop.status();
    m_LeastSingularValue = m_Loop.leastSingularValue();
    m_Record.verdict = verdict();
    sketch();
}

std::string NqDriveRun::verdict() const {
    return outcomeText() + chatter();
}

/// The joint whose rate changed its sign most often from step to step, in words.
std::string NqDriveRun::chatter() const {
    const auto most = std::max_element(m_Record.joints.begin(), m_Record.joints.end(),
                                       [](const auto& a, const auto& b) { return a.flips < b.flips; });
    return most->flips == 0
               ? ""
               : "; joint " + inQuotes(most->description.name()) + " chattered: its rate changed sign " +
                     std::to_string(most->flips) + " times from step to step";
}

std::string NqDriveRun::outcomeText() const {
    const std::size_t count = m_Record.wayPoints.size();
    const std::string after = fixed(m_Record.time, 3) + " s";
    if (m_Record.isReached()) {
        const bool isNearOnly = m_Loop.rows() == 0 && m_Loop.largestError() > m_Task.options().tolerance;
        return (isNearOnly   ? "the soft end-effectors came as near as they get in "
                : count == 1 ? "the way point was reached in "
                             : "all " + std::to_string(count) + " way points were reached in ") +
               after + (m_Record.detours == 0 ? "" : ", after a detour through another posture") +
               softRemainder();
    }
    const std::size_t p = farthest();
    const std::string left = inQuotes(m_Record.parts[p].name) + " is " + distanceText(p) +
                             " from way point " + std::to_string(m_WayPoint + 1);
    switch (m_Record.outcome) {
    case NqDriveRecord::Outcome::NoProgress:
        return "stopped after " + after + ": " + cause() + ", and " + left;
    case NqDriveRecord::Outcome::NoStep:
        return "stopped after " + after + ": no step could be made" +
               (m_Record.notes.empty() ? "" : " (" + m_Record.notes.back() + ")") + ", and " + left;
    case NqDriveRecord::Outcome::WallTimeOut:
        return "the run took more than " + significant(m_Task.options().wall, 6) +
               " s by the clock on the wall, and " + left;
    default:
        return "the time of " + after + " is over" +
               (m_Loop.isGoing() ? " on a detour through another posture (" + m_DetourCause + ")"
                                 : slowedBy()) +
               ", and " + left;
    }
}

/// Names of joints in words: "joint 'a'", "joints 'a' and 'b'".
std::string NqDriveRun::jointNames(const std::vector<std::size_t>& joints) const {
    std::string names = joints.size() == 1 ? "joint " : "joints ";
    for (std::size_t i = 0; i < joints.size(); ++i) {
        names += (i == 0                   ? ""
                  : i + 1 == joints.size() ? " and "
                                           : ", ") +
                 inQuotes(m_Record.joints[joints[i]].description.name());
    }
    return names;
}

/// Why there is no progress, in words.
std::string NqDriveRun::cause() const {
    const NqControlLoopStatus& status = m_Record.status;
    std::vector<std::size_t> still;
    std::vector<std::size_t> atEnd;
    for (const NqControlLoopStatus::Joint& held : status.joints) {
        if (held.cause == NqJointBounds::Cause::Range) {
            atEnd.push_back(held.joint);
        } else if (held.cause == NqJointBounds::Cause::Rate) {
            still.push_back(held.joint);
        }
    }
    std::string text;
    const auto also = [&](const std::string& words) { text += (text.empty() ? "" : ", ") + words; };
    switch (status.kind) {
    case NqControlLoopStatus::Contradictory:
        return inQuotes(m_Record.endEffectors[status.endEffector].name) + " and " +
               inQuotes(m_Record.endEffectors[status.other].name) +
               " depend on each other, and their targets contradict each other";
    case NqControlLoopStatus::OutOfReach:
        if (m_Loop.rows() == 0) {
            break; // soft end-effectors balance each other
        }
        return "the target is out of reach: the posture is singular, and nothing leads nearer" + inVain();
    default:
        break;
    }
    const std::string idle = idleDirection();
    if (!idle.empty()) {
        also("the posture is singular" + idle);
    } else if (m_LeastSingularValue < kSingular) {
        also("the posture is singular (the least singular value of the constraints is " +
             significant(m_LeastSingularValue, 2) + ")");
    }
    if (!atEnd.empty()) {
        also(jointNames(atEnd) + (atEnd.size() == 1 ? " is at its limit" : " are at their limits"));
    }
    if (!still.empty()) {
        also(jointNames(still) + (still.size() == 1 ? " is at its rate limit" : " are at their rate limits"));
    }
    if (text.empty()) {
        text = closeToLimits();
    }
    const bool isSoft = hardError() <= m_Task.options().tolerance && m_Record.hasSoftEndEffectors();
    if (isSoft) {
        also("the hard end-effectors leave the soft ones no way nearer");
    }
    if (text.empty()) {
        text = "no progress for " + significant(kPatience, 3) + " s";
    }
    return text + inVain();
}

std::string NqDriveRun::inVain() const {
    return m_Record.hasSearched ? ", no other posture was found that reaches the target" : "";
}

/// The joints so near to an end of their range that they creep, if they move a hard end-effector, in words.
std::string NqDriveRun::closeToLimits() const {
    std::vector<std::size_t> joints;
    for (std::size_t j = 0; j < m_Record.joints.size(); ++j) {
        const NqJointDescription& joint = m_Record.joints[j].description;
        const double position = m_Loop.positions()[j];
        const double left =
            std::min(position - joint.lowerPositionLimit(), joint.upperPositionLimit() - position);
        const NqReArray& jacobian = m_Loop.jacobian();
        bool isMoving = false;
        for (unsigned i = 0; i < jacobian.rows(); ++i) {
            isMoving = isMoving || std::abs(jacobian[i][j]) > kIdle;
        }
        if (isMoving && left < kNearEnd) {
            joints.push_back(j);
        }
    }
    return joints.empty() ? ""
                          : jointNames(joints) + (joints.size() == 1 ? " is close to its limit"
                                                                     : " are close to their limits");
}

/// The joints that slowed the arm for a good part of the time, or what slows it in the end, in words.
std::string NqDriveRun::slowedBy() const {
    std::vector<std::size_t> joints;
    for (std::size_t j = 0; j < m_Record.joints.size(); ++j) {
        const NqDriveRecord::Joint& joint = m_Record.joints[j];
        if (joint.slowedByRange + joint.slowedByRate > kBlameShare * m_Record.time) {
            joints.push_back(j);
        }
    }
    if (!joints.empty()) {
        return ", " + jointNames(joints) + " slowed the arm by " +
               (joints.size() == 1 ? "its limits" : "their limits");
    }
    if (m_Loop.slowing() >= kHardlySlowed) {
        return "";
    }
    const double least = m_Loop.status().leastSingularValue;
    const std::string close = closeToLimits();
    return !close.empty() ? ", " + close
           : std::isfinite(least)
               ? ", a posture that is nearly singular slowed the arm (least singular value " +
                     significant(least, 3) + ")"
               : "";
}

/// What is left between the end-effectors and their targets, with its unit.
std::string NqDriveRun::distanceText(std::size_t part) const {
    const std::string& unit = m_Record.parts[part].limits.unit;
    return significant(m_Loop.errors()[part], 4) + (unit.empty() ? "" : " " + unit);
}

/// The soft end-effectors that had to stay away, in words.
std::string NqDriveRun::softRemainder() const {
    std::string text;
    for (std::size_t p = 0; p < m_Record.parts.size(); ++p) {
        if (!isHard(p) && m_Loop.errors()[p] > m_Task.options().tolerance) {
            text += ", " + inQuotes(m_Record.parts[p].name) + " (soft) within " + distanceText(p);
        }
    }
    return text;
}

/// A direction in which an end-effector is to go and no joint moves it at all, in words.
std::string NqDriveRun::idleDirection() const {
    unsigned row = 0;
    for (const NqDriveRecord::Part& part : m_Record.parts) {
        if (!m_Record.endEffectors[part.endEffector].isHard) {
            continue;
        }
        for (unsigned i = 0; i < part.limits.rows; ++i, ++row) {
            const auto& entries = m_Loop.jacobian()[row];
            const bool isIdle = std::all_of(entries.begin(), entries.end(),
                                            [](double entry) { return std::abs(entry) < 1.0e-12; });
            if (isIdle && std::abs(m_Loop.command()[row]) > kIdle) {
                const std::string axis = part.limits.isAngular ? " about " : " along ";
                return " (no joint moves " + inQuotes(part.name) +
                       (part.limits.rows == 3 ? axis + "xyz"[i] : "") + ")";
            }
        }
    }
    return {};
}

void NqDriveRun::sketch() {
    NqArmSketcher sketcher(m_Task.manipulator(), m_Task.kinds());
    m_Record.sketch = sketcher.frame();
    m_Record.sketch.start = sketcher.posture("start", m_Task.start());
    const std::size_t rows = m_Recorder.rows();
    std::vector<double> positions(m_Loop.joints());
    for (std::size_t i = 1; i < kPosturesBetween && rows > kPosturesBetween; ++i) {
        for (std::size_t j = 0; j < positions.size(); ++j) {
            positions[j] = m_Recorder.position(i * (rows - 1) / kPosturesBetween, j);
        }
        m_Record.sketch.between.push_back(
            sketcher.posture("", positions, m_Recorder.base(i * (rows - 1) / kPosturesBetween)));
    }
    for (std::size_t w = 0; w < m_Record.wayPoints.size(); ++w) {
        const NqDriveRecord::WayPoint& wayPoint = m_Record.wayPoints[w];
        const bool isEnd = w + 1 == m_Record.wayPoints.size();
        if (wayPoint.isReached() && !isEnd) {
            m_Record.sketch.wayPoints.push_back(
                sketcher.posture(std::to_string(w + 1), wayPoint.positions, wayPoint.base));
        }
    }
    for (const auto& targets : m_Task.targets()) {
        for (std::size_t e = 0; e < targets.size(); ++e) {
            if (m_Loop.kind(e).hasPlace()) {
                m_Loop.setTarget(e, targets[e]);
                auto& sketched = m_Loop.isHard(e) ? m_Record.sketch.targets : m_Record.sketch.softTargets;
                sketched.push_back(m_Loop.systemTarget(e).coordSysXForm().translation());
            }
        }
    }
    m_Record.sketch.last =
        sketcher.posture(m_Record.isReached() ? std::to_string(m_Record.wayPoints.size()) : "end",
                         m_Loop.positions(), m_Loop.baseFrame());
    const std::size_t stride = std::max<std::size_t>(1, rows / kPathPoints);
    for (std::size_t e = 0; e < m_Loop.endEffectors(); ++e) {
        if (!m_Loop.kind(e).hasPlace()) {
            continue;
        }
        auto& path = m_Record.sketch.paths.emplace_back();
        for (std::size_t row = 0; row < rows; row += stride) {
            path.push_back(m_Recorder.point(row, e));
        }
        path.push_back(m_Recorder.point(rows - 1, e));
    }
}
