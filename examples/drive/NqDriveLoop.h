#pragma once

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
/// limits, and integrates the rates. It reads no clock and no file, and allocates nothing after the first
/// step.
class NqDriveLoop {
public:
    /// What slowed a step.
    enum class Brake { None, Rate, Range };

    /// The manipulator and the end-effectors must outlive the loop. `timeStep` in seconds.
    NqDriveLoop(const NqIndividualManipulator& manipulator, const NqEndEffectorVector& endEffectors,
                double timeStep);

    /// Weights of the joints, one for each, above 0: a joint with more weight moves less. All 1 at first.
    void setMetric(const std::vector<double>& weights);

    /// The posture that free joints drift to, at `gain` (1/s) times their distance from it. An empty posture
    /// is none.
    void setPosture(const std::vector<double>& posture, double gain);

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
    /// Rows of the Jacobian.
    unsigned rows() const { return m_Rows; }

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
    const NqReArray& jacobian() const { return m_Jacobian; }
    /// Of the solver's square system in the last step; NaN before the first.
    double determinant() const { return m_Determinant; }

    /// Translations of the present placements, in the system frame.
    const std::vector<NqVector>& points() const { return m_Points; }
    /// Size of each end-effector's remaining error. Rows of different kinds count by their error weights,
    /// relative to the largest, so that the size of a point's error is its distance from the target in
    /// metres.
    const std::vector<double>& errors() const { return m_Errors; }
    /// Size of the first three rows of each end-effector's velocity: the speed of a point, in m/s.
    const std::vector<double>& speeds() const { return m_Speeds; }

    /// Share of the commanded step that was made, 0 to 1, and who is to blame if it is below 1.
    double slowing() const { return m_Slowing; }
    Brake brake() const { return m_Brake; }
    unsigned brakingJoint() const { return m_BrakingJoint; }

private:
    /// An end-effector with its rows and what it needs from step to step.
    struct Constraint {
        const NqEndEffector* endEffector = nullptr;
        unsigned row = 0;
        NqEndEffectorPlacement target;
        NqEndEffectorPlacement present;
        NqEndEffectorPlacement systemTarget;
        NqXmlRealVector desired;  ///< feed-forward velocity: none
        NqXmlRealVector previous; ///< what became of the velocity commanded in the step before
        NqXmlRealVector filtered;
        NqXmlRealVector velocity;
        NqXmlRealVector error;
    };

    void stackConstraints();
    void commandVelocities();
    bool solve();
    void slowDown();
    void integrate();
    void observe();

    const NqIndividualManipulator& m_Manipulator;
    double m_TimeStep;
    std::vector<Constraint> m_Constraints;
    unsigned m_Rows = 0;
    std::vector<double> m_Posture;
    double m_Gain = 0.0;
    NqReArray m_Metric;

    std::uint64_t m_Steps = 0;
    NqPositionState m_Position;
    NqVelocityState m_Velocity;
    NqManipulatorActiveState m_State;

    NqCoreVelocityControlTool m_Tool;
    NqReArray m_Jacobian;
    std::vector<std::vector<bool>> m_Sparsity;
    NqReArray m_ErrorWeights;
    std::vector<double> m_Command;
    std::vector<double> m_Gradient;
    std::vector<double> m_Rates;
    std::vector<double> m_NullSpaceRates;
    double m_Determinant = std::numeric_limits<double>::quiet_NaN();
    double m_Slowing = 1.0;
    Brake m_Brake = Brake::None;
    unsigned m_BrakingJoint = 0;
    std::vector<NqVector> m_Points;
    std::vector<double> m_Errors;
    std::vector<double> m_Speeds;
};
