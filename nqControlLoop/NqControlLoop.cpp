#include <nqControlLoop/NqControlLoop.h>

#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <unordered_map>

namespace {

/// All rates below this (rad/s, m/s): the arm stands still.
constexpr double kRest = 0.01;
/// The joints are at rest when they have been that slow for so long, s, and no faster from step to step.
constexpr double kRestTime = 0.05;
constexpr double kSpeedingUp = 1.01;
/// s. Soft end-effectors alone come no nearer when what is left would take longer than this.
constexpr double kHopeless = 1000.0;
/// So many steps of that in a row are a beginning; fewer come from noise of what is measured.
constexpr unsigned kBeginning = 8;
/// Of joints that could make all that is left, if it weren't for their limits, rad or m.
constexpr double kSmallTurn = 0.1;
/// A speed below this needs no stopping.
constexpr double kIdle = 1.0e-6;
/// A least singular value below this is rounding: rows depend on each other, or no joint moves them.
constexpr double kDependent = 1.0e-9;
/// How fast the joints go to a posture, for their distance from it, 1/s.
constexpr double kGoingGain = 8.0;
/// How far the joints are moved to see what that brings, rad or m.
constexpr double kProbe = 0.05;
constexpr double kUnbounded = std::numeric_limits<double>::infinity();

} // namespace

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
        std::string name = names[e];
        for (unsigned number = 2; find(name) != m_Constraints.size(); ++number) {
            name = names[e] + " " + std::to_string(number);
        }
        add(name, *endEffectors[e]);
    }
    arrange();
}

bool NqControlLoop::addEndEffector(const std::string& name, const NqEndEffector& endEffector,
                                   bool isFiltered) {
    if (find(name) != m_Constraints.size()) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqControlLoop::addEndEffector(): the name %s is taken.\n", name);
        return false;
    }
    add(name, endEffector);
    if (!isFiltered) {
        m_Constraints.back().endEffector->setFilteringActive(false);
    }
    arrange();
    return true;
}

void NqControlLoop::add(const std::string& name, const NqEndEffector& endEffector) {
    Constraint& constraint = m_Constraints.emplace_back();
    constraint.name = name;
    constraint.endEffector.reset(dynamic_cast<NqEndEffector*>(endEffector.clone()));
    const NqEndEffector& own = *constraint.endEffector;
    constraint.kind = NqTargetKind(own, m_Manipulator);
    constraint.isHard = own.isHardConstraint();
    constraint.desired.assign(own.doc(), 0.0);
    constraint.previous = constraint.filtered = constraint.desired;
    constraint.change.resize(own.doc());
}

bool NqControlLoop::removeEndEffector(const std::string& name) {
    const std::size_t e = find(name);
    if (e == m_Constraints.size()) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqControlLoop::removeEndEffector(): no end-effector %s.\n", name);
        return false;
    }
    m_Constraints.erase(m_Constraints.begin() + static_cast<std::ptrdiff_t>(e));
    arrange();
    return true;
}

/// Gives the end-effectors their rows and parts, one behind the other, and leaves each without a target where
/// it is.
void NqControlLoop::arrange() {
    m_Hard = m_Soft = {};
    m_SoftWeights = NqReArray();
    m_Parts.clear();
    m_Status = {};
    for (std::size_t e = 0; e < m_Constraints.size(); ++e) {
        Constraint& constraint = m_Constraints[e];
        constraint.row = stackOf(constraint).rows;
        stackOf(constraint).rows += constraint.endEffector->doc();
        constraint.firstPart = m_Parts.size();
        for (const NqTargetKind::Part& part : constraint.kind.parts()) {
            m_Parts.push_back({e, part});
        }
    }
    resize();
    for (Constraint& constraint : m_Constraints) {
        if (constraint.velocity.empty()) { // a new one goes on as its link moves
            for (unsigned i = 0; i < constraint.change.size(); ++i) {
                constraint.velocity.push_back(velocityOf(constraint, i));
                constraint.previous[i] = constraint.velocity[i];
            }
        }
    }
    measureParts();
    holdWithoutTarget();
    observe();
}

