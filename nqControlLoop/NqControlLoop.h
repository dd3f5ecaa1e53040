#pragma once

#include <nqControlLoop/NqControlLoopCheck.h>
#include <nqControlLoop/NqControlLoopSettings.h>
#include <nqControlLoop/NqControlLoopStatus.h>
#include <nqControlLoop/NqControlTarget.h>
#include <nqControlLoop/NqRateSolver.h>
#include <nqControlLoop/NqSingularityFilter.h>
#include <nqControlLoop/NqTargetKind.h>

#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

/// The control loop of a manipulator: end-effectors under names, targets for them, and a step that finds the
/// joint rates and moves on.
///
/// Each step() asks the end-effectors for their Jacobian rows and for the velocities that their motion
/// filters command towards their targets, solves for the joint rates that give just these velocities and, as
/// far as they leave the joints free, descend towards a posture, all within the limits of the joints, and
/// integrates the rates. Soft end-effectors take part through metric and gradient: with their
/// rows S, their weights E and the velocities s that they command, x are of all joint rates that meet the
/// hard rows those of the least
///     x^T A x + 2 g^T x + (S x - s)^T E (S x - s)
/// with the joints' weights A and the gradient g towards the posture.
///
/// Limits of position, rate and acceleration hold in every step (NqJointBounds). A joint at a limit is held
/// there and the others make its motion; where they can't, the motion slows along its path, and where it
/// would come to a halt though the targets aren't reached, it leaves the path by the least error or stays, as
/// the settings say (NqLimitedVelocityTool, NqBoundedLeastSquares). It slows ahead of bends of the path and
/// of targets for which the joints could not turn fast enough. Near a singularity the direction that is
/// being lost is damped (NqSingularityFilter); posture and soft end-effectors can't outweigh it.
///
/// The loop reads no clock and no file, starts no thread, and allocates nothing after the first step. One
/// object belongs to one thread.
class NqControlLoop {
public:
    /// The manipulator must outlive the loop.
    explicit NqControlLoop(const NqIndividualManipulator& manipulator,
                           const NqControlLoopSettings& settings = {});

    /// Takes a copy of an end-effector under a name of its own. False for a name that is taken. The target is
    /// at first where the end-effector is.
    /// `isFiltered` false switches its motion filter off: it then asks for the whole way in one step.
    bool addEndEffector(const std::string& name, const NqEndEffector& endEffector, bool isFiltered = true);
    /// All of a collection, named by uniqueNames(), with further numbers where these are taken.
    void addEndEffectors(const NqEndEffectorVector& endEffectors);
    /// Takes an end-effector out; those behind it move up. False, with a message, for a name that isn't
    /// there.
    bool removeEndEffector(const std::string& name);
    /// For each end-effector the label of its link or, where it has none, its type, numbered where several
    /// are the same.
    static std::vector<std::string> uniqueNames(const NqEndEffectorVector& endEffectors);

    void setSettings(const NqControlLoopSettings& settings);
    const NqControlLoopSettings& settings() const { return m_Settings; }

    /// Puts the manipulator at rest somewhere, and ends goTo(). End-effectors without a target are to stay
    /// there.
    void setPositions(const std::vector<double>& positions);
    /// Takes over a measured state for the next step, whose rates may differ from the given ones by what the
    /// limits of acceleration allow. Where drives lag behind their commands pass measured positions with the
    /// last rates(), as the measured ones would hold the arm back. Before the first step end-effectors
    /// without a target are to stay there.
    void setState(const NqPositionState& position, const NqVelocityState& velocity);

    /// Where an end-effector is to go. False, with a message and the target as it was, for a name that isn't
    /// there and for a target that doesn't suit.
    bool setTarget(const std::string& name, const NqControlTarget& target);
    bool setTarget(std::size_t endEffector, const NqControlTarget& target);
    /// The same in terms of placements: in the system frame, or in the frame of its relative link if it has
    /// one.
    bool setTarget(std::size_t endEffector, const NqEndEffectorPlacement& target, bool isInSystem = false);

    /// From the next step on the joints go to a posture, all arriving together, within their limits and not
    /// faster than the end-effectors may move; these leave their paths meanwhile. False, with a message, for
    /// a posture that isn't one, is out of the joints' ranges, or has a joint elsewhere that can't move.
    bool goTo(const std::vector<double>& posture);
    bool isGoing() const { return m_IsGoing; }
    /// Largest distance of a joint from there.
    double leftToGo() const;
    /// Ends that: the end-effectors follow their targets again.
    void follow();

