#include <nqControlLoop/NqRateSolver.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

/// Below this share of the commanded velocities the motion begins to leave its path, and at this one it
/// follows the least error alone.
constexpr double kWhollyOnPath = 0.1;
constexpr double kWhollyOffPath = 0.02;
/// Weight of the error along the path beside that across it where only the joints' accelerations are in the
/// way: the motion then brakes rather than strays.
constexpr double kBrakingWeight = 0.1;
/// So many times the threshold a pivot may be and singular values still be asked for: pivots are seldom so
/// much larger than the least singular value.
constexpr double kPivotMargin = 10.0;
/// Where nothing is to be damped: singular values below this are rounding, as J J^T shows them.
constexpr double kLeastThreshold = 1.0e-6;
/// A share of the commanded velocities above this counts as all of it.
constexpr double kHardlySlowed = 0.98;
/// Share of the joints' limits of acceleration that bends and stops may take; the rest is for the change of
/// posture.
constexpr double kTurning = 0.7;
/// Lost directions are served above this share of the threshold, not at all below that.
constexpr double kServed = 0.2;
constexpr double kUnserved = 0.1;
constexpr double kLeastServed = 0.9; ///< of what is asked along them
/// A velocity along them that isn't worth a solve.
constexpr double kNegligible = 1.0e-6;
constexpr double kUnbounded = std::numeric_limits<double>::infinity();

/// Also without damping directions that no joint moves are lost.
double thresholdOf(const NqRateSolver::Task& task) {
    return std::max(task.settings.singularityThreshold(), kLeastThreshold);
}

/// By how much a motion leaves its path that makes a share of what is commanded.
double shareOffPath(double scale) {
    return std::clamp((kWhollyOnPath - scale) / (kWhollyOnPath - kWhollyOffPath), 0.0, 1.0);
}

} // namespace

void NqRateSolver::prepare(unsigned unknowns, unsigned rows,
                           const std::vector<NqJointBounds::Limits>& limits) {
    m_Rows = rows;
    m_Limits = limits;
    m_Bounds.assign(m_Limits.size(),
                    NqJointBounds(m_Limits.empty() ? NqJointBounds::Limits{} : m_Limits[0], 0.0, 0.0, 1.0));
    m_Lower.assign(unknowns, -kUnbounded);
    m_Upper.assign(unknowns, kUnbounded);
    m_Sliding.assign(unknowns, 0.0);
    m_Wished = m_DampedGradient = m_TurningRates = m_PathBefore = m_Sliding;
    m_DampedMetric.setToZeros(unknowns, unknowns);
    m_NoCommand.assign(rows, 0.0);
    m_Turning = m_CommandBefore = m_SlidingCommand = m_Serving = m_NoCommand;
    m_SlidingRows.setToZeros(rows, unknowns);
    m_IsPathKnown = false;
    if (rows <= unknowns) {
        m_Tool.prepare(unknowns, rows);
        m_ReducedTools.resize(rows + 1);
        for (unsigned lost = 0; lost <= rows; ++lost) {
            m_ReducedTools[lost].prepare(unknowns, rows - lost);
        }
    }
    m_Singularities.prepare(rows, unknowns);
    m_LeastSquares.prepare(unknowns);
    m_HeldJoints.reserve(m_Limits.size());
}

void NqRateSolver::bound(const std::vector<double>& positions, const std::vector<double>& rates,
                         double timeStep) {
    for (unsigned j = 0; j < joints(); ++j) {
        m_Bounds[j] = NqJointBounds(m_Limits[j], positions[j], rates[j], timeStep);
        m_Lower[j] = m_Bounds[j].lower;
        m_Upper[j] = m_Bounds[j].upper;
    }
}