std::size_t NqControlLoop::find(const std::string& name) const {
    const auto found = std::find_if(m_Constraints.begin(), m_Constraints.end(),
                                    [&](const Constraint& constraint) { return constraint.name == name; });
    return static_cast<std::size_t>(found - m_Constraints.begin());
}

void NqControlLoop::setSettings(const NqControlLoopSettings& settings) {
    if (settings == m_Settings) {
        return;
    }
    m_TimeBefore = time();
    m_StepsBefore = m_Steps;
    if (settings.isBaseFixed() && !m_Settings.isBaseFixed()) {
        m_Velocity.setBaseMotion(NqGeneralMotion()); // it stands still from now on
        m_State.setVelocityState(m_Velocity);
    }
    m_Settings = settings;
    resize();
}

unsigned NqControlLoop::columns() const {
    return m_Joints + (m_Settings.isBaseFixed() ? 0 : NqEndEffector::m_theBaseDof);
}

/// Gives all that depends on the number of joints and rows its size.
void NqControlLoop::resize() {
    m_IsValid = m_IsRefused = false;
    m_Weights.assign(columns(), 1.0);
    const auto& joints = m_Settings.jointWeights();
    std::copy_n(joints.begin(), std::min<std::size_t>(joints.size(), m_Joints), m_Weights.begin());
    const auto& base = m_Settings.baseWeights();
    std::copy_n(base.begin(), std::min<std::size_t>(base.size(), columns() - m_Joints),
                m_Weights.begin() + m_Joints);
    m_Metric = m_Weights;
    m_Here = m_Position;
    m_Gradient.assign(columns(), 0.0);
    m_Rates.resize(columns());
    std::vector<NqJointBounds::Limits> limits;
    for (unsigned j = 0; j < m_Joints; ++j) {
        limits.push_back(limitsOf(j));
    }
    m_Solver.prepare(columns(), m_Hard.rows, limits);
    m_Straight.assign(columns(), 0.0);
    m_Hard.command.resize(m_Hard.rows);
    m_Braking.assign(m_Hard.rows, 0.0);
    m_Vanished = m_Braking;
    m_Probe.prepare(m_Hard.rows, columns());
    m_Status.joints.reserve(m_Joints);
    m_Soft.command.resize(m_Soft.rows);
    m_Placements.resize(m_Constraints.size());
    m_Errors.resize(m_Parts.size());
    m_Speeds.resize(m_Parts.size());
    m_Accelerations.resize(m_Parts.size());
    stackConstraints();
    observe();
    NqEndEffector::SparsityDescription sparsity;
    for (const Constraint& constraint : m_Constraints) {
        if (constraint.isHard) {
            constraint.endEffector->insertSparsityComponent(m_Manipulator, constraint.row,
                                                            constraint.endEffector->relativeLinkData(),
                                                            m_Settings.isBaseFixed(), sparsity);
        }
    }
    m_Solver.setSparsity(sparsity);
}

NqJointBounds::Limits NqControlLoop::limitsOf(unsigned j) const {
    const NqManipulatorLink& link = *m_Manipulator.linkByIndex(j);
    const NqJointDescription& joint = link.joint();
    const auto& held = m_Settings.heldJoints();
    bool isHeld = false;
    for (const auto& label : held) {
        isHeld = isHeld || label.value() == joint.name() || label.value() == link.linkLabel();
    }
    const auto& given = m_Settings.accelerationLimits();
    const double time = m_Settings.accelerationTime();
    const double acceleration = j < given.size() ? given[j]
                                : time > 0.0     ? joint.rateLimit() / time
                                                 : kUnbounded;
    return {joint.lowerPositionLimit(), joint.upperPositionLimit(), isHeld ? 0.0 : joint.rateLimit(),
            acceleration, m_Settings.approach()};
}