    /// All that is wrong with manipulator, settings, end-effectors and targets: unknown links, with the
    /// nearest label that exists; more rows than unknowns, rows that depend on each other; limits that are
    /// negative, reversed or no numbers; weights and gains that are none; end-effectors without a target, or
    /// of a type that a free base moves otherwise than its columns say.
    std::vector<NqControlLoopCheck::Issue> validate();

    /// One control step. False, with the manipulator where it was and status() BadInput, when validate()
    /// finds something fatal, which is said once, or when something isn't finite.
    bool step();
    const NqControlLoopStatus& status() const { return m_Status; }

    const NqIndividualManipulator& manipulator() const { return m_Manipulator; }
    const NqEndEffector& endEffector(std::size_t e) const { return *m_Constraints[e].endEffector; }
    const std::string& name(std::size_t e) const { return m_Constraints[e].name; }
    /// Number of the end-effector of a name; endEffectors() if there is none.
    std::size_t find(const std::string& name) const;
    std::size_t endEffectors() const { return m_Constraints.size(); }
    std::size_t joints() const { return m_Joints; }
    /// Of the joints, as the settings have them: one that is held has a limit of rate of 0.
    const std::vector<NqJointBounds::Limits>& limits() const { return m_Solver.limits(); }
    const NqTargetKind& kind(std::size_t e) const { return m_Constraints[e].kind; }
    bool isHard(std::size_t e) const { return m_Constraints[e].isHard; }
    /// Rows of the hard end-effectors.
    unsigned rows() const { return m_Hard.rows; }

    /// Of all steps so far, s.
    double time() const {
        const std::uint64_t steps = m_Steps - m_StepsBefore; // none by settings that are refused
        return steps == 0 ? m_TimeBefore : m_TimeBefore + static_cast<double>(steps) * m_Settings.timeStep();
    }
    std::uint64_t steps() const { return m_Steps; }
    NqManipulatorActiveState& state() { return m_State; }
    const NqEndEffectorPlacement& placement(std::size_t e) const { return m_Constraints[e].present; }
    /// The present placement in terms of the targets.
    NqEndEffectorPlacement relativePlacement(std::size_t e);

    const std::vector<double>& positions() const { return m_Position.jointPositions().values(); }
    const NqCoordinateSystemTransformation& baseFrame() const { return m_Position.baseFrame(); }
    /// Rates of the last step, as they were after slowing; those of a free base behind those of the joints.
    const std::vector<double>& rates() const { return m_Rates; }
    /// The target as it was set, in the frame of the relative link if there is one.
    const NqEndEffectorPlacement& target(std::size_t e) const { return m_Constraints[e].target; }
    bool isTargetInSystem(std::size_t e) const { return m_Constraints[e].isTargetInSystem; }
    const NqEndEffectorPlacement& systemTarget(std::size_t e) const { return m_Constraints[e].systemTarget; }
    /// The rows of the hard end-effectors.
    const NqReArray& jacobian() const { return m_Hard.jacobian; }
    /// What these were to give in the last step.
    const std::vector<double>& command() const { return m_Hard.command; }
    /// Of the solver's square system in the last step; NaN before the first.
    double determinant() const { return m_Solver.determinant(); }
    /// Of the hard rows as they are at present, computed on request: m and rad count alike. NaN without rows.
    double leastSingularValue();
    double condition();
    /// Steps of the active sets in the last step: 0 where no limit is met, about one for each joint that is
    /// held, and in the worst case 19 searches of NqBoundActiveSet::maxSteps() each. A search that is cut off
    /// there is treated as a way that is blocked, and status().isCapped says so.
    unsigned solverSteps() const { return m_Solver.steps(); }

    /// Present placements, in the system frame.
    const std::vector<NqCoordinateSystemTransformation>& placements() const { return m_Placements; }

    /// A part of an end-effector's motion: the quantities below have an entry for each.
    struct Part {
        std::size_t endEffector;
        NqTargetKind::Part part;
    };
    const std::vector<Part>& parts() const { return m_Parts; }
    /// What is left to the target, in the part's unit.
    const std::vector<double>& errors() const { return m_Errors; }
    /// The largest of the hard end-effectors, or of all where none is hard; NaN where one is no number.
    double largestError() const;
    /// Speed in the last step, as the motion filter limits it: relative to the relative link in internal
    /// mode.
    const std::vector<double>& speeds() const { return m_Speeds; }
    /// By how much the velocity changed in the last step, for the time of it.
    const std::vector<double>& accelerations() const { return m_Accelerations; }