/// Joint rates with J rates = scale * command that otherwise descend the gradient under the metric.
void NqRateSolver::solve(const Task& task, std::vector<double>& rates) {
    using Outcome = NqLimitedVelocityTool::Outcome;
    NqLimitedVelocityTool* tool = &m_Tool;
    Outcome outcome = m_Tool.solve(task.jacobian, task.metric, task.gradient, task.command, m_Lower, m_Upper);
    m_Determinant = outcome == Outcome::Failed ? 0.0 : m_Tool.determinant();
    m_Lost = 0;
    const double threshold = thresholdOf(task);
    if (outcome == Outcome::Failed || (m_Rows > 0 && m_Tool.leastPivot() < kPivotMargin * threshold &&
                                       m_Singularities.isNear(task.jacobian, m_Rows, threshold))) {
        m_Lost = m_Singularities.split(task.jacobian, m_Rows, threshold);
        if (m_Lost > 0) {
            dampLostDirections(task, false);
            m_Singularities.projectVelocity(task.command);
            tool = &m_ReducedTools[m_Lost];
            outcome = tool->solve(m_Singularities.keptRows(), m_DampedMetric, m_DampedGradient,
                                  m_Singularities.keptVelocity(), m_Lower, m_Upper);
        }
    }
    m_HeldJoints.clear();
    const double scale = outcome == Outcome::Failed || outcome == Outcome::Blocked ? 0.0 : tool->scale();
    double greatest = 0.0;
    if (outcome != Outcome::Failed) {
        const double change = task.greatestChange;
        greatest = std::min(
            {1.0, m_Scale + change,
             std::max(m_Scale - change, greatestTurnableScale(task, *tool, outcome != Outcome::Unlimited))});
    }
    if (outcome == Outcome::Slowed || outcome == Outcome::Blocked) {
        findHeld(tool->holds(), m_HeldJoints);
    }
    double leaving = shareOffPath(scale);
    if (outcome == Outcome::Slowed && task.settings.blocked() == NqControlLoopSettings::Hold &&
        std::all_of(m_HeldJoints.begin(), m_HeldJoints.end(), [](const NqControlLoopStatus::Joint& held) {
            return held.cause == NqJointBounds::Cause::Acceleration;
        })) {
        leaving = 0.0; // the way isn't blocked: the joints only have to gather speed
    }
    if (leaving < 1.0 && scale > greatest) {
        outcome = tool->solveAgain(greatest, m_Lower, m_Upper);
        leaving = outcome == Outcome::Blocked ? 1.0 : leaving;
    }
    if (leaving < 1.0) {
        std::copy(tool->rates().begin(), tool->rates().end(), rates.begin());
    }
    m_Scale = std::min(scale, greatest);
    m_Leaving = leaving;
    const double along = outcome == Outcome::Blocked ? alongWeight(task, *tool) : 1.0;
    m_Steps = m_Tool.steps() + (tool == &m_Tool ? 0 : tool->steps());
    m_IsCapped = m_Tool.isCapped() || tool->isCapped();
    std::fill(m_Wished.begin(), m_Wished.end(), 0.0);
    if (outcome != Outcome::Failed) {
        std::copy(tool->nullSpaceRates().begin(), tool->nullSpaceRates().end(), m_Wished.begin());
    }
    if (m_Lost > 0 && leaving < 1.0) {
        serveLostDirections(task, rates);
    }
    if (leaving > 0.0) {
        leavePath(task, along, rates);
    }
    for (std::size_t k = 0; k < rates.size(); ++k) {
        rates[k] = std::clamp(rates[k], m_Lower[k], m_Upper[k]); // free of the rounding of the mixture
    }
    m_Slowing = shareMade(task, rates);
    if (leaving > 0.0) {
        m_Scale += leaving * (std::max(m_Slowing, m_Scale) - m_Scale);
    }
    if (isSlowed() && m_HeldJoints.empty() && isLimitedAlongLost(task, rates)) {
        findLimits(m_HeldJoints);
    }
}

void NqRateSolver::passOver() {
    m_HeldJoints.clear();
    m_Lost = 0;
    m_Leaving = 0.0;
    m_Slowing = m_Scale = 1.0;
}

bool NqRateSolver::isSlowed() const {
    return m_Slowing < kHardlySlowed;
}

void NqRateSolver::count(unsigned steps, bool isCapped) {
    m_Steps += steps;
    m_IsCapped = m_IsCapped || isCapped;
}