void NqControlLoop::setPositions(const std::vector<double>& positions) {
    if (positions.size() != m_Joints) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqControlLoop::setPositions(): %d positions for %d joints.\n",
                                    positions.size(), m_Joints);
        return;
    }
    m_Position.setJointPositions(positions);
    m_IsGoing = false;
    setState(m_Position, NqVelocityState(m_Joints));
    for (Constraint& constraint : m_Constraints) {
        std::fill(constraint.previous.begin(), constraint.previous.end(), 0.0);
        std::fill(constraint.velocity.begin(), constraint.velocity.end(), 0.0);
        std::fill(constraint.change.begin(), constraint.change.end(), 0.0);
    }
    measureParts();
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
    m_IsRefused = m_IsRefused && isStateFinite(); // or it may have been for the state
    m_Position = position;
    m_Velocity = velocity;
    takeOverRates();
    m_State.setPositionState(m_Position);
    m_State.setVelocityState(m_Velocity);
    if (m_Steps == 0) {
        holdWithoutTarget();
    }
    observe();
}

/// The rates as the state has them.
void NqControlLoop::takeOverRates() {
    std::copy_n(m_Velocity.jointVelocities().begin(), m_Joints, m_Rates.begin());
    for (unsigned i = m_Joints; i < columns(); ++i) {
        m_Rates[i] = m_Velocity.baseMotion()[i - m_Joints];
    }
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

bool NqControlLoop::isThere(std::size_t e) const {
    if (e >= m_Constraints.size()) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqControlLoop::setTarget(): no end-effector %d, there are %d.\n", e,
                                    m_Constraints.size());
    }
    return e < m_Constraints.size();
}

bool NqControlLoop::setTarget(std::size_t e, const NqControlTarget& target) {
    if (!isThere(e)) {
        return false;
    }
    Constraint& constraint = m_Constraints[e];
    const std::string objection = target.objection(constraint.kind, constraint.desired.size());
    if (!objection.empty()) {
        Nq::Print::instance().write(Nq::PrintFailure, "NqControlLoop::setTarget(): the target of %s %s.\n",
                                    constraint.name, objection);
        return false;
    }
    if (target.isInSystem() && !constraint.isTargetInSystem) {
        constraint.target = constraint.systemTarget;
    } else if (!target.isInSystem() && constraint.isTargetInSystem) {
        constraint.kind.toRelative(*constraint.endEffector, m_Manipulator, constraint.systemTarget, m_State,
                                   constraint.target);
    }
    constraint.isTargetInSystem = target.isInSystem();
    target.apply(constraint.target);
    constraint.hasTarget = true;
    constraint.desired = target.velocity();
    constraint.desired.resize(constraint.filtered.size());
    observe();
    return true;
}

bool NqControlLoop::setTarget(std::size_t e, const NqEndEffectorPlacement& target, bool isInSystem) {
    if (!isThere(e)) {
        return false;
    }
    Constraint& constraint = m_Constraints[e];
    if (!(target == target)) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqControlLoop::setTarget(): the target of %s is not a number.\n",
                                    constraint.name);
        return false;
    }
    if (target.dataVector().size() < constraint.kind.values()) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqControlLoop::setTarget(): the target of %s needs %s.\n",
                                    constraint.name, std::string(constraint.kind.form().syntax));
        return false;
    }
    constraint.target = target;
    constraint.hasTarget = true;
    constraint.isTargetInSystem = isInSystem;
    std::fill(constraint.desired.begin(), constraint.desired.end(), 0.0);
    observe();
    return true;
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

std::vector<NqControlLoopCheck::Issue> NqControlLoop::validate() {
    NqControlLoopCheck check(m_Manipulator);
    check.checkRows(m_Hard.rows, columns());
    check.checkJoints();
    check.checkSettings(m_Settings);
    for (const Constraint& constraint : m_Constraints) {
        check.checkEndEffector(constraint.name, *constraint.endEffector, constraint.kind,
                               constraint.hasTarget);
        if (!m_Settings.isBaseFixed()) {
            check.checkBaseColumns(constraint.name, *constraint.endEffector);
        }
    }
    if (!isStateFinite()) {
        check.add(true, "the state is not finite");
    }
    if (check.issues().empty()) {
        adviseOnRows(check);
    }
    return check.issues();
}

