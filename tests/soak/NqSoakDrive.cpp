#include "NqSoakDrive.h"

#include "support/NqAllocationCount.h"
#include "support/NqTestFiles.h"

#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>
#include <nqControlLoop/NqPostureSearch.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kSlack = 1.0e-9;
/// Steps between changes, at most.
constexpr unsigned kLongestWay = 1500;

NqIndividualManipulator robotOf(const std::string& endEffectors) {
    NqIndividualManipulator robot;
    const std::string name = endEffectors.substr(0, endEffectors.find('.'));
    NqUrdfReader::readFile(nqModelFile() + "/" + name + ".urdf", robot);
    return robot;
}

} // namespace

NqSoakDrive::NqSoakDrive(const std::string& endEffectors, std::uint64_t seed, Record& record)
    : m_Record(record), m_Random(seed), m_Robot(robotOf(endEffectors)), m_There(m_Robot) {
    m_IsRead = m_Robot.numberOfJoints() > 0 &&
               NqXmlDocument::readFile(nqModelFile() + "/" + endEffectors, m_EndEffectors);
    start();
}

bool NqSoakDrive::fail(const std::string& what) {
    m_Record.fault = what + ", in step " + std::to_string(m_Record.steps);
    return false;
}

double NqSoakDrive::within(double least, double greatest) {
    return least + (greatest - least) * std::ldexp(static_cast<double>(m_Random() >> 11), -53);
}

/// Each joint in its range, at most that share of half of it from the middle.
std::vector<double> NqSoakDrive::posture(double share) {
    std::vector<double> drawn;
    for (unsigned j = 0; j < m_Robot.numberOfJoints(); ++j) {
        const NqJointDescription& joint = m_Robot.linkByIndex(j)->joint();
        const double lower = std::max(joint.lowerPositionLimit(), -3.0);
        const double upper = std::min(joint.upperPositionLimit(), 3.0);
        drawn.push_back(0.5 * (lower + upper + share * within(lower - upper, upper - lower)));
    }
    return drawn;
}

/// A new loop, with some of the end-effectors and at least one.
void NqSoakDrive::start() {
    changeSettings();
    m_Loop = std::make_unique<NqControlLoop>(m_Robot, m_Settings);
    const std::vector<std::string> names = NqControlLoop::uniqueNames(m_EndEffectors);
    for (unsigned e = 0; e < m_EndEffectors.size(); ++e) {
        if (m_EndEffectors.size() == 1 || m_Random() % 4 != 0 ||
            (m_Loop->endEffectors() == 0 && e + 1 == m_EndEffectors.size())) {
            m_Loop->addEndEffector(names[e], *m_EndEffectors[e]);
        }
    }
    m_Loop->setPositions(posture(0.9));
    m_IsAccelerationKnown = true;
    changeTargets();
}

void NqSoakDrive::changeSettings() {
    m_Settings = NqControlLoopSettings();
    m_Settings.setTimeStep(within(0.001, 0.01));
    m_Settings.setAccelerationTime(m_Random() % 4 == 0 ? 0.0 : within(0.05, 0.5));
    m_Settings.setApproach(within(2.0, 40.0));
    m_Settings.setBlocked(m_Random() % 2 == 0 ? NqControlLoopSettings::Hold : NqControlLoopSettings::Slide);
    m_Settings.setDamping(within(0.01, 0.2));
    m_Settings.setSingularityThreshold(m_Random() % 4 == 0 ? 0.0 : within(0.01, 0.1));
    if (m_Random() % 2 == 0) {
        m_Settings.setPosture(NqXmlRealVector(posture(0.5)));
        m_Settings.setPostureGain(within(0.1, 3.0));
    }
    if (m_Random() % 4 == 0) {
        NqControlLoopSettings::Labels held;
        held.pushBack(
            m_Robot.linkByIndex(static_cast<unsigned>(m_Random() % m_Robot.numberOfJoints()))->linkLabel());
        m_Settings.setHeldJoints(held);
    }
    NqXmlRealVector weights(m_Robot.numberOfJoints());
    for (double& weight : weights) {
        weight = within(0.2, 5.0);
    }
    m_Settings.setJointWeights(weights);
}

