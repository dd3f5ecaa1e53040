#pragma once

#include "NqDriveTargetKind.h"

#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>
#include <nqControlCore/foundation/math/NqEndEffectorPlacement.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <cstdint>
#include <limits>
#include <vector>

/// The control loop of a fixed-base manipulator: the model for loops of one's own.
///
/// Each step() asks the end-effectors for their Jacobian rows and for the velocities that their motion
/// filters command towards their targets, solves for the joint rates that give just these velocities and, as
/// far as they leave the joints free, descend towards a posture, slows the arm where a joint would leave its
/// limits, and integrates the rates. Soft end-effectors take part through metric and gradient: with their
/// rows S, their weights E and the velocities s that they command, x are of all joint rates that meet the
/// hard rows those of the least
///     x^T A x + 2 g^T x + (S x - s)^T E (S x - s)
/// with the joints' weights A and the gradient g towards the posture. The loop reads no clock and no file,
/// and allocates nothing after the first step.
class NqDriveLoop {
public:
    /// What slowed a step.
    enum class Brake { None, Rate, Range };

    /// The manipulator and the end-effectors, all of a kind that NqDriveTargetKind knows, must outlive the
    /// loop. `timeStep` in seconds.
    NqDriveLoop(const NqIndividualManipulator& manipulator, const NqEndEffectorVector& endEffectors,
                double timeStep);

    /// Weights of the joints, one for each, above 0: a joint with more weight moves less. All 1 at first.
    void setMetric(const std::vector<double>& weights);

    /// The posture that free joints drift to, at `gain` (1/s) times their distance from it. An empty posture
    /// is none.
    void setPosture(const std::vector<double>& posture, double gain);

    /// Factor on the error weights of soft end-effectors, which makes up E. 1 at first.
    void setSoftGain(double gain) { m_SoftGain = gain; }

    /// Puts the manipulator at rest somewhere.
    void setPositions(const std::vector<double>& positions);

    /// Where an end-effector is to go: in the system frame, or in the frame of its relative link if it has
    /// one.
    void setTarget(std::size_t endEffector, const NqEndEffectorPlacement& target);

    /// One control step. False, with the manipulator where it was, when there are no finite joint rates.
    bool step();

    const NqIndividualManipulator& manipulator() const { return m_Manipulator; }
    const NqEndEffector& endEffector(std::size_t e) const { return *m_Constraints[e].endEffector; }
    std::size_t endEffectors() const { return m_Constraints.size(); }
    std::size_t joints() const { return m_Rates.size(); }
    const NqDriveTargetKind& kind(std::size_t e) const { return m_Constraints[e].kind; }
    bool isHard(std::size_t e) const { return m_Constraints[e].isHard; }
    /// Rows of the hard end-effectors, which is how many the solver meets exactly.
    unsigned rows() const { return m_Hard.rows; }

    double time() const { return static_cast<double>(m_Steps) * m_TimeStep; }
    std::uint64_t steps() const { return m_Steps; }
    NqManipulatorActiveState& state() { return m_State; }
    const NqEndEffectorPlacement& placement(std::size_t e) const { return m_Constraints[e].present; }
    /// The present placement in terms of the targets.
    NqEndEffectorPlacement relativePlacement(std::size_t e);

    const std::vector<double>& positions() const { return m_Position.jointPositions().values(); }
    /// Rates of the last step, as they were after slowing.
    const std::vector<double>& rates() const { return m_Rates; }
    const NqEndEffectorPlacement& systemTarget(std::size_t e) const { return m_Constraints[e].systemTarget; }
    /// The rows of the hard end-effectors.
    const NqReArray& jacobian() const { return m_Hard.jacobian; }
    /// Of the solver's square system in the last step; NaN before the first.
    double determinant() const { return m_Determinant; }

    /// Present placements, in the system frame.
    const std::vector<NqCoordinateSystemTransformation>& placements() const { return m_Placements; }

    /// A part of an end-effector's motion: the quantities below have an entry for each.
    struct Part {
        std::size_t endEffector;
        NqDriveTargetKind::Part part;
    };
    const std::vector<Part>& parts() const { return m_Parts; }
    /// What is left to the target, in the part's unit.
    const std::vector<double>& errors() const { return m_Errors; }
    /// Speed in the last step, as the motion filter limits it: relative to the relative link in internal
    /// mode.
    const std::vector<double>& speeds() const { return m_Speeds; }
    /// By how much the velocity changed in the last step, for the time of it.
    const std::vector<double>& accelerations() const { return m_Accelerations; }

    /// Share of the commanded step that was made, 0 to 1, and who is to blame if it is below 1.
    double slowing() const { return m_Slowing; }
    Brake brake() const { return m_Brake; }
    unsigned brakingJoint() const { return m_BrakingJoint; }

private:
    /// The rows of the hard, or of the soft end-effectors one under the other, with what they command.
    struct Stack {
        unsigned rows = 0;
        NqReArray jacobian;
        std::vector<double> command;
    };
    /// An end-effector with its place in a stack and what it needs from step to step.
    struct Constraint {
        const NqEndEffector* endEffector = nullptr;
        NqDriveTargetKind kind;
        bool isHard = true;
        unsigned row = 0;
        NqEndEffectorPlacement target;
        NqEndEffectorPlacement present;
        NqEndEffectorPlacement systemTarget;
        NqXmlRealVector desired;  ///< feed-forward velocity: none
        NqXmlRealVector previous; ///< what became of the velocity commanded in the step before
        NqXmlRealVector filtered;
        std::vector<double> velocity; ///< what the rates of the last step gave
        std::vector<double> change;   ///< by how much that differs from the step before
    };

    Stack& stackOf(const Constraint& constraint) { return constraint.isHard ? m_Hard : m_Soft; }
    void stackConstraints();
    void commandVelocities();
    void weighSoftConstraints();
    double crowding(unsigned joint) const;
    bool solve();
    void slowDown();
    void integrate();
    void measureVelocities();
    void observe();

    const NqIndividualManipulator& m_Manipulator;
    double m_TimeStep;
    std::vector<Constraint> m_Constraints;
    std::vector<Part> m_Parts;
    std::vector<double> m_Posture;
    double m_Gain = 0.0;
    double m_SoftGain = 1.0;
    std::vector<double> m_JointWeights;

    std::uint64_t m_Steps = 0;
    NqPositionState m_Position;
    NqVelocityState m_Velocity;
    NqManipulatorActiveState m_State;

    NqCoreVelocityControlTool m_Tool;
    Stack m_Hard;
    Stack m_Soft;
    NqReArray m_SoftWeights;
    NqReArray m_Metric;
    std::vector<double> m_Gradient;
    std::vector<double> m_Rates;
    std::vector<double> m_NullSpaceRates;
    double m_Determinant = std::numeric_limits<double>::quiet_NaN();
    double m_Slowing = 1.0;
    Brake m_Brake = Brake::None;
    unsigned m_BrakingJoint = 0;
    std::vector<NqCoordinateSystemTransformation> m_Placements;
    std::vector<double> m_Errors;
    std::vector<double> m_Speeds;
    std::vector<double> m_Accelerations;
};