bool NqControlLoop::isStateFinite() const {
    const auto areFinite = [](const auto& values) {
        return std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
    };
    return areFinite(m_Position.jointPositions()) && areFinite(m_Rates);
}

/// Rows that depend on each other where the arm is now.
void NqControlLoop::adviseOnRows(NqControlLoopCheck& check) {
    stackConstraints();
    m_Probe.split(m_Hard.jacobian, m_Hard.rows, kDependent);
    for (unsigned i = 0; i < m_Probe.lost(); ++i) {
        std::string names;
        for (const Constraint& constraint : m_Constraints) {
            bool isIn = false;
            for (unsigned r = 0; constraint.isHard && r < constraint.velocity.size(); ++r) {
                isIn = isIn || std::abs(m_Probe.direction(i)[constraint.row + r]) > kDependent;
            }
            names += isIn ? (names.empty() ? "'" : " and '") + constraint.name + "'" : "";
        }
        check.add(false, "the rows of " + names +
                             " depend on each other, or no joint moves them, where the arm is now");
    }
}

/// Whether nothing is known to be wrong. What is, is said once.
bool NqControlLoop::isReady() {
    if (!m_IsValid && !m_IsRefused) {
        m_IsValid = true;
        for (const NqControlLoopCheck::Issue& issue : validate()) {
            if (issue.isFatal) {
                m_IsValid = false;
                m_IsRefused = true;
                Nq::Print::instance().write(Nq::PrintFailure, "NqControlLoop::step(): %s.\n", issue.text);
            }
        }
    }
    return m_IsValid;
}

bool NqControlLoop::step() {
    if (!isReady()) {
        m_Status.kind = NqControlLoopStatus::BadInput;
        return false;
    }
    stackConstraints();
    commandVelocities();
    weighSoftConstraints();
    m_Solver.bound(positions(), m_Rates, m_Settings.timeStep());
    if (m_IsGoing) {
        goOn();
    } else {
        solve();
    }
    if (!staysFinite()) {
        if (m_Status.kind != NqControlLoopStatus::BadInput) {
            Nq::Print::instance().write(Nq::PrintFailure,
                                        "NqControlLoop::step(): state, targets or velocities are too large, "
                                        "or are not numbers: no step is made.\n");
        }
        m_Status.kind = NqControlLoopStatus::BadInput;
        takeOverRates();
        std::replace_if(
            m_Rates.begin(), m_Rates.end(), [](double rate) { return !std::isfinite(rate); }, 0.0);
        return false;
    }
    measureVelocities();
    integrate();
    observe();
    judge();
    return true;
}

