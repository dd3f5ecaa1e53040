#include "NqDriveTask.h"

#include "NqDriveText.h"
#include "NqMessageCollector.h"

#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

using NqDriveText::fixed;
using NqDriveText::inQuotes;
using NqDriveText::significant;

namespace {

std::string wayPointName(std::size_t wayPoint, const NqDriveWayPoint& wish) {
    return "way point " + std::to_string(wayPoint + 1) +
           (wish.source.empty() ? "" : " (" + wish.source + ")");
}

} // namespace

bool NqDriveTask::refuse(std::string complaint) {
    m_Complaint = std::move(complaint);
    return false;
}

bool NqDriveTask::hasJointCount(const std::vector<double>& values, const char* option) {
    const std::size_t joints = m_Manipulator.numberOfJoints();
    return values.size() == joints ||
           refuse(std::string(option) + " has " + std::to_string(values.size()) +
                  " numbers, but the robot has " + std::to_string(joints) + " joints");
}

bool NqDriveTask::load(const NqDriveOptions& options) {
    m_Options = options;
    if (options.gain > options.rate) {
        return refuse("--gain must not be greater than --rate: the drift would overshoot in every step");
    }
    return readFiles() && checkEndEffectors() && setStart() && setPosture() && setMetric() && setSettings() &&
           checkConstraints() && setTargets();
}

bool NqDriveTask::readFiles() {
    for (const std::string& file : {m_Options.model, m_Options.endEffectors}) {
        std::error_code error;
        if (!std::filesystem::is_regular_file(file, error)) {
            return refuse("no such file: " + inQuotes(file));
        }
    }
    NqMessageCollector messages;
    if (!NqUrdfReader::readFile(m_Options.model, m_Manipulator)) {
        return refuse("cannot read the robot " + inQuotes(m_Options.model) + ": " +
                      messages.last("not a URDF model"));
    }
    const std::size_t ofRobot = messages.lines().size();
    if (!NqXmlDocument::readFile(m_Options.endEffectors, m_EndEffectors)) {
        return refuse("cannot read the end-effectors " + inQuotes(m_Options.endEffectors) + ": " +
                      messages.joined("not an endEffectorVector", ofRobot));
    }
    m_Notes = messages.counted();
    if (m_Manipulator.numberOfJoints() == 0) {
        return refuse("the robot " + inQuotes(m_Options.model) + " has no moving joint");
    }
    if (m_EndEffectors.size() == 0) {
        return refuse("no end-effector in " + inQuotes(m_Options.endEffectors) +
                      (m_Notes.empty() ? "" : ": " + m_Notes.back()));
    }
    return true;
}

/// Names of the end-effectors and, once these fit the robot, what they are, with the profile that the user
/// wants.
bool NqDriveTask::checkEndEffectors() {
    m_Names = NqControlLoop::uniqueNames(m_EndEffectors);
    unsigned rows = 0;
    for (unsigned e = 0; e < m_EndEffectors.size(); ++e) {
        const std::string& label = m_EndEffectors[e]->linkIdentifier();
        if (!label.empty() && !m_Manipulator.linkByLabel(label)) {
            return refuse("end-effector " + std::to_string(e + 1) + " sits on link " + inQuotes(label) +
                          ", which the robot doesn't have");
        }
        rows += m_EndEffectors[e]->isHardConstraint() ? m_EndEffectors[e]->doc() : 0;
    }
    const unsigned unknowns =
        m_Manipulator.numberOfJoints() + (m_Options.isBaseFree ? NqEndEffector::m_theBaseDof : 0);
    if (rows > unknowns) {
        return refuse("the end-effectors constrain " + std::to_string(rows) +
                      " coordinates, but the robot has only " +
                      std::to_string(m_Manipulator.numberOfJoints()) + " joints" +
                      (m_Options.isBaseFree ? " and the six motions of its base" : ""));
    }
    const NqMessageCollector messages;
    for (unsigned e = 0; e < m_EndEffectors.size(); ++e) {
        NqEndEffector& endEffector = *m_EndEffectors[e];
        if (m_Options.profile) {
            NqTargetKind::setProfile(endEffector, *m_Options.profile);
        }
        m_Kinds.emplace_back(endEffector, m_Manipulator);
    }
    return true;
}

