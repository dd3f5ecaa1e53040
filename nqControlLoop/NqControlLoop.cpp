#include <nqControlLoop/NqControlLoop.h>

#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <unordered_map>

NqControlLoop::NqControlLoop(const NqIndividualManipulator& manipulator,
                             const NqControlLoopSettings& settings)
    : m_Manipulator(manipulator), m_Settings(settings), m_Joints(manipulator.numberOfJoints()),
      m_Position(m_Joints), m_Velocity(m_Joints), m_State(manipulator) {
    resize();
}

std::vector<std::string> NqControlLoop::uniqueNames(const NqEndEffectorVector& endEffectors) {
    constexpr std::string_view ending = "EndEffector";
    std::vector<std::string> names;
    std::unordered_map<std::string, unsigned> uses; // of each name so far; a name with a number is one too
    for (unsigned e = 0; e < endEffectors.size(); ++e) {
        const std::string_view type = endEffectors[e]->token().localName();
        std::string name = endEffectors[e]->linkIdentifier();
        if (name.empty()) {
            name = type.substr(0, type.size() - (type.ends_with(ending) ? ending.size() : 0));
        }
        unsigned& use = uses[name];
        std::string unique = name;
        while (use > 0 && !uses.emplace(unique = name + " " + std::to_string(use + 1), 1).second) {
            ++use;
        }
        ++uses[name];
        names.push_back(unique);
    }
    return names;
}

void NqControlLoop::addEndEffectors(const NqEndEffectorVector& endEffectors) {
    const std::vector<std::string> names = uniqueNames(endEffectors);
    for (unsigned e = 0; e < endEffectors.size(); ++e) {
        add(names[e], *endEffectors[e]);
    }
    finishAdding();
}

bool NqControlLoop::addEndEffector(const std::string& name, const NqEndEffector& endEffector) {
    if (find(name) != m_Constraints.size()) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqControlLoop::addEndEffector(): the name %s is taken.\n", name);
        return false;
    }
    add(name, endEffector);
    finishAdding();
    return true;
}

void NqControlLoop::add(const std::string& name, const NqEndEffector& endEffector) {
    Constraint& constraint = m_Constraints.emplace_back();
    constraint.name = name;
    constraint.endEffector.reset(dynamic_cast<NqEndEffector*>(endEffector.clone()));
    const NqEndEffector& own = *constraint.endEffector;
    constraint.kind = NqTargetKind(own, m_Manipulator);
    constraint.isHard = own.isHardConstraint();
    constraint.row = stackOf(constraint).rows;
    stackOf(constraint).rows += own.doc();
    constraint.desired.assign(own.doc(), 0.0);
    constraint.previous = constraint.filtered = constraint.desired;
    constraint.velocity.resize(own.doc());
    constraint.change.resize(own.doc());
    constraint.firstPart = m_Parts.size();
    for (const NqTargetKind::Part& part : constraint.kind.parts()) {
        m_Parts.push_back({m_Constraints.size() - 1, part});
    }
}

/// Makes room for new end-effectors, and leaves each where it is.
void NqControlLoop::finishAdding() {
    resize();
    holdWithoutTarget();
    observe();
}

std::size_t NqControlLoop::find(const std::string& name) const {
    const auto found = std::find_if(m_Constraints.begin(), m_Constraints.end(),
                                    [&](const Constraint& constraint) { return constraint.name == name; });
    return static_cast<std::size_t>(found - m_Constraints.begin());
}

void NqControlLoop::setSettings(const NqControlLoopSettings& settings) {
    m_Settings = settings;
    resize();
}

unsigned NqControlLoop::columns() const {
    return m_Joints + (m_Settings.isBaseFixed() ? 0 : NqEndEffector::m_theBaseDof);
}

/// Gives all that depends on the number of joints and rows its size.
void NqControlLoop::resize() {
    m_Weights.assign(columns(), 1.0);
    const auto& joints = m_Settings.jointWeights();
    std::copy_n(joints.begin(), std::min<std::size_t>(joints.size(), m_Joints), m_Weights.begin());
    const auto& base = m_Settings.baseWeights();
    std::copy_n(base.begin(), std::min<std::size_t>(base.size(), columns() - m_Joints),
                m_Weights.begin() + m_Joints);
    m_Metric = m_Weights;
    m_Gradient.assign(columns(), 0.0);
    m_Rates.resize(columns());
    m_Hard.command.resize(m_Hard.rows);
    m_Soft.command.resize(m_Soft.rows);
    m_Placements.resize(m_Constraints.size());
    m_Errors.resize(m_Parts.size());
    m_Speeds.resize(m_Parts.size());
    m_Accelerations.resize(m_Parts.size());
    stackConstraints();
    observe();
}