/// How much of the commanded velocities there may be for the joints to follow the bends of the path and to
/// stop at the targets, within their limits of acceleration. With a share s of the command, rates along the
/// path of t for a unit of s and the same t' a step before, the joints need
///     s^2 (J^+ v' - t') / (s' h)    for the bends, v' and s' being those of the step before, and
///     s^2 J^+ b                     for stopping, b being the braking that the task says.
/// Joints that are held make the others' rates others than t: then only stopping counts, and they don't.
double NqRateSolver::greatestTurnableScale(const Task& task, NqLimitedVelocityTool& tool, bool isHolding) {
    const auto isAtEnd = [&](const NqBoundActiveSet::Hold& hold) {
        return hold.unknown < joints() && causeOf(hold) != NqJointBounds::Cause::Acceleration;
    };
    const auto isHeld = [&](unsigned j) {
        return std::any_of(tool.holds().begin(), tool.holds().end(),
                           [&](const auto& hold) { return hold.unknown == j && isAtEnd(hold); });
    };
    isHolding = isHolding && std::any_of(tool.holds().begin(), tool.holds().end(), isAtEnd);
    const bool isKnown = m_IsPathKnown && !isHolding && m_Scale > kWhollyOnPath && m_Lost == m_LostBefore;
    const double perTime = isKnown ? 1.0 / (m_Scale * task.settings.timeStep()) : 0.0;
    double scale = 1.0;
    bool isFar = true; // from what the joints can do, by a simple estimate
    for (unsigned j = 0; j < joints() && isFar; ++j) {
        const double path = tool.path()[j];
        isFar = perTime * std::abs(path - m_PathBefore[j]) + task.steepest * std::abs(path) <=
                kTurning * m_Limits[j].acceleration;
    }
    if (!isFar) {
        for (unsigned i = 0; i < m_Rows; ++i) {
            m_Turning[i] = task.braking[i] + perTime * m_CommandBefore[i];
        }
        if (m_Lost > 0) {
            m_Singularities.projectVelocity(m_Turning);
        }
        tool.findPath(m_Lost > 0 ? m_Singularities.keptVelocity() : m_Turning, m_TurningRates);
    }
    for (unsigned j = 0; j < joints() && !isFar; ++j) {
        const double needed = std::abs(m_TurningRates[j] - perTime * m_PathBefore[j]);
        const double there = kTurning * m_Limits[j].acceleration;
        if (needed * scale * scale > there && !(isHolding && isHeld(j))) {
            scale = std::sqrt(there / needed);
        }
    }
    std::copy(tool.path().begin(), tool.path().end(), m_PathBefore.begin());
    std::copy(task.command.begin(), task.command.end(), m_CommandBefore.begin());
    m_LostBefore = m_Lost;
    m_IsPathKnown = !isHolding;
    return scale;
}

/// Share of the commanded velocities that the rates make, along these.
double NqRateSolver::shareMade(const Task& task, const std::vector<double>& rates) const {
    double made = 0.0;
    double commanded = 0.0;
    for (unsigned i = 0; i < m_Rows; ++i) {
        const auto& row = task.jacobian[i];
        made += task.command[i] * std::inner_product(row.begin(), row.end(), rates.begin(), 0.0);
        commanded += task.command[i] * task.command[i];
    }
    const double share = commanded > 0.0 ? made / commanded : 1.0; // NaN where squares overflow
    return share > 0.0 ? std::min(share, 1.0) : 0.0;
}

/// The metric and the gradient with the lost directions in them; or the weights of the joints with these, and
/// nothing else.
void NqRateSolver::dampLostDirections(const Task& task, bool isAlone) {
    const unsigned n = unknowns();
    const bool isDiagonal = task.metric.columns() == 1 || isAlone;
    for (unsigned j = 0; j < n; ++j) {
        if (isDiagonal) {
            std::fill(m_DampedMetric[j].begin(), m_DampedMetric[j].end(), 0.0);
            m_DampedMetric[j][j] = task.weights[j];
        } else {
            std::copy(task.metric[j].begin(), task.metric[j].end(), m_DampedMetric[j].begin());
        }
        m_DampedGradient[j] = isAlone ? 0.0 : task.gradient[j];
    }
    m_Singularities.addCost(task.command, task.settings.damping(), m_DampedMetric, m_DampedGradient);
}