/// Whether the rates are numbers, and what they make of the state.
bool NqControlLoop::staysFinite() const {
    bool result =
        std::all_of(m_Rates.begin(), m_Rates.end(), [](double rate) { return std::isfinite(rate); });
    for (unsigned j = 0; j < m_Joints; ++j) {
        result = result && std::isfinite(m_Position.jointPositions()[j] + m_Rates[j] * m_Settings.timeStep());
    }
    if (!m_Settings.isBaseFixed()) {
        const double* rates = m_Rates.data() + m_Joints;
        result = result && std::isfinite(NqVector(rates[0], rates[1], rates[2]).mag() +
                                         NqVector(rates[3], rates[4], rates[5]).mag() +
                                         m_Position.baseFrame().translation().mag());
    }
    return result;
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

/// By how much the share of the commanded velocities may change in a step, such that the end-effectors keep
/// their own limits of acceleration.
double NqControlLoop::greatestScaleChange() const {
    double rise = 1.0;
    for (const Part& part : m_Parts) {
        const Constraint& constraint = m_Constraints[part.endEffector];
        const double speed = part.part.size(constraint.filtered.values().data());
        const double change = part.part.accelerationLimit * m_Settings.timeStep();
        if (constraint.isHard && change < rise * speed) {
            rise = change / speed;
        }
    }
    return rise;
}

/// The accelerations with which the hard end-effectors come to a stop at their targets: with a speed of v and
/// a way of d to go at least v^2 / (2 d). Returns the greatest of these for the velocity that it takes away,
/// 1/s.
double NqControlLoop::findBraking() {
    double steepest = 0.0;
    std::fill(m_Braking.begin(), m_Braking.end(), 0.0);
    for (std::size_t p = 0; p < m_Parts.size(); ++p) {
        const Constraint& constraint = m_Constraints[m_Parts[p].endEffector];
        if (!constraint.isHard || constraint.kind.form().content == NqTargetForm::Nothing) {
            continue;
        }
        const NqTargetKind::Part& part = m_Parts[p].part;
        double* braking = m_Braking.data() + constraint.row;
        for (unsigned i = part.row; i < part.row + part.rows; ++i) {
            braking[i] = constraint.desired[i] - constraint.filtered[i];
        }
        const double speed = part.size(braking);
        const double slope =
            speed < kIdle ? 0.0 : 0.5 * speed / std::max(m_Errors[p], speed * m_Settings.timeStep());
        for (unsigned i = part.row; i < part.row + part.rows; ++i) {
            braking[i] *= slope;
        }
        steepest = std::max(steepest, slope);
    }
    return steepest;
}

/// The rates that the end-effectors ask for.
void NqControlLoop::solve() {
    const double steepest = findBraking();
    m_Solver.solve({m_Settings, m_Hard.jacobian, m_Hard.command, m_Metric, m_Gradient, m_Weights, positions(),
                    m_Braking, steepest, greatestScaleChange()},
                   m_Rates);
    m_Status.joints = m_Solver.heldJoints();
    m_Status.isCapped = m_Solver.isCapped();
}

bool NqControlLoop::goTo(const std::vector<double>& posture) {
    bool isGood = posture.size() == m_Joints;
    for (unsigned j = 0; j < m_Joints && isGood; ++j) {
        isGood =
            posture[j] >= limits()[j].lower && posture[j] <= limits()[j].upper && std::isfinite(posture[j]);
    }
    if (!isGood) {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqControlLoop::goTo(): that is no posture of the manipulator.\n");
        return false;
    }
    for (unsigned j = 0; j < m_Joints; ++j) {
        const double way = std::abs(posture[j] - m_Position.jointPositions()[j]);
        if (limits()[j].rate == 0.0 && way > m_Settings.tolerance()) {
            Nq::Print::instance().write(Nq::PrintFailure,
                                        "NqControlLoop::goTo(): joint %s can't move, and is elsewhere.\n",
                                        m_Manipulator.linkByIndex(j)->joint().name());
            return false;
        }
    }
    m_Going = posture;
    m_IsGoing = true;
    return true;
}

void NqControlLoop::follow() {
    m_IsGoing = false;
    for (Constraint& constraint : m_Constraints) {
        std::copy(constraint.velocity.begin(), constraint.velocity.end(), constraint.previous.begin());
    }
}

double NqControlLoop::leftToGo() const {
    double left = 0.0;
    for (std::size_t j = 0; j < m_Going.size(); ++j) {
        left = std::max(left, std::abs(m_Going[j] - m_Position.jointPositions()[j]));
    }
    return left;
}

/// Rates along the straight line in joint space.
void NqControlLoop::goOn() {
    double scale = 1.0;
    m_Straight.assign(columns(), 0.0);
    for (unsigned j = 0; j < m_Joints; ++j) {
        m_Straight[j] = kGoingGain * (m_Going[j] - m_Position.jointPositions()[j]);
        const double rate = limits()[j].rate;
        if (rate > 0.0 && std::abs(m_Straight[j]) * scale > rate) {
            scale = rate / std::abs(m_Straight[j]);
        }
    }
    for (const Part& part : m_Parts) {
        Constraint& constraint = m_Constraints[part.endEffector];
        for (unsigned i = 0; i < constraint.velocity.size(); ++i) {
            const auto& row = stackOf(constraint).jacobian[constraint.row + i];
            constraint.change[i] = std::inner_product(row.begin(), row.end(), m_Straight.begin(), 0.0);
        }
        const double speed = part.part.size(constraint.change.data());
        if (constraint.isHard && speed * scale > part.part.speedLimit) {
            scale = part.part.speedLimit / speed;
        }
    }
    for (unsigned j = 0; j < m_Joints; ++j) {
        m_Rates[j] = std::clamp(scale * m_Straight[j], m_Solver.lower()[j], m_Solver.upper()[j]);
    }
    std::fill(m_Rates.begin() + m_Joints, m_Rates.end(), 0.0);
    m_Status.joints.clear();
    for (unsigned j = 0; j < m_Joints; ++j) {
        if (limits()[j].rate == 0.0 && std::abs(m_Straight[j]) > kGoingGain * m_Settings.tolerance()) {
            m_Status.joints.push_back({j, NqJointBounds::Cause::Rate, m_Straight[j] > 0.0, 0.0});
        }
    }
    m_Solver.passOver();
}

double NqControlLoop::largestError() const {
    double error = 0.0;
    for (std::size_t p = 0; p < m_Parts.size(); ++p) {
        const bool counts = m_Hard.rows == 0 || m_Constraints[m_Parts[p].endEffector].isHard;
        if (counts && !(m_Errors[p] <= error)) {
            error = m_Errors[p];
        }
        if (std::isnan(error)) {
            break;
        }
    }
    return error;
}

/// What there is to say about the step, once it was made.
void NqControlLoop::judge() {
    m_Status.distance = largestError();
    m_Status.leastSingularValue =
        m_Solver.lost() > 0 ? m_Solver.singularities().singularValue(0) : kUnbounded;
    const double fastest = std::accumulate(m_Rates.begin(), m_Rates.end(), 0.0, [](double most, double rate) {
        return std::max(most, std::abs(rate));
    });
    const bool isFaster = fastest >= kSpeedingUp * m_FastestBefore + kIdle;
    m_FasterSteps = isFaster ? m_FasterSteps + 1 : 0;
    const bool isSlow = fastest < kRest && m_FasterSteps < kBeginning;
    m_RestTime = isSlow ? m_RestTime + m_Settings.timeStep() : 0.0;
    m_FastestBefore = fastest;
    m_Status.isAtRest = m_RestTime > kRestTime && !isFaster;
    m_IsProbed = m_IsProbed && fastest < kRest;
    double residual = 0.0;
    for (std::size_t e = 0; e < m_Constraints.size(); ++e) {
        const Constraint& constraint = m_Constraints[e];
        for (std::size_t i = 0; constraint.isHard && i < constraint.velocity.size(); ++i) {
            const double left = std::abs(constraint.filtered[i] - constraint.velocity[i]);
            if (left > residual) {
                residual = left;
                m_Status.endEffector = e;
            }
        }
    }
    const bool hasLimits = std::any_of(m_Status.joints.begin(), m_Status.joints.end(), [](const auto& joint) {
        return joint.cause != NqJointBounds::Cause::Acceleration;
    });
    const double left = m_IsGoing ? leftToGo() : m_Status.distance;
    if (left <= m_Settings.tolerance()) {
        m_Status.kind = NqControlLoopStatus::Reached;
    } else if (m_Solver.lost() > 0 && m_Status.isAtRest) {
        judgeLostDirection();
    } else if (m_Hard.rows == 0 && !m_IsGoing && m_Status.isAtRest && fastest * kHopeless < left) {
        judgeSoftAtRest(hasLimits);
    } else if ((m_IsGoing || m_Solver.leaving() > 0.0) && hasLimits) {
        m_Status.kind = NqControlLoopStatus::Held;
    } else {
        const bool isLess = m_Solver.isSlowed() || m_Solver.leaving() > 0.0;
        m_Status.kind = isLess ? NqControlLoopStatus::Slowed : NqControlLoopStatus::Running;
    }
}

/// At rest with soft end-effectors alone, which balance each other, or what else keeps the joints.
void NqControlLoop::judgeSoftAtRest(bool hasLimits) {
    m_Status.endEffector =
        m_Parts[static_cast<std::size_t>(std::ranges::max_element(m_Errors) - m_Errors.begin())].endEffector;
    m_Status.kind = hasLimits ? NqControlLoopStatus::Held : NqControlLoopStatus::OutOfReach;
}

/// At rest, with directions that the joints can't make: which of these the command asks for.
void NqControlLoop::judgeLostDirection() {
    const NqSingularityFilter& singularities = m_Solver.singularities();
    double most = 0.0;
    unsigned lost = 0;
    for (unsigned i = 0; i < m_Solver.lost(); ++i) {
        const double asked = std::abs(singularities.along(i, m_Hard.command));
        if (asked > most) {
            most = asked;
            lost = i;
        }
    }
    const std::vector<double>& direction = singularities.direction(lost);
    m_Status.leastSingularValue = singularities.singularValue(lost);
    double largest = 0.0;
    double next = 0.0;
    for (std::size_t e = 0; e < m_Constraints.size(); ++e) {
        const Constraint& constraint = m_Constraints[e];
        if (!constraint.isHard) {
            continue;
        }
        double size = 0.0;
        for (unsigned i = 0; i < constraint.velocity.size(); ++i) {
            size = std::max(size, std::abs(direction[constraint.row + i]));
        }
        if (size > largest) {
            next = largest;
            m_Status.other = m_Status.endEffector;
            m_Status.endEffector = e;
            largest = size;
        } else if (size > next) {
            next = size;
            m_Status.other = e;
        }
    }
    const Constraint& constraint = m_Constraints[m_Status.endEffector];
    double part[6] = {};
    for (unsigned i = 0; i < std::min<std::size_t>(6, constraint.velocity.size()); ++i) {
        part[i] = direction[constraint.row + i];
    }
    const NqVector first(part[0], part[1], part[2]);
    const NqVector second(part[3], part[4], part[5]);
    m_Status.isAngular = second.mag() > first.mag() ||
                         (!constraint.kind.parts().empty() && constraint.kind.parts()[0].isAngular);
    m_Status.direction = second.mag() > first.mag() ? second : first;
    if (m_Status.leastSingularValue < kDependent && next > kDependent && excludeEachOther()) {
        m_Status.kind = NqControlLoopStatus::Contradictory;
        return;
    }
    // Limits are to blame if without them the arm would move, or a small turn would make what is left.
    const double free = most * singularities.dampedShare(lost, m_Settings.damping());
    if (m_Status.joints.empty() && (free > kRest * m_Status.leastSingularValue ||
                                    m_Status.distance < kSmallTurn * m_Status.leastSingularValue)) {
        m_Solver.findLimits(m_Status.joints);
    }
    if (m_Status.joints.empty() && !isProbed()) {
        m_CanComeNearer = canComeNearer();
        m_IsProbed = true;
        m_ProbedError = m_Status.distance;
        for (Constraint& probed : m_Constraints) {
            probed.probed = probed.systemTarget.coordSysXForm();
        }
    }
    m_Status.kind = !m_Status.joints.empty() ? NqControlLoopStatus::Held
                    : m_CanComeNearer        ? NqControlLoopStatus::Singular
                                             : NqControlLoopStatus::OutOfReach;
}

/// Whether canComeNearer() was asked where arm and targets are.
bool NqControlLoop::isProbed() const {
    return m_IsProbed && std::abs(m_Status.distance - m_ProbedError) < kRest &&
           std::all_of(m_Constraints.begin(), m_Constraints.end(), [](const Constraint& constraint) {
               return constraint.probed == constraint.systemTarget.coordSysXForm();
           });
}

/// Whether end-effectors ask the joints for opposite motions, rather than all for one that there isn't: what
/// the command has along the directions that no joint moves is then, of one alone, a motion.
bool NqControlLoop::excludeEachOther() {
    const NqSingularityFilter& singularities = m_Solver.singularities();
    std::fill(m_Vanished.begin(), m_Vanished.end(), 0.0);
    for (unsigned i = 0; i < m_Solver.lost() && singularities.singularValue(i) < kDependent; ++i) {
        const double asked = singularities.along(i, m_Hard.command);
        for (unsigned r = 0; r < m_Hard.rows; ++r) {
            m_Vanished[r] += asked * singularities.direction(i)[r];
        }
    }
    for (const Constraint& constraint : m_Constraints) {
        for (unsigned k = 0; constraint.isHard && k < columns(); ++k) {
            double motion = 0.0;
            for (unsigned r = 0; r < constraint.velocity.size(); ++r) {
                motion += m_Hard.jacobian[constraint.row + r][k] * m_Vanished[constraint.row + r];
            }
            if (std::abs(motion) > kIdle) {
                return true;
            }
        }
    }
    return false;
}

/// Whether some motion that the rows don't notice in first order brings the end-effectors nearer in second.
/// The state is as before afterwards.
bool NqControlLoop::canComeNearer() {
    const double before = largestError();
    const NqReArray& free = m_Solver.freeMotions();
    m_Here = m_Position;
    bool isNearer = false;
    for (unsigned c = 0; c < free.columns() && !isNearer; ++c) {
        double largest = 0.0;
        for (unsigned j = 0; j < m_Joints; ++j) {
            largest = std::max(largest, std::abs(free[j][c]));
        }
        for (const double step : {kProbe, -kProbe}) {
            for (unsigned j = 0; j < m_Joints && largest > 0.0; ++j) {
                m_Position.jointPositions()[j] = m_Here.jointPositions()[j] + step / largest * free[j][c];
            }
            m_State.setPositionState(m_Position);
            observe();
            isNearer = isNearer || largestError() < before - kProbe * kProbe * kProbe;
        }
    }
    m_Position = m_Here;
    m_State.setPositionState(m_Position);
    observe();
    return isNearer;
}

double NqControlLoop::leastSingularValue() {
    if (m_Hard.rows == 0) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    m_Probe.split(m_Hard.jacobian, m_Hard.rows, 0.0);
    return m_Probe.singularValue(0);
}

double NqControlLoop::condition() {
    const double least = leastSingularValue();
    return m_Hard.rows == 0 ? least : m_Probe.singularValue(m_Hard.rows - 1) / least;
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
            constraint.previous[i] = constraint.filtered[i];
        }
    }
    ++m_Steps;
}

/// What the rates make of a row of an end-effector.
double NqControlLoop::velocityOf(const Constraint& constraint, unsigned i) const {
    const NqReArray& jacobian = constraint.isHard ? m_Hard.jacobian : m_Soft.jacobian;
    const auto& row = jacobian[constraint.row + i];
    return std::inner_product(row.begin(), row.end(), m_Rates.begin(), 0.0);
}

/// What the rates make of each end-effector, and how that differs from the step before.
void NqControlLoop::measureVelocities() {
    for (Constraint& constraint : m_Constraints) {
        for (unsigned i = 0; i < constraint.velocity.size(); ++i) {
            const double velocity = velocityOf(constraint, i);
            constraint.change[i] = velocity - constraint.velocity[i];
            constraint.velocity[i] = velocity;
        }
    }
    measureParts();
}

void NqControlLoop::measureParts() {
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
