#include "NqDriveLoop.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr bool kFixedBase = true;

/// How fast a joint may approach the end of its range, for its distance from there (1/s). The arm slows as
/// the end comes near, so that the drift towards the posture has time to lead the joint away.
constexpr double kRangeApproach = 10.0;

} // namespace

NqDriveLoop::NqDriveLoop(const NqIndividualManipulator& manipulator, const NqEndEffectorVector& endEffectors,
                         double timeStep)
    : m_Manipulator(manipulator), m_TimeStep(timeStep), m_Constraints(endEffectors.size()),
      m_Position(manipulator.numberOfJoints()), m_Velocity(manipulator.numberOfJoints()),
      m_State(manipulator), m_Gradient(manipulator.numberOfJoints()), m_Rates(manipulator.numberOfJoints()),
      m_Points(endEffectors.size()), m_Errors(endEffectors.size()), m_Speeds(endEffectors.size()) {
    for (unsigned e = 0; e < m_Constraints.size(); ++e) {
        Constraint& constraint = m_Constraints[e];
        constraint.endEffector = endEffectors[e];
        constraint.row = m_Rows;
        constraint.desired.assign(constraint.endEffector->doc(), 0.0);
        constraint.previous = constraint.desired;
        m_Rows += constraint.endEffector->doc();
    }
    m_Command.resize(m_Rows);
    setMetric(std::vector<double>(m_Rates.size(), 1.0));
    stackConstraints();
    observe();
}

void NqDriveLoop::setMetric(const std::vector<double>& weights) {
    m_Metric = weights;
}

void NqDriveLoop::setPosture(const std::vector<double>& posture, double gain) {
    m_Posture = posture;
    m_Gain = gain;
}

void NqDriveLoop::setPositions(const std::vector<double>& positions) {
    m_Position.setJointPositions(positions);
    std::fill(m_Rates.begin(), m_Rates.end(), 0.0);
    m_Velocity.setJointVelocities(m_Rates);
    m_State.setPositionState(m_Position);
    m_State.setVelocityState(m_Velocity);
    for (Constraint& constraint : m_Constraints) {
        constraint.previous = constraint.desired;
    }
    observe();
}

void NqDriveLoop::setTarget(std::size_t endEffector, const NqEndEffectorPlacement& target) {
    m_Constraints[endEffector].target = target;
    observe();
}

NqEndEffectorPlacement NqDriveLoop::relativePlacement(std::size_t e) {
    NqEndEffectorPlacement placement;
    m_Constraints[e].endEffector->calculatePlacementInRelative(m_Manipulator, m_State, placement);
    return placement;
}

bool NqDriveLoop::step() {
    stackConstraints();
    commandVelocities();
    if (!solve()) {
        return false;
    }
    slowDown();
    integrate();
    observe();
    return true;
}

/// The rows of all end-effectors, one under the other.
void NqDriveLoop::stackConstraints() {
    for (const Constraint& constraint : m_Constraints) {
        const NqEndEffector& endEffector = *constraint.endEffector;
        const NqEndEffectorRelativeLinkData& relativeLink = endEffector.relativeLinkData();
        endEffector.insertJacobianComponent(m_Manipulator, constraint.row, relativeLink, kFixedBase, m_State,
                                            m_Jacobian);
        endEffector.insertSparsityComponent(m_Manipulator, constraint.row, relativeLink, kFixedBase,
                                            m_Sparsity);
        endEffector.insertErrorWeightComponent(constraint.row, m_ErrorWeights);
    }
}

/// What the motion filters make of the way to the targets, given what became of the last command.
void NqDriveLoop::commandVelocities() {
    for (Constraint& constraint : m_Constraints) {
        constraint.endEffector->filterEndEffectorVelocity(m_Manipulator, constraint.systemTarget,
                                                          constraint.desired, constraint.previous, m_TimeStep,
                                                          m_State, constraint.filtered);
        std::copy(constraint.filtered.begin(), constraint.filtered.end(), m_Command.begin() + constraint.row);
    }
}