/// The lost directions are damped, so that the gradient and soft end-effectors, which aren't, could outweigh
/// what is asked along them. What is made there is to be, but for a tenth, between what damping alone leaves
/// of it and all; except in the midst of a singularity, where such directions turn faster than the arm could.
void NqRateSolver::serveLostDirections(const Task& task, std::vector<double>& rates) {
    using Outcome = NqLimitedVelocityTool::Outcome;
    const unsigned vanished = m_Singularities.vanished();
    const unsigned kept = m_Rows - m_Lost;
    // By what the damped directions make of it, in m_Sliding, or without knowing these.
    const auto isServed = [&](bool isDampedKnown) {
        double farthest = 0.0;
        for (unsigned i = vanished; i < m_Lost; ++i) {
            const double asked = m_Singularities.along(i, task.command);
            const double damped = m_Singularities.dampedShare(i, task.settings.damping()) * asked;
            const double made = m_Singularities.made(i, rates);
            const double alone = isDampedKnown ? m_Singularities.made(i, m_Sliding) : damped;
            const auto [least, most] =
                std::minmax({asked / kLeastServed, kLeastServed * damped, kLeastServed * alone});
            const double size = m_Singularities.singularValue(i) / thresholdOf(task);
            const double share = std::clamp((size - kUnserved) / (kServed - kUnserved), 0.0, 1.0);
            const double change = share * (std::clamp(made, least, most) - made);
            m_Serving[kept + i - vanished] = (made + change) / m_Singularities.singularValue(i);
            farthest = std::max(farthest, std::abs(change));
        }
        return farthest < kNegligible;
    };
    if (isServed(false)) {
        return;
    }
    for (unsigned i = 0; i < kept; ++i) {
        m_Serving[i] = m_Singularities.made(m_Lost + i, rates);
    }
    dampLostDirections(task, true);
    NqLimitedVelocityTool& damping = m_ReducedTools[m_Lost];
    Outcome outcome = damping.solve(m_Singularities.keptRows(), m_DampedMetric, m_DampedGradient, m_Serving,
                                    m_Lower, m_Upper);
    count(damping.steps(), damping.isCapped());
    if (outcome == Outcome::Failed || outcome == Outcome::Blocked) {
        return;
    }
    std::copy(damping.rates().begin(), damping.rates().end(), m_Sliding.begin());
    if (isServed(true)) {
        return;
    }
    NqLimitedVelocityTool& tool = m_ReducedTools[vanished];
    outcome =
        tool.solve(m_Singularities.presentRows(), task.metric, task.gradient, m_Serving, m_Lower, m_Upper);
    count(tool.steps(), tool.isCapped());
    const bool isGood = outcome == Outcome::Unlimited || outcome == Outcome::Limited;
    const std::vector<double>& found = isGood ? tool.rates() : m_Sliding;
    std::copy(found.begin(), found.end(), rates.begin());
}

/// After the bounds left no rates along the path: whether those of rate would, away from the ends of ranges,
/// and only the joints can't turn so fast. The error along the path then counts little, otherwise as much as
/// all.
double NqRateSolver::alongWeight(const Task& task, NqLimitedVelocityTool& tool) {
    for (unsigned k = 0; k < unknowns(); ++k) {
        const bool isJoint = k < joints();
        const double position = isJoint ? task.positions[k] : 0.0;
        m_Wished[k] = isJoint ? NqJointBounds::lowerOfPlace(m_Limits[k], position, task.settings.timeStep())
                              : -kUnbounded;
        m_Sliding[k] = isJoint ? NqJointBounds::upperOfPlace(m_Limits[k], position, task.settings.timeStep())
                               : kUnbounded;
    }
    const bool isBlocked =
        tool.solveAgain(1.0, m_Wished, m_Sliding) == NqLimitedVelocityTool::Outcome::Blocked;
    for (const NqBoundActiveSet::Hold& hold : tool.holds()) {
        const double bound = hold.isUpper ? m_Sliding[hold.unknown] : -m_Wished[hold.unknown];
        if (hold.unknown < joints() && bound < m_Limits[hold.unknown].rate) {
            return 1.0;
        }
    }
    const double off = shareOffPath(isBlocked ? 0.0 : tool.scale());
    return kBrakingWeight + off * (1.0 - kBrakingWeight);
}

