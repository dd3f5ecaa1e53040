#include <nqControlCore/endeffector/special/NqSagJoints.h>

#include <nqControlCore/endeffector/NqJointList.h>
#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>

#include <algorithm>

void NqSagJoints::lookUp(const NqIndividualManipulator& manipulator, const NqLabelVector& labels) {
    if (!m_Flags.empty()) {
        return;
    }
    m_Flags.assign(manipulator.numberOfJoints(), false);
    for (const auto& label : labels) {
        const NqManipulatorLink* link = manipulator.linkByLabel(label);
        if (NqJointList::hasJoint(link)) {
            m_Flags[link->jointIndex()] = true;
        }
    }
    for (unsigned joint = 0; joint < m_Flags.size() && m_Count < theMost; ++joint) {
        if (m_Flags[joint]) {
            m_First[m_Count++] = joint;
        }
    }
}

void NqSagJoints::clear() {
    m_Flags.clear();
    m_Count = 0;
}

std::span<const unsigned> NqSagJoints::first(const NqIndividualManipulator& manipulator) const {
    const auto end =
        std::lower_bound(m_First.begin(), m_First.begin() + m_Count, manipulator.numberOfJoints());
    return {m_First.begin(), end};
}

std::span<const NqSagJoints::Spring> NqSagJoints::springs(const NqIndividualManipulator& manipulator,
                                                          NqManipulatorActiveState& state,
                                                          const NqXmlRealVector& stiffness) {
    const auto joints = first(manipulator);
    const std::size_t count = std::min<std::size_t>(joints.size(), stiffness.size());
    m_UnsaggedPositions = state.positionState();
    NqXmlRealVector& positions = m_UnsaggedPositions.jointPositions();
    positions.resize(manipulator.numberOfJoints());
    for (unsigned i = 0; i < count; ++i) {
        positions[joints[i]] = 0.0;
        m_UnsaggedState.setPositionState(m_UnsaggedPositions);
        const NqManipulatorLink& link = *manipulator.linkByIndex(joints[i]);
        m_Springs[i] = {joints[i], stiffness[i],
                        link.linkFrameInSystem(m_UnsaggedState).orientation().zAxis()};
    }
    return {m_Springs.data(), count};
}
