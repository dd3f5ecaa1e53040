#pragma once

#include <nqControlCore/foundation/math/NqVector.h>

#include <cstddef>
#include <vector>

class NqIndividualManipulator;
class NqManipulatorActiveState;
class NqReArray;

/// The derivatives of the gravitational torque of one joint, as NqGravitationalTorqueTool gives them.
///
/// With h the linear momenta for unit rates, a the joints' axes in the system frame and g the gravity, the
/// derivative of the torque of joint j by the position of joint k is
///
///     dt_j/dq_k = a_k . (h_j x g)   where k is j or carries it, and turns
///                 a_j . (h_k x g)   where j carries k, and turns
///                 0                 otherwise
///
/// It is symmetric: minus the second derivative of the potential energy.
class NqJointTorqueGradient {
public:
    /// All zeros, for no joint at all.
    NqJointTorqueGradient() = default;
    NqJointTorqueGradient(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                          unsigned jointIndex, const NqVector& gravity)
        : m_Manipulator(&manipulator), m_State(&state), m_JointIndex(jointIndex), m_Gravity(gravity) {}

    /// Makes `row` the derivatives by the joints: 1 by numberOfJoints().
    void fill(NqReArray& row) const;

    /// Adds `factor` times the derivatives to the first numberOfJoints() entries, as far as there are such.
    void addMultipleTo(std::vector<double>& row, double factor) const;

    /// The derivatives by a turn of the manipulator about axes x, y and z of the system frame through any
    /// point: h_j x g. Moving the base without a turn changes no torque.
    NqVector ofBaseRotation() const;

private:
    const NqIndividualManipulator* m_Manipulator = nullptr;
    NqManipulatorActiveState* m_State = nullptr;
    unsigned m_JointIndex = 0;
    NqVector m_Gravity;
};
