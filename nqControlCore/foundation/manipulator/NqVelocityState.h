#pragma once

#include <nqControlCore/foundation/manipulator/NqManipulatorTokens.h>
#include <nqControlCore/foundation/manipulator/NqXmlGeneralMotion.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>

/// How a manipulator moves: its joint rates (rad/s or m/s, by joint index) and the velocity of its base:
/// linear velocity of the base frame's origin and angular velocity, in the system frame.
class NqVelocityState : public NqXmlPersistent<NqVelocityState, NqXmlCompoundType> {
public:
    NqVelocityState() = default;
    /// All at rest.
    explicit NqVelocityState(std::size_t numberOfJoints) : m_JointVelocities(numberOfJoints) {}
    explicit NqVelocityState(const NqXmlRealVector& jointVelocities) : m_JointVelocities(jointVelocities) {}

    static const NqToken& classToken();

    virtual const NqXmlRealVector& jointVelocities() const { return m_JointVelocities; }
    virtual NqXmlRealVector& jointVelocities() { return m_JointVelocities; }
    virtual void setJointVelocities(const NqXmlRealVector& velocities) { m_JointVelocities = velocities; }
    /// An index beyond the vector prints a line at print type 4 and changes nothing.
    virtual void setJointVelocity(unsigned index, double velocity);

    virtual const NqGeneralMotion& baseMotion() const { return m_BaseMotion; }
    virtual void setBaseMotion(const NqGeneralMotion& motion) { m_BaseMotion = motion; }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqManipulator::NqJointVelocitiesToken, &NqVelocityState::m_JointVelocities),
            nqComponent(NqManipulator::NqBaseMotionToken, &NqVelocityState::m_BaseMotion));
    }

    NqXmlRealVector m_JointVelocities;
    NqXmlGeneralMotion m_BaseMotion;
};