/// Joint rates with J rates = command that otherwise descend half the squared distance from the posture.
bool NqDriveLoop::solve() {
    const std::vector<double>& positions = m_Position.jointPositions().values();
    for (std::size_t j = 0; j < m_Posture.size(); ++j) {
        m_Gradient[j] = positions[j] - m_Posture[j];
    }
    return m_Tool.calcJointRates(nullptr, m_Jacobian, m_Metric, m_Gradient, m_Gain, m_Command,
                                 static_cast<unsigned>(joints()), m_Rates, m_NullSpaceRates, m_Determinant) &&
           std::all_of(m_Rates.begin(), m_Rates.end(), [](double rate) { return std::isfinite(rate); });
}

/// Scales all rates alike, so that the end-effectors stay on their way, until every joint keeps its limits.
void NqDriveLoop::slowDown() {
    m_Slowing = 1.0;
    m_Brake = Brake::None;
    const auto brake = [&](unsigned joint, Brake kind, double allowed) {
        const double rate = std::abs(m_Rates[joint]);
        if (allowed < m_Slowing * rate) {
            m_Slowing = allowed / rate;
            m_Brake = kind;
            m_BrakingJoint = joint;
        }
    };
    const double approach = std::min(kRangeApproach, 1.0 / m_TimeStep);
    for (unsigned j = 0; j < m_Rates.size(); ++j) {
        const NqJointDescription& joint = m_Manipulator.linkByIndex(j)->joint();
        const double position = m_Position.jointPositions()[j];
        const double room =
            m_Rates[j] > 0.0 ? joint.upperPositionLimit() - position : position - joint.lowerPositionLimit();
        brake(j, Brake::Rate, joint.rateLimit());
        brake(j, Brake::Range, std::max(room, 0.0) * approach);
    }
    for (double& rate : m_Rates) {
        rate *= m_Slowing;
    }
}

void NqDriveLoop::integrate() {
    for (std::size_t j = 0; j < m_Rates.size(); ++j) {
        m_Position.jointPositions()[j] += m_Rates[j] * m_TimeStep;
        m_Velocity.jointVelocities()[j] = m_Rates[j];
    }
    m_State.setPositionState(m_Position);
    m_State.setVelocityState(m_Velocity);
    for (Constraint& constraint : m_Constraints) {
        for (std::size_t i = 0; i < constraint.filtered.size(); ++i) {
            constraint.previous[i] = m_Slowing * constraint.filtered[i];
        }
    }
    ++m_Steps;
}

/// Where the end-effectors are, how fast they move and how far they have to go.
void NqDriveLoop::observe() {
    for (std::size_t e = 0; e < m_Constraints.size(); ++e) {
        Constraint& constraint = m_Constraints[e];
        const NqEndEffector& endEffector = *constraint.endEffector;
        endEffector.calculatePlacement(m_Manipulator, m_State, constraint.present);
        endEffector.calculateVelocity(m_Manipulator, m_State, constraint.velocity, 0);
        endEffector.convertPlacementFromRelativeToSystem(
            m_Manipulator, constraint.target, m_State.activePositionState(), constraint.systemTarget);
        endEffector.calculateEndEffectorError(m_Manipulator, constraint.systemTarget, m_State,
                                              constraint.error);

        m_Points[e] = constraint.present.coordSysXForm().translation();
        double heaviest = 0.0;
        for (unsigned i = 0; i < endEffector.doc(); ++i) {
            heaviest = std::max(heaviest, std::abs(m_ErrorWeights[constraint.row + i][0]));
        }
        double speed = 0.0;
        double error = 0.0;
        for (unsigned i = 0; i < endEffector.doc(); ++i) {
            const double share = heaviest > 0.0 ? m_ErrorWeights[constraint.row + i][0] / heaviest : 1.0;
            error += share * share * constraint.error[i] * constraint.error[i];
            speed += i < 3 ? constraint.velocity[i] * constraint.velocity[i] : 0.0;
        }
        m_Speeds[e] = std::sqrt(speed);
        m_Errors[e] = std::sqrt(error);
    }
}
