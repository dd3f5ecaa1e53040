#pragma once

#include <nqControlCore/core/NqManipulatorEndEffectorVelocity.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorSystemState.h>
#include <nqControlCore/foundation/manipulator/NqVelocityState.h>
#include <nqControlCore/xml/NqXmlVectorType.h>

/// What the previous control step left behind.
class NqSupplementalControlState {
public:
    using EndEffectorVelocities = NqXmlVectorType<NqManipulatorEndEffectorVelocity>;
    using VelocityStates = NqXmlVectorType<NqVelocityState>;

    NqSupplementalControlState() = default;
    NqSupplementalControlState(const NqSupplementalControlState&) = default;
    NqSupplementalControlState& operator=(const NqSupplementalControlState&) = default;
    virtual ~NqSupplementalControlState() = default;

    bool operator==(const NqSupplementalControlState& other) const {
        return m_PreviousEndEffectorVelocities == other.m_PreviousEndEffectorVelocities &&
               m_PreviousActualVelocityStates == other.m_PreviousActualVelocityStates &&
               m_PreviousState == other.m_PreviousState;
    }

    /// Velocities of the end-effectors, for each manipulator.
    const EndEffectorVelocities& previousEndEffectorVelocities() const {
        return m_PreviousEndEffectorVelocities;
    }
    EndEffectorVelocities& previousEndEffectorVelocities() { return m_PreviousEndEffectorVelocities; }
    void setPreviousEndEffectorVelocities(const EndEffectorVelocities& velocities) {
        m_PreviousEndEffectorVelocities = velocities;
    }

    /// Joint rates that were really made, for each manipulator.
    const VelocityStates& previousActualVelocityStates() const { return m_PreviousActualVelocityStates; }
    VelocityStates& previousActualVelocityStates() { return m_PreviousActualVelocityStates; }
    void setPreviousActualVelocityStates(const VelocityStates& states) {
        m_PreviousActualVelocityStates = states;
    }

    const NqManipulatorSystemState& previousState() const { return m_PreviousState; }
    NqManipulatorSystemState& previousState() { return m_PreviousState; }
    void setPreviousState(const NqManipulatorSystemState& state) { m_PreviousState = state; }

private:
    EndEffectorVelocities m_PreviousEndEffectorVelocities;
    VelocityStates m_PreviousActualVelocityStates;
    NqManipulatorSystemState m_PreviousState;
};