void NqControlLoop::setPositions(const std::vector<double>& positions) {
    if (positions.size() != m_Joints) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqControlLoop::setPositions(): %d positions for %d joints.\n",
                                    positions.size(), m_Joints);
        return;
    }
    m_Position.setJointPositions(positions);
    setState(m_Position, NqVelocityState(m_Joints));
    for (Constraint& constraint : m_Constraints) {
        std::fill(constraint.previous.begin(), constraint.previous.end(), 0.0);
        std::fill(constraint.velocity.begin(), constraint.velocity.end(), 0.0);
    }
    holdWithoutTarget();
    observe();
}

void NqControlLoop::setState(const NqPositionState& position, const NqVelocityState& velocity) {
    if (position.jointPositions().size() != m_Joints || velocity.jointVelocities().size() != m_Joints) {
        Nq::Print::instance().write(
            Nq::PrintFailure, "NqControlLoop::setState(): %d positions and %d rates for %d joints.\n",
            position.jointPositions().size(), velocity.jointVelocities().size(), m_Joints);
        return;
    }
    m_Position = position;
    m_Velocity = velocity;
    std::copy_n(velocity.jointVelocities().begin(), m_Joints, m_Rates.begin());
    for (unsigned i = m_Joints; i < columns(); ++i) {
        m_Rates[i] = velocity.baseMotion()[i - m_Joints];
    }
    m_State.setPositionState(m_Position);
    m_State.setVelocityState(m_Velocity);
    observe();
}

bool NqControlLoop::setTarget(const std::string& name, const NqControlTarget& target) {
    const std::size_t e = find(name);
    if (e == m_Constraints.size()) {
        Nq::Print::instance().write(Nq::PrintFailure, "NqControlLoop::setTarget(): no end-effector %s.\n",
                                    name);
        return false;
    }
    return setTarget(e, target);
}

bool NqControlLoop::setTarget(std::size_t e, const NqControlTarget& target) {
    Constraint& constraint = m_Constraints[e];
    const std::string objection = target.objection(constraint.kind, constraint.desired.size());
    if (!objection.empty()) {
        Nq::Print::instance().write(Nq::PrintFailure, "NqControlLoop::setTarget(): the target of %s %s.\n",
                                    constraint.name, objection);
        return false;
    }
    if (target.isInSystem() != constraint.isTargetInSystem) {
        constraint.target = target.isInSystem() ? constraint.systemTarget : constraint.target;
        constraint.isTargetInSystem = target.isInSystem();
    }
    target.apply(constraint.target);
    constraint.hasTarget = true;
    constraint.desired = target.velocity();
    constraint.desired.resize(constraint.filtered.size());
    observe();
    return true;
}

void NqControlLoop::setTarget(std::size_t e, const NqEndEffectorPlacement& target) {
    Constraint& constraint = m_Constraints[e];
    constraint.target = target;
    constraint.hasTarget = true;
    constraint.isTargetInSystem = false;
    std::fill(constraint.desired.begin(), constraint.desired.end(), 0.0);
    observe();
}

void NqControlLoop::holdWithoutTarget() {
    for (std::size_t e = 0; e < m_Constraints.size(); ++e) {
        if (!m_Constraints[e].hasTarget) {
            m_Constraints[e].target = relativePlacement(e);
        }
    }
}

NqEndEffectorPlacement NqControlLoop::relativePlacement(std::size_t e) {
    const Constraint& constraint = m_Constraints[e];
    NqEndEffectorPlacement placement;
    constraint.endEffector->calculatePlacement(m_Manipulator, m_State, placement);
    constraint.kind.toRelative(*constraint.endEffector, m_Manipulator, placement, m_State, placement);
    return placement;
}

