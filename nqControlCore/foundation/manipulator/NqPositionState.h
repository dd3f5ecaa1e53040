#pragma once

#include <nqControlCore/foundation/manipulator/NqManipulatorTokens.h>
#include <nqControlCore/foundation/xml/NqXmlCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>

/// Where a manipulator is: its joint positions (rad or m, by joint index) and the pose of its base in the
/// system frame.
class NqPositionState : public NqXmlPersistent<NqPositionState, NqXmlCompoundType> {
public:
    NqPositionState() = default;
    /// All joints at zero, the base at the origin.
    explicit NqPositionState(std::size_t numberOfJoints) : m_JointPositions(numberOfJoints) {}
    explicit NqPositionState(const NqXmlRealVector& jointPositions) : m_JointPositions(jointPositions) {}

    static const NqToken& classToken();

    virtual const NqXmlRealVector& jointPositions() const { return m_JointPositions; }
    virtual NqXmlRealVector& jointPositions() { return m_JointPositions; }
    virtual void setJointPositions(const NqXmlRealVector& positions) { m_JointPositions = positions; }
    /// An index beyond the vector prints a line at print type 4 and changes nothing.
    virtual void setJointPosition(unsigned index, double position);

    virtual const NqCoordinateSystemTransformation& baseFrame() const { return m_BaseFrame; }
    virtual void setBaseFrame(const NqCoordinateSystemTransformation& frame) { m_BaseFrame = frame; }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqManipulator::NqJointPositionsToken, &NqPositionState::m_JointPositions),
            nqComponent(NqManipulator::NqBaseFrameToken, &NqPositionState::m_BaseFrame));
    }

    NqXmlRealVector m_JointPositions;
    NqXmlCoordinateSystemTransformation m_BaseFrame;
};
