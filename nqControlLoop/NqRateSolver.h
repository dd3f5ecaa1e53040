#pragma once

#include <nqControlLoop/NqBoundedLeastSquares.h>
#include <nqControlLoop/NqControlLoopSettings.h>
#include <nqControlLoop/NqControlLoopStatus.h>
#include <nqControlLoop/NqJointBounds.h>
#include <nqControlLoop/NqLimitedVelocityTool.h>
#include <nqControlLoop/NqSingularityFilter.h>

#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <limits>
#include <vector>

/// Finds the joint rates of a control step: those that give what is commanded and, as far as that leaves them
/// free, descend a gradient under a metric, all within bounds.
///
/// A joint at a limit is held there and the others make its motion; where they can't, all slow down along
/// the path that is commanded (NqLimitedVelocityTool), ahead of its bends and of stops too. Where nearly
/// nothing would be left of the motion it leaves the path by the least error, or comes to rest, as the
/// settings say (NqBoundedLeastSquares). Near a singularity the directions that are being lost are damped,
/// and nothing else (NqSingularityFilter).
class NqRateSolver {
public:
    using Joints = std::vector<NqControlLoopStatus::Joint>;

    /// What is asked in a step. The unknowns are the rates of the joints and, with a free base, the six of
    /// its motion behind them.
    struct Task {
        const NqControlLoopSettings& settings;
        const NqReArray& jacobian;          ///< rows of the motion that is commanded
        const std::vector<double>& command; ///< velocities of these
        const NqReArray& metric;            ///< a full one, or its diagonal as a column
        const std::vector<double>& gradient;
        const std::vector<double>& weights; ///< diagonal metric of what leaves the path
        const std::vector<double>& positions;
        const std::vector<double>& braking; ///< accelerations of the rows with which they come to a stop
        double steepest;       ///< the greatest of these for the velocity that it takes away, 1/s
        double greatestChange; ///< of the share of the command that is made, in a step
    };

    /// Sizes all workspace and takes the joints' limits. Forgets the path, as it isn't the same any more.
    void prepare(unsigned unknowns, unsigned rows, const std::vector<NqJointBounds::Limits>& limits);
    /// Where elements of the rows can be other than zero.
    void setSparsity(const std::vector<std::vector<bool>>& sparsity) { m_Tool.setSparsity(sparsity); }

    /// Finds the bounds of a step from positions and rates; to be called before solve().
    void bound(const std::vector<double>& positions, const std::vector<double>& rates, double timeStep);
    const std::vector<NqJointBounds::Limits>& limits() const { return m_Limits; }
    const std::vector<double>& lower() const { return m_Lower; }
    const std::vector<double>& upper() const { return m_Upper; }

    /// The rates; as they were where there are none.
    void solve(const Task& task, std::vector<double>& rates);
    /// For a step that is made by other means.
    void passOver();

    /// Joints that the last step held, and why, the one first that costs most.
    const Joints& heldJoints() const { return m_HeldJoints; }
    /// Those at limits of rate or range among the joints that were held where lost directions are damped.
    void findLimits(Joints& joints) const;

    /// Directions that are lost, and all of them.
    unsigned lost() const { return m_Lost; }
    const NqSingularityFilter& singularities() const { return m_Singularities; }
    /// Motions, a column each, that the directions which are left don't notice.
    const NqReArray& freeMotions() const { return m_ReducedTools[m_Lost].nullSpace(); }

    /// Share of the command that was made along it, 0 to 1.
    double slowing() const { return m_Slowing; }
    /// Whether that is clearly less than all.
    bool isSlowed() const;
    /// By how much the last step left its path, 0 to 1.
    double leaving() const { return m_Leaving; }
    /// Of the solver's square system; NaN before the first step.
    double determinant() const { return m_Determinant; }
    /// Steps of the active sets, and whether one took too many.
    unsigned steps() const { return m_Steps; }
    bool isCapped() const { return m_IsCapped; }

private:
    using Holds = std::vector<NqBoundActiveSet::Hold>;

    unsigned unknowns() const { return static_cast<unsigned>(m_Upper.size()); }
    unsigned joints() const { return static_cast<unsigned>(m_Limits.size()); }
    void count(unsigned steps, bool isCapped);
    double greatestTurnableScale(const Task& task, NqLimitedVelocityTool& tool, bool isHolding);
    double shareMade(const Task& task, const std::vector<double>& rates) const;
    void dampLostDirections(const Task& task, bool isAlone);
    void serveLostDirections(const Task& task, std::vector<double>& rates);
    double alongWeight(const Task& task, NqLimitedVelocityTool& tool);
    void turnTowardsPath(const Task& task, double along);
    void leavePath(const Task& task, double along, std::vector<double>& rates);
    bool isLimitedAlongLost(const Task& task, const std::vector<double>& rates) const;
    NqJointBounds::Cause causeOf(const NqBoundActiveSet::Hold& hold) const;
    void findHeld(const Holds& holds, Joints& joints) const;

    unsigned m_Rows = 0;
    NqLimitedVelocityTool m_Tool;
    std::vector<NqLimitedVelocityTool> m_ReducedTools; ///< where directions are lost, by how many rows less
    NqSingularityFilter m_Singularities;
    NqBoundedLeastSquares m_LeastSquares;

    std::vector<NqJointBounds::Limits> m_Limits; ///< of the joints
    std::vector<NqJointBounds> m_Bounds;
    std::vector<double> m_Lower; ///< of the unknowns in this step
    std::vector<double> m_Upper;

    std::vector<double> m_Wished;
    std::vector<double> m_Sliding; ///< rates that leave the path
    NqReArray m_SlidingRows;       ///< the rows, with less weight along the path
    std::vector<double> m_SlidingCommand;
    std::vector<double> m_NoCommand;
    std::vector<double> m_Serving; ///< velocities along kept and lost directions
    NqReArray m_DampedMetric;
    std::vector<double> m_DampedGradient;
    std::vector<double> m_Turning;      ///< of the rows: velocities that ask for accelerations
    std::vector<double> m_TurningRates; ///< and what they ask of the joints
    std::vector<double> m_PathBefore;   ///< rates along the path in the last step, at its command
    std::vector<double> m_CommandBefore;
    unsigned m_LostBefore = 0;
    bool m_IsPathKnown = false;

    unsigned m_Lost = 0;
    double m_Scale = 1.0; ///< of the command, in the last step
    double m_Slowing = 1.0;
    double m_Leaving = 0.0;
    double m_Determinant = std::numeric_limits<double>::quiet_NaN();
    unsigned m_Steps = 0;
    bool m_IsCapped = false;
    Joints m_HeldJoints;
};