bool NqControlLoop::step() {
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
void NqControlLoop::stackConstraints() {
    for (const Constraint& constraint : m_Constraints) {
        const NqEndEffector& endEffector = *constraint.endEffector;
        endEffector.insertJacobianComponent(m_Manipulator, constraint.row, endEffector.relativeLinkData(),
                                            m_Settings.isBaseFixed(), m_State, stackOf(constraint).jacobian);
        if (!constraint.isHard) {
            endEffector.insertErrorWeightComponent(constraint.row, m_SoftWeights);
        }
    }
}

/// What the motion filters make of the way to the targets, given what became of the last command.
void NqControlLoop::commandVelocities() {
    for (Constraint& constraint : m_Constraints) {
        const NqEndEffector& endEffector = *constraint.endEffector;
        endEffector.filterEndEffectorVelocity(m_Manipulator, constraint.systemTarget, constraint.desired,
                                              constraint.previous, m_Settings.timeStep(), m_State,
                                              constraint.filtered);
        const double multiplier = constraint.isHard ? 1.0 : endEffector.softConstraintMultiplier();
        std::transform(constraint.filtered.begin(), constraint.filtered.end(),
                       stackOf(constraint).command.begin() + constraint.row,
                       [&](double velocity) { return multiplier * velocity; });
    }
}

/// Metric W = A + S^T E S, and gradient gain (q - posture) - S^T E s. Without soft rows W stays diagonal.
void NqControlLoop::weighSoftConstraints() {
    const std::vector<double>& positions = m_Position.jointPositions().values();
    const auto& posture = m_Settings.posture();
    for (unsigned j = 0; j < m_Joints; ++j) {
        m_Gradient[j] = j < posture.size() ? m_Settings.postureGain() * (positions[j] - posture[j]) : 0.0;
    }
    std::fill(m_Gradient.begin() + m_Joints, m_Gradient.end(), 0.0);
    if (m_Soft.rows == 0) {
        return;
    }
    const unsigned n = columns();
    m_Metric.setToZeros(n, n);
    for (unsigned j = 0; j < n; ++j) {
        m_Metric[j][j] = m_Weights[j] * (j < m_Joints ? crowding(j) : 1.0);
    }
    for (unsigned i = 0; i < m_Soft.rows; ++i) {
        const double weight = m_Settings.softGain() * m_SoftWeights[i][0];
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
double NqControlLoop::crowding(unsigned j) const {
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
bool NqControlLoop::solve() {
    return m_Tool.calcJointRates(nullptr, m_Hard.jacobian, m_Metric, m_Gradient, 1.0, m_Hard.command,
                                 columns(), m_Rates, m_NullSpaceRates, m_Determinant) &&
           std::all_of(m_Rates.begin(), m_Rates.end(), [](double rate) { return std::isfinite(rate); });
}

/// Scales all rates alike, so that the end-effectors stay on their way, until every joint keeps its limits.
void NqControlLoop::slowDown() {
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
    const double approach = std::min(m_Settings.approach(), 1.0 / m_Settings.timeStep());
    for (unsigned j = 0; j < m_Joints; ++j) {
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

void NqControlLoop::integrate() {
    const double timeStep = m_Settings.timeStep();
    for (unsigned j = 0; j < m_Joints; ++j) {
        m_Position.jointPositions()[j] += m_Rates[j] * timeStep;
        m_Velocity.jointVelocities()[j] = m_Rates[j];
    }
    if (!m_Settings.isBaseFixed()) {
        const double* rates = m_Rates.data() + m_Joints;
        const NqVector linear(rates[0], rates[1], rates[2]);
        const NqVector angular(rates[3], rates[4], rates[5]);
        NqCoordinateSystemTransformation base = m_Position.baseFrame();
        base.setTranslation(base.translation() + timeStep * linear);
        base.setOrientation(NqOrientation(timeStep * angular.mag(), angular) * base.orientation());
        m_Position.setBaseFrame(base);
        m_Velocity.setBaseMotion(NqGeneralMotion(linear, angular));
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
void NqControlLoop::measureVelocities() {
    for (Constraint& constraint : m_Constraints) {
        const NqReArray& jacobian = stackOf(constraint).jacobian;
        for (unsigned i = 0; i < constraint.velocity.size(); ++i) {
            const auto& row = jacobian[constraint.row + i];
            const double velocity = std::inner_product(row.begin(), row.end(), m_Rates.begin(), 0.0);
            constraint.change[i] = velocity - constraint.velocity[i];
            constraint.velocity[i] = velocity;
        }
    }
    for (std::size_t p = 0; p < m_Parts.size(); ++p) {
        const Constraint& constraint = m_Constraints[m_Parts[p].endEffector];
        m_Speeds[p] = m_Parts[p].part.size(constraint.velocity.data());
        m_Accelerations[p] = m_Parts[p].part.size(constraint.change.data()) / m_Settings.timeStep();
    }
}

/// Where the end-effectors are and how far they have to go.
void NqControlLoop::observe() {
    for (std::size_t e = 0; e < m_Constraints.size(); ++e) {
        Constraint& constraint = m_Constraints[e];
        const NqEndEffector& endEffector = *constraint.endEffector;
        endEffector.calculatePlacement(m_Manipulator, m_State, constraint.present);
        if (constraint.isTargetInSystem) {
            constraint.systemTarget = constraint.target;
        } else {
            constraint.kind.toSystem(endEffector, m_Manipulator, constraint.target, m_State,
                                     constraint.systemTarget);
        }
        m_Placements[e] = constraint.present.coordSysXForm();
        constraint.kind.measure(m_Manipulator, m_State, constraint.present, constraint.systemTarget,
                                m_Errors.data() + constraint.firstPart);
    }
}
