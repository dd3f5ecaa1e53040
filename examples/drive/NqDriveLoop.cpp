#include "NqDriveLoop.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr bool kFixedBase = true;

/// How fast a joint may approach the end of its range, for its distance from there (1/s). The arm slows as
/// the end comes near, so that the drift towards the posture has time to lead the joint away.
constexpr double kRangeApproach = 10.0;

} // namespace

NqDriveLoop::NqDriveLoop(const NqIndividualManipulator& manipulator, const NqEndEffectorVector& endEffectors,
                         double timeStep)
    : m_Manipulator(manipulator), m_TimeStep(timeStep), m_Constraints(endEffectors.size()),
      m_JointWeights(manipulator.numberOfJoints(), 1.0), m_Position(manipulator.numberOfJoints()),
      m_Velocity(manipulator.numberOfJoints()), m_State(manipulator),
      m_Gradient(manipulator.numberOfJoints()), m_Rates(manipulator.numberOfJoints()),
      m_Placements(endEffectors.size()) {
    for (unsigned e = 0; e < m_Constraints.size(); ++e) {
        Constraint& constraint = m_Constraints[e];
        const NqEndEffector& endEffector = *endEffectors[e];
        constraint.endEffector = &endEffector;
        constraint.kind = NqDriveTargetKind::of(endEffector, manipulator).value_or(NqDriveTargetKind());
        constraint.isHard = endEffector.isHardConstraint();
        constraint.row = stackOf(constraint).rows;
        stackOf(constraint).rows += endEffector.doc();
        constraint.desired.assign(endEffector.doc(), 0.0);
        constraint.previous = constraint.filtered = constraint.desired;
        constraint.velocity.resize(endEffector.doc());
        constraint.change.resize(endEffector.doc());
        for (const NqDriveTargetKind::Part& part : constraint.kind.parts()) {
            m_Parts.push_back({e, part});
        }
    }
    m_Hard.command.resize(m_Hard.rows);
    m_Soft.command.resize(m_Soft.rows);
    m_Errors.resize(m_Parts.size());
    m_Speeds.resize(m_Parts.size());
    m_Accelerations.resize(m_Parts.size());
    setMetric(m_JointWeights);
    stackConstraints();
    observe();
}

void NqDriveLoop::setMetric(const std::vector<double>& weights) {
    m_JointWeights = weights;
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
        std::fill(constraint.velocity.begin(), constraint.velocity.end(), 0.0);
    }
    observe();
}

void NqDriveLoop::setTarget(std::size_t endEffector, const NqEndEffectorPlacement& target) {
    m_Constraints[endEffector].target = target;
    observe();
}

NqEndEffectorPlacement NqDriveLoop::relativePlacement(std::size_t e) {
    const Constraint& constraint = m_Constraints[e];
    return constraint.kind.presentInRelative(*constraint.endEffector, m_Manipulator, m_State);
}

bool NqDriveLoop::step() {
    stackConstraints();
    commandVelocities();
    weighSoftConstraints();
    if (!solve()) {
        return false;
    }
    slowDown();
    measureVelocities();
    integrate();
    observe();
    return true;
}

/// The rows of all end-effectors, one under the other.
void NqDriveLoop::stackConstraints() {
    for (const Constraint& constraint : m_Constraints) {
        const NqEndEffector& endEffector = *constraint.endEffector;
        endEffector.insertJacobianComponent(m_Manipulator, constraint.row, endEffector.relativeLinkData(),
                                            kFixedBase, m_State, stackOf(constraint).jacobian);
        if (!constraint.isHard) {
            endEffector.insertErrorWeightComponent(constraint.row, m_SoftWeights);
        }
    }
}

/// What the motion filters make of the way to the targets, given what became of the last command.
void NqDriveLoop::commandVelocities() {
    for (Constraint& constraint : m_Constraints) {
        const NqEndEffector& endEffector = *constraint.endEffector;
        endEffector.filterEndEffectorVelocity(m_Manipulator, constraint.systemTarget, constraint.desired,
                                              constraint.previous, m_TimeStep, m_State, constraint.filtered);
        const double multiplier = constraint.isHard ? 1.0 : endEffector.softConstraintMultiplier();
        std::transform(constraint.filtered.begin(), constraint.filtered.end(),
                       stackOf(constraint).command.begin() + constraint.row,
                       [&](double velocity) { return multiplier * velocity; });
    }
}