/// Places that some posture reaches; now and then each end-effector's own, which none may reach together.
void NqSoakDrive::changeTargets() {
    const bool isCommon = m_Random() % 4 != 0;
    NqEndEffectorPlacement target;
    std::vector<double> drawn = posture(1.0);
    for (std::size_t e = 0; e < m_Loop->endEffectors(); ++e) {
        if (!isCommon) {
            drawn = posture(1.0);
        }
        m_There.setPositionState(NqPositionState(NqXmlRealVector(drawn)));
        m_Loop->endEffector(e).calculatePlacement(m_Robot, m_There, target);
        m_Loop->setTarget(e, target, true);
    }
    ++m_Record.targets;
}

void NqSoakDrive::changeSomething() {
    m_Warm = 0;
    ++m_Record.changes;
    switch (m_Random() % 16) {
    case 0:
        start();
        break;
    case 1: {
        changeSettings();
        m_Loop->setSettings(m_Settings);
        m_IsAccelerationKnown = false;
        break;
    }
    case 2:
        m_Loop->goTo(posture(1.0));
        break;
    case 3: { // a measured state that isn't quite the loop's
        std::vector<double> positions = m_Loop->positions();
        for (unsigned j = 0; j < positions.size(); ++j) {
            const NqJointDescription& joint = m_Robot.linkByIndex(j)->joint();
            positions[j] = std::clamp(positions[j] + within(-1.0e-3, 1.0e-3), joint.lowerPositionLimit(),
                                      joint.upperPositionLimit());
        }
        const std::vector<double> rates(m_Loop->rates().begin(), m_Loop->rates().begin() + m_Loop->joints());
        m_Loop->setState(NqPositionState(NqXmlRealVector(positions)),
                         NqVelocityState(NqXmlRealVector(rates)));
        m_IsAccelerationKnown = false;
        break;
    }
    case 4: {
        std::vector<double> found;
        if (m_Robot.numberOfJoints() < 10 && m_Random() % 8 == 0 && NqPostureSearch(*m_Loop).find(found)) {
            m_Loop->goTo(found);
        }
        break;
    }
    default:
        m_Loop->follow();
        changeTargets();
    }
}

bool NqSoakDrive::step() {
    NqControlLoop& loop = *m_Loop;
    m_Before = loop.positions();
    m_RatesBefore = loop.rates();
    const std::size_t allocations = nqAllocations();
    const bool isMade = loop.step();
    const bool hasAllocated = nqAllocations() != allocations;
    ++m_Record.steps;
    ++m_Record.kinds[loop.status().kind];
    if (hasAllocated && m_Warm > 1) {
        return fail("a step allocates");
    }
    ++m_Warm;
    if (!isMade) {
        return loop.status().kind == NqControlLoopStatus::BadInput && m_Before == loop.positions()
                   ? true
                   : fail("a step that isn't made moves the joints");
    }
    const double time = loop.settings().timeStep();
    for (unsigned j = 0; j < loop.joints(); ++j) {
        const NqJointDescription& joint = m_Robot.linkByIndex(j)->joint();
        const double position = loop.positions()[j];
        const double rate = loop.rates()[j];
        const std::string name = " of " + joint.name();
        if (!std::isfinite(position) || !std::isfinite(rate)) {
            return fail("position or rate" + name + " is not finite");
        }
        if (position < joint.lowerPositionLimit() - kSlack ||
            position > joint.upperPositionLimit() + kSlack) {
            return fail("the range" + name + " is left");
        }
        if (std::fabs(rate) > joint.rateLimit() + kSlack) {
            return fail("the rate" + name + " is above its limit");
        }
        const double limit = loop.settings().accelerationTime() > 0.0
                                 ? joint.rateLimit() / loop.settings().accelerationTime()
                                 : std::numeric_limits<double>::infinity();
        if (m_IsAccelerationKnown && std::fabs(rate - m_RatesBefore[j]) > limit * time + kSlack) {
            return fail("the acceleration" + name + " is above its limit");
        }
    }
    for (const NqControlLoopStatus::Joint& joint : loop.status().joints) {
        if (joint.joint >= loop.joints() || !(joint.multiplier >= 0.0)) {
            return fail("a cause names no joint");
        }
    }
    if (loop.status().kind == NqControlLoopStatus::Held && loop.status().joints.empty()) {
        return fail("it is held by nothing");
    }
    return true;
}

bool NqSoakDrive::run(std::uint64_t steps) {
    if (!m_IsRead) {
        return fail("it can't be read");
    }
    std::uint64_t next = 0;
    for (std::uint64_t i = 0; i < steps; ++i) {
        if (i == next) {
            changeSomething();
            next = i + 1 + m_Random() % kLongestWay;
        }
        if (!step()) {
            return false;
        }
    }
    return true;
}
