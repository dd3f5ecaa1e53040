#pragma once

#include <nqControlCore/foundation/manipulator/NqJointTorqueGradient.h>
#include <nqControlCore/foundation/math/NqVector.h>

#include <vector>

class NqIndividualManipulator;
class NqManipulatorActiveState;

/// The torques with which gravity drives the joints of a manipulator.
///
/// With h_j the linear momentum for a unit rate of joint j (NqCompositeMoments) and g the gravity, the torque
/// of joint j (N m; the force in N where it slides) is
///
///     t_j = h_j . g = -dV/dq_j,     V = -M c . g
///
/// with V the potential energy, M the mass and c the centre of mass of the manipulator. A motor that holds
/// the joint has to bring -t_j.
///
/// All of it comes from one pass over the tree for each pose, which the state keeps whatever the gravity is.
/// The tool itself holds the gravity and the address of the manipulator, which must be there when a torque is
/// asked for.
class NqGravitationalTorqueTool {
public:
    NqGravitationalTorqueTool() = default;
    NqGravitationalTorqueTool(const NqGravitationalTorqueTool&) = default;
    NqGravitationalTorqueTool& operator=(const NqGravitationalTorqueTool&) = default;
    virtual ~NqGravitationalTorqueTool() = default;

    /// The same gravity and the same manipulator object.
    bool operator==(const NqGravitationalTorqueTool&) const = default;

    /// The acceleration of gravity in the system frame, m/s^2; (0, 0, -9.8) at first.
    virtual void setGravity(const NqVector& gravity) { m_Gravity = gravity; }

    /// Null at first.
    virtual const NqIndividualManipulator* manipulator() const { return m_Manipulator; }
    virtual void setManipulator(const NqIndividualManipulator& manipulator) { m_Manipulator = &manipulator; }

    /// The torque of a joint. 0, with a line at print type 4, for a joint that the manipulator doesn't have;
    /// without a manipulator there are none. A model has one set of mass properties, which every `set` gives.
    virtual double jointTorque(unsigned jointIndex, NqManipulatorActiveState& state, unsigned set = 0) const;

    /// The derivatives of that torque. They are zero, with a line at print type 4, for a joint that isn't
    /// there. What is returned is to be used while the manipulator is there and the state stays.
    virtual NqJointTorqueGradient jointTorqueGradient(unsigned jointIndex, NqManipulatorActiveState& state,
                                                      unsigned set = 0) const;

    virtual const NqVector& gravity() const { return m_Gravity; }

    /// The torques of all joints, by joint index; none without a manipulator.
    virtual void jointTorques(NqManipulatorActiveState& state, std::vector<double>& torques) const;

private:
    /// Whether there is such a joint; with a line in the name of `operation` if not.
    bool hasJoint(const char* operation, unsigned jointIndex) const;

    NqVector m_Gravity{0.0, 0.0, -9.8};
    const NqIndividualManipulator* m_Manipulator = nullptr;
};