/// Metric W = A + S^T E S, and gradient gain (q - posture) - S^T E s. Without soft rows W stays diagonal.
void NqDriveLoop::weighSoftConstraints() {
    const std::vector<double>& positions = m_Position.jointPositions().values();
    for (std::size_t j = 0; j < m_Posture.size(); ++j) {
        m_Gradient[j] = m_Gain * (positions[j] - m_Posture[j]);
    }
    if (m_Soft.rows == 0) {
        return;
    }
    const unsigned n = static_cast<unsigned>(joints());
    m_Metric.setToZeros(n, n);
    for (unsigned j = 0; j < n; ++j) {
        m_Metric[j][j] = m_JointWeights[j] * crowding(j);
    }
    if (m_Posture.empty()) {
        std::fill(m_Gradient.begin(), m_Gradient.end(), 0.0);
    }
    for (unsigned i = 0; i < m_Soft.rows; ++i) {
        const double weight = m_SoftGain * m_SoftWeights[i][0];
        const auto& row = m_Soft.jacobian[i];
        for (unsigned j = 0; j < n; ++j) {
            const double weighted = weight * row[j];
            m_Gradient[j] -= weighted * m_Soft.command[i];
            for (unsigned k = 0; k < n; ++k) {
                m_Metric[j][k] += weighted * row[k];
            }
        }
    }
}

/// How much more a joint weighs that nears the end of its range, so that soft end-effectors are served by the
/// others. Method of Chan and Dubey, "A weighted least-norm solution based scheme for avoiding joint limits
/// for redundant joint manipulators", IEEE Trans. Robotics and Automation 11(2), 1995.
double NqDriveLoop::crowding(unsigned j) const {
    const NqJointDescription& joint = m_Manipulator.linkByIndex(j)->joint();
    const double lower = joint.lowerPositionLimit();
    const double upper = joint.upperPositionLimit();
    if (!std::isfinite(upper - lower)) {
        return 1.0;
    }
    const double position = m_Position.jointPositions()[j];
    const double excess = 2.0 * position - upper - lower;
    if (excess * m_Rates[j] <= 0.0) {
        return 1.0; // at rest, or on its way to the middle
    }
    const double room = std::max((upper - position) * (position - lower), 1.0e-9);
    return 1.0 + 0.25 * (upper - lower) * (upper - lower) * std::abs(excess) / (room * room);
}

/// Joint rates with J rates = command that otherwise descend the gradient under the metric.
bool NqDriveLoop::solve() {
    return m_Tool.calcJointRates(nullptr, m_Hard.jacobian, m_Metric, m_Gradient, 1.0, m_Hard.command,
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

/// What the rates make of each end-effector, and how that differs from the step before.
void NqDriveLoop::measureVelocities() {
    for (Constraint& constraint : m_Constraints) {
        const NqReArray& jacobian = stackOf(constraint).jacobian;
        for (unsigned i = 0; i < constraint.velocity.size(); ++i) {
            const auto& row = jacobian[constraint.row + i];
            const double velocity = std::inner_product(row.begin(), row.end(), m_Rates.begin(), 0.0);
            constraint.change[i] = velocity - constraint.velocity[i];
            constraint.velocity[i] = velocity;
        }
    }
    const auto size = [](const std::vector<double>& values, const NqDriveTargetKind::Part& part) {
        const auto first = values.begin() + part.row;
        return std::sqrt(std::inner_product(first, first + part.rows, first, 0.0));
    };
    for (std::size_t p = 0; p < m_Parts.size(); ++p) {
        const Constraint& constraint = m_Constraints[m_Parts[p].endEffector];
        m_Speeds[p] = size(constraint.velocity, m_Parts[p].part);
        m_Accelerations[p] = size(constraint.change, m_Parts[p].part) / m_TimeStep;
    }
}

/// Where the end-effectors are and how far they have to go.
void NqDriveLoop::observe() {
    for (std::size_t e = 0; e < m_Constraints.size(); ++e) {
        Constraint& constraint = m_Constraints[e];
        const NqEndEffector& endEffector = *constraint.endEffector;
        endEffector.calculatePlacement(m_Manipulator, m_State, constraint.present);
        constraint.kind.toSystem(endEffector, m_Manipulator, constraint.target, m_State,
                                 constraint.systemTarget);
        m_Placements[e] = constraint.present.coordSysXForm();
    }
    for (std::size_t p = 0; p < m_Parts.size(); ++p) {
        const Constraint& constraint = m_Constraints[m_Parts[p].endEffector];
        m_Errors[p] = constraint.kind.distance(m_Parts[p].part, constraint.present, constraint.systemTarget);
    }
}