    /// Share of the commanded velocity that was made along it, 0 to 1: 1 where nothing slows the motion.
    double slowing() const { return m_Solver.slowing(); }

private:
    /// The rows of the hard, or of the soft end-effectors one under the other, with what they command.
    struct Stack {
        unsigned rows = 0;
        NqReArray jacobian;
        std::vector<double> command;
    };
    /// An end-effector with its place in a stack and what it needs from step to step.
    struct Constraint {
        std::string name;
        std::unique_ptr<NqEndEffector> endEffector;
        NqTargetKind kind;
        bool isHard = true;
        unsigned row = 0;
        std::size_t firstPart = 0;
        NqEndEffectorPlacement target;
        bool hasTarget = false; ///< or stays where it was put
        bool isTargetInSystem = false;
        NqEndEffectorPlacement present;
        NqEndEffectorPlacement systemTarget;
        /// That target, when canComeNearer() was asked.
        NqCoordinateSystemTransformation probed;
        NqXmlRealVector desired;  ///< feed-forward velocity
        NqXmlRealVector previous; ///< what became of the velocity commanded in the step before
        NqXmlRealVector filtered;
        std::vector<double> velocity; ///< what the rates of the last step gave
        std::vector<double> change;   ///< by how much that differs from the step before
    };

    Stack& stackOf(const Constraint& constraint) { return constraint.isHard ? m_Hard : m_Soft; }
    void add(const std::string& name, const NqEndEffector& endEffector);
    void arrange();
    void holdWithoutTarget();
    bool isThere(std::size_t endEffector) const;
    void resize();
    void takeOverRates();
    void stackConstraints();
    void commandVelocities();
    void weighSoftConstraints();
    double crowding(unsigned joint) const;
    double findBraking();
    double greatestScaleChange() const;
    void solve();
    bool staysFinite() const;
    void judge();
    void judgeLostDirection();
    void judgeSoftAtRest(bool hasLimits);
    bool excludeEachOther();
    bool isProbed() const;
    bool canComeNearer();
    void goOn();
    bool isReady();
    bool isStateFinite() const;
    void adviseOnRows(NqControlLoopCheck& check);
    void integrate();
    double velocityOf(const Constraint& constraint, unsigned row) const;
    void measureVelocities();
    void measureParts();
    void observe();
    unsigned columns() const;
    NqJointBounds::Limits limitsOf(unsigned joint) const;

    const NqIndividualManipulator& m_Manipulator;
    NqControlLoopSettings m_Settings;
    unsigned m_Joints;
    std::vector<Constraint> m_Constraints;
    std::vector<Part> m_Parts;
    std::vector<double> m_Weights; ///< of the joints, then of the base

    std::uint64_t m_Steps = 0;
    std::uint64_t m_StepsBefore = 0; ///< of other settings,
    double m_TimeBefore = 0.0;       ///< and their time
    double m_RestTime = 0.0;         ///< since when the joints have been at rest
    double m_FastestBefore = 0.0;    ///< rate in the last step
    unsigned m_FasterSteps = 0;      ///< in which it has risen
    NqPositionState m_Position;
    NqVelocityState m_Velocity;
    NqManipulatorActiveState m_State;

    NqRateSolver m_Solver;
    std::vector<double> m_Braking;  ///< of the hard rows
    std::vector<double> m_Vanished; ///< what the command asks of these along directions that no joint moves
    std::vector<double> m_Straight; ///< rates that go to a posture
    Stack m_Hard;
    Stack m_Soft;
    NqReArray m_SoftWeights;
    NqReArray m_Metric;
    std::vector<double> m_Gradient;
    std::vector<double> m_Rates;
    NqControlLoopStatus m_Status;
    bool m_IsGoing = false;
    std::vector<double> m_Going; ///< the posture to go to
    bool m_IsValid = false;      ///< whether validate() was asked since something changed, and found nothing
    bool m_IsRefused = false;    ///< and found something
    NqPositionState m_Here;      ///< where canComeNearer() probes from
    bool m_IsProbed = false;     ///< whether canComeNearer() was asked since the arm moved
    double m_ProbedError = 0.0;  ///< what was left then
    bool m_CanComeNearer = true; ///< what it said
    NqSingularityFilter m_Probe; ///< for what is computed on request
    std::vector<NqCoordinateSystemTransformation> m_Placements;
    std::vector<double> m_Errors;
    std::vector<double> m_Speeds;
    std::vector<double> m_Accelerations;
};