bool NqDriveTask::setSettings() {
    m_Settings.setTimeStep(1.0 / m_Options.rate);
    m_Settings.setJointWeights(NqXmlRealVector(m_Metric));
    m_Settings.setPosture(NqXmlRealVector(m_Posture));
    m_Settings.setPostureGain(m_Options.gain);
    m_Settings.setSoftGain(m_Options.softGain);
    m_Settings.setTolerance(m_Options.tolerance);
    m_Settings.setIsBaseFixed(!m_Options.isBaseFree);
    m_Settings.setBaseWeights(NqXmlRealVector(m_Options.baseMetric));
    return true;
}

NqControlLoop NqDriveTask::loop() const {
    NqControlLoop loop(m_Manipulator, m_Settings);
    loop.addEndEffectors(m_EndEffectors);
    loop.setPositions(m_Start);
    return loop;
}

bool NqDriveTask::setStart() {
    m_Start = m_Options.start;
    if (m_Start.empty()) {
        for (unsigned j = 0; j < m_Manipulator.numberOfJoints(); ++j) {
            const NqJointDescription& joint = m_Manipulator.linkByIndex(j)->joint();
            const double middle = 0.5 * (joint.lowerPositionLimit() + joint.upperPositionLimit());
            m_Start.push_back(std::isfinite(middle) ? middle : 0.0);
        }
    }
    if (!hasJointCount(m_Start, "--start") || !setByLabel(m_Options.startByLabel, "--start", m_Start)) {
        return false;
    }
    for (unsigned j = 0; j < m_Start.size(); ++j) {
        const NqJointDescription& joint = m_Manipulator.linkByIndex(j)->joint();
        if (m_Start[j] < joint.lowerPositionLimit() || m_Start[j] > joint.upperPositionLimit()) {
            return refuse("--start puts joint " + inQuotes(joint.name()) + " at " +
                          significant(m_Start[j], 6) + ", outside its range from " +
                          significant(joint.lowerPositionLimit(), 6) + " to " +
                          significant(joint.upperPositionLimit(), 6));
        }
    }
    return true;
}

bool NqDriveTask::setPosture() {
    switch (m_Options.posture) {
    case NqDriveOptions::Posture::Start:
        m_Posture = m_Start;
        break;
    case NqDriveOptions::Posture::Given:
        m_Posture = m_Options.givenPosture;
        return hasJointCount(m_Posture, "--posture");
    case NqDriveOptions::Posture::Middle:
        for (unsigned j = 0; j < m_Start.size(); ++j) {
            const NqJointDescription& joint = m_Manipulator.linkByIndex(j)->joint();
            const double middle = 0.5 * (joint.lowerPositionLimit() + joint.upperPositionLimit());
            m_Posture.push_back(std::isfinite(middle) ? middle : m_Start[j]);
        }
        break;
    case NqDriveOptions::Posture::None:
        break;
    }
    return true;
}

bool NqDriveTask::setMetric() {
    m_Metric = m_Options.metric.empty() ? std::vector<double>(m_Start.size(), 1.0) : m_Options.metric;
    if (!hasJointCount(m_Metric, "--metric")) {
        return false;
    }
    return setByLabel(m_Options.metricByLabel, "--metric", m_Metric);
}

/// Entries for the joints of these names, or that move the links of these labels.
bool NqDriveTask::setByLabel(const std::vector<std::pair<std::string, double>>& byLabel, const char* option,
                             std::vector<double>& values) {
    for (const auto& [label, value] : byLabel) {
        bool isFound = false;
        for (unsigned j = 0; j < values.size(); ++j) {
            const NqManipulatorLink& link = *m_Manipulator.linkByIndex(j);
            if (link.joint().name() == label || link.linkLabel() == label) {
                values[j] = value;
                isFound = true;
            }
        }
        if (!isFound) {
            return refuse(std::string(option) + " names joint " + inQuotes(label) +
                          ", which the robot doesn't have");
        }
    }
    return true;
}

bool NqDriveTask::checkConstraints() {
    NqControlLoopCheck check(m_Manipulator);
    check.checkJoints();
    if (!check.issues().empty()) {
        return refuse("the robot " + inQuotes(m_Options.model) + ": " + check.issues().front().text);
    }
    for (unsigned e = 0; e < m_EndEffectors.size() && m_Options.isBaseFree; ++e) {
        check.checkBaseColumns(m_Names[e], *m_EndEffectors[e]);
    }
    if (!check.issues().empty()) {
        return refuse(check.issues().front().text);
    }
    NqMessageCollector messages;
    const NqControlLoop loop = this->loop();
    if (messages.count() > 0) {
        return refuse("the end-effectors don't fit the robot: " + messages.last(""));
    }
    for (unsigned e = 0; e < m_EndEffectors.size(); ++e) {
        NqEndEffector::SparsityDescription sparsity;
        const NqEndEffector& endEffector = *m_EndEffectors[e];
        for (const NqTargetKind::Part& part : m_Kinds[e].parts()) {
            if (!(part.speedLimit > 0.0) || !(part.accelerationLimit > 0.0) || !(part.approach > 0.0)) {
                return refuse("end-effector " + inQuotes(m_Names[e]) +
                              " has a speed or acceleration limit that isn't above 0");
            }
        }
        endEffector.insertSparsityComponent(m_Manipulator, 0, endEffector.relativeLinkData(),
                                            !m_Options.isBaseFree, sparsity);
        for (const auto& row : sparsity) {
            if (std::find(row.begin(), row.end(), true) == row.end()) {
                return refuse("no joint moves end-effector " + inQuotes(m_Names[e]));
            }
        }
    }
    return true;
}