/// The hard rows and their command, with a weight below 1 along the command.
void NqRateSolver::turnTowardsPath(const Task& task, double along) {
    const double square =
        std::inner_product(task.command.begin(), task.command.end(), task.command.begin(), 0.0);
    for (unsigned j = 0; j < unknowns(); ++j) {
        double sum = 0.0;
        for (unsigned i = 0; i < m_Rows; ++i) {
            sum += task.command[i] * task.jacobian[i][j];
        }
        const double less = square > 0.0 ? (1.0 - along) * sum / square : 0.0;
        for (unsigned i = 0; i < m_Rows; ++i) {
            m_SlidingRows[i][j] = task.jacobian[i][j] - less * task.command[i];
        }
    }
    std::transform(task.command.begin(), task.command.end(), m_SlidingCommand.begin(),
                   [&](double velocity) { return along * velocity; });
}

/// Turns the rates, by a share, towards those of the least error or, where the path is to be kept, towards
/// rest. Error along the path has a weight of its own.
void NqRateSolver::leavePath(const Task& task, double along, std::vector<double>& rates) {
    const bool isHolding = task.settings.blocked() == NqControlLoopSettings::Hold;
    const bool isTurned = along < 1.0;
    if (isTurned) {
        turnTowardsPath(task, along);
    }
    m_LeastSquares.solve(isTurned ? m_SlidingRows : task.jacobian, m_Rows,
                         isHolding  ? m_NoCommand
                         : isTurned ? m_SlidingCommand
                                    : task.command,
                         m_Wished, task.weights, task.settings.damping(), m_Lower, m_Upper, m_Sliding);
    count(m_LeastSquares.steps(), m_LeastSquares.isCapped());
    if (!isHolding) {
        findHeld(m_LeastSquares.holds(), m_HeldJoints);
    }
    for (std::size_t k = 0; k < rates.size(); ++k) {
        rates[k] = m_Leaving < 1.0 ? (1.0 - m_Leaving) * rates[k] + m_Leaving * m_Sliding[k] : m_Sliding[k];
    }
}

/// Whether a lost direction makes less than half of what damping alone would leave of it.
bool NqRateSolver::isLimitedAlongLost(const Task& task, const std::vector<double>& rates) const {
    for (unsigned i = 0; i < m_Lost; ++i) {
        const double asked = m_Singularities.along(i, task.command);
        const double damped = m_Singularities.dampedShare(i, task.settings.damping()) * asked;
        if (m_Singularities.made(i, rates) * asked < 0.5 * damped * asked) {
            return true;
        }
    }
    return false;
}

NqJointBounds::Cause NqRateSolver::causeOf(const NqBoundActiveSet::Hold& hold) const {
    const NqJointBounds& bounds = m_Bounds[hold.unknown];
    return hold.isUpper ? bounds.upperCause : bounds.lowerCause;
}

/// The joints that are held, and by what.
void NqRateSolver::findHeld(const Holds& holds, Joints& joints) const {
    joints.clear();
    for (const NqBoundActiveSet::Hold& hold : holds) {
        if (hold.unknown < m_Limits.size()) {
            joints.push_back({hold.unknown, causeOf(hold), hold.isUpper, std::abs(hold.multiplier)});
        }
    }
    std::sort(joints.begin(), joints.end(),
              [](const auto& a, const auto& b) { return a.multiplier > b.multiplier; });
}

/// The same, without those that only can't turn so fast.
void NqRateSolver::findLimits(Joints& joints) const {
    findHeld(m_ReducedTools[m_Lost].holds(), joints);
    std::erase_if(joints, [](const NqControlLoopStatus::Joint& joint) {
        return joint.cause == NqJointBounds::Cause::Acceleration;
    });
}
