#pragma once

#include <nqControlCore/foundation/manipulator/NqManipulatorTokens.h>
#include <nqControlCore/foundation/manipulator/NqXmlGeneralMotion.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>

/// How a manipulator's motion changes: its joint accelerations (rad/s^2 or m/s^2, by joint index) and the
/// acceleration of its base: linear acceleration of the base frame's origin, without gravity, and angular
/// acceleration, in the system frame.
class NqAccelerationState : public NqXmlPersistent<NqAccelerationState, NqXmlCompoundType> {
public:
    NqAccelerationState() = default;
    /// All at rest.
    explicit NqAccelerationState(std::size_t numberOfJoints) : m_JointAccelerations(numberOfJoints) {}
    explicit NqAccelerationState(const NqXmlRealVector& jointAccelerations)
        : m_JointAccelerations(jointAccelerations) {}

    static const NqToken& classToken();

    virtual const NqXmlRealVector& jointAccelerations() const { return m_JointAccelerations; }
    virtual NqXmlRealVector& jointAccelerations() { return m_JointAccelerations; }
    virtual void setJointAccelerations(const NqXmlRealVector& accelerations) {
        m_JointAccelerations = accelerations;
    }
    /// An index beyond the vector prints a line at print type 4 and changes nothing.
    virtual void setJointAcceleration(unsigned index, double acceleration);

    virtual const NqGeneralMotion& baseMotion() const { return m_BaseMotion; }
    virtual void setBaseMotion(const NqGeneralMotion& motion) { m_BaseMotion = motion; }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqManipulator::NqJointAccelerationsToken, &NqAccelerationState::m_JointAccelerations),
            nqComponent(NqManipulator::NqBaseMotionToken, &NqAccelerationState::m_BaseMotion));
    }

    NqXmlRealVector m_JointAccelerations;
    NqXmlGeneralMotion m_BaseMotion;
};