bool NqDriveTask::setTargets() {
    NqControlLoop loop = this->loop();
    std::vector<NqEndEffectorPlacement> start;
    for (std::size_t e = 0; e < loop.endEffectors(); ++e) {
        start.push_back(loop.relativePlacement(e));
    }
    std::vector<NqEndEffectorPlacement> targets = start;
    for (std::size_t w = 0; w < m_Options.wayPoints.size(); ++w) {
        const NqDriveWayPoint& wayPoint = m_Options.wayPoints[w];
        if (wayPoint.targets.size() != targets.size()) {
            const auto counted = [](std::size_t count, const std::string& what) {
                return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
            };
            return refuse(wayPointName(w, wayPoint) + " has " + counted(wayPoint.targets.size(), "target") +
                          " for " + counted(targets.size(), "end-effector"));
        }
        for (std::size_t e = 0; e < targets.size(); ++e) {
            const NqDriveTarget& wish = wayPoint.targets[e];
            std::string objection = wish.objection(m_Kinds[e]);
            if (objection.empty() && !wish.isHold()) {
                targets[e] = wish.placement(m_Kinds[e], wayPoint.isRelative, start[e]);
                objection = NqDriveTarget::rangeObjection(m_Kinds[e], targets[e]);
            }
            if (!objection.empty()) {
                return refuse(wayPointName(w, wayPoint) + ": the target of end-effector " +
                              inQuotes(m_Names[e]) + " " + objection);
            }
        }
        m_Targets.push_back(targets);
    }
    return true;
}

/// The largest distance of an end-effector's point from `centre` that the lengths of the links allow.
double NqDriveTask::reach(const std::string& label, const NqVector& point, NqVector& centre) const {
    NqManipulatorActivePositionState state(m_Manipulator);
    state.setPositionState(NqPositionState(m_Start));
    double reach = 0.0;
    NqVector outboard = point;
    const NqManipulatorLink* link = m_Manipulator.linkByLabel(label);
    for (; link && link->parentLink(); link = link->parentLink()) {
        const NqVector& origin = link->linkFrameInSystem(state).translation();
        reach += (outboard - origin).mag();
        const NqJointDescription& joint = link->joint();
        if (joint.type() == NqJointDescription::Prismatic) {
            const double position = m_Start[link->jointIndex()];
            reach += std::max(joint.upperPositionLimit() - position, position - joint.lowerPositionLimit());
        }
        outboard = origin;
    }
    centre = outboard;
    return reach;
}

std::string NqDriveTask::unreachableTarget() const {
    if (m_Options.isBaseFree) {
        return {};
    }
    NqControlLoop loop = this->loop();
    for (unsigned e = 0; e < m_EndEffectors.size(); ++e) {
        const NqEndEffector& endEffector = *m_EndEffectors[e];
        if (!m_Kinds[e].isWholePlace() || endEffector.linkIdentifier().empty() ||
            !endEffector.isHardConstraint() ||
            endEffector.relativeLinkData().relativeMode() !=
                NqEndEffectorRelativeLinkData::relativeModeNone) {
            continue;
        }
        NqVector centre;
        const double bound = reach(endEffector.linkIdentifier(), loop.placements()[e].translation(), centre);
        for (std::size_t w = 0; w < m_Targets.size(); ++w) {
            const double distance = (m_Targets[w][e].coordSysXForm().translation() - centre).mag();
            if (distance > bound + m_Options.tolerance) {
                return wayPointName(w, m_Options.wayPoints[w]) + " is out of reach of end-effector " +
                       inQuotes(m_Names[e]) + ": " + fixed(distance, 3) +
                       " m from the first joint, and the arm stretched out measures " + fixed(bound, 3) +
                       " m";
            }
        }
    }
    return {};
}
