#pragma once

#include <nqControlCore/foundation/manipulator/NqAccelerationState.h>
#include <nqControlCore/foundation/manipulator/NqPositionState.h>
#include <nqControlCore/foundation/manipulator/NqVelocityState.h>

#include <vector>

/// The state of a system of manipulators: positions, velocities and accelerations, each with one entry per
/// manipulator.
class NqManipulatorSystemState {
public:
    NqManipulatorSystemState() = default;
    NqManipulatorSystemState(const NqManipulatorSystemState&) = default;
    NqManipulatorSystemState& operator=(const NqManipulatorSystemState&) = default;
    virtual ~NqManipulatorSystemState() = default;

    virtual const std::vector<NqPositionState>& positionStates() const { return m_PositionStates; }
    virtual void setPositionStates(const std::vector<NqPositionState>& states) { m_PositionStates = states; }
    virtual const std::vector<NqVelocityState>& velocityStates() const { return m_VelocityStates; }
    virtual void setVelocityStates(const std::vector<NqVelocityState>& states) { m_VelocityStates = states; }
    virtual const std::vector<NqAccelerationState>& accelerationStates() const {
        return m_AccelerationStates;
    }
    virtual void setAccelerationStates(const std::vector<NqAccelerationState>& states) {
        m_AccelerationStates = states;
    }

    friend bool operator==(const NqManipulatorSystemState& a, const NqManipulatorSystemState& b) {
        return a.m_PositionStates == b.m_PositionStates && a.m_VelocityStates == b.m_VelocityStates &&
               a.m_AccelerationStates == b.m_AccelerationStates;
    }

private:
    std::vector<NqPositionState> m_PositionStates;
    std::vector<NqVelocityState> m_VelocityStates;
    std::vector<NqAccelerationState> m_AccelerationStates;
};
