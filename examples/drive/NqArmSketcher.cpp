#include "NqArmSketcher.h"

namespace {

/// Number of the joint that moves a link, or kBase.
int jointOf(const NqManipulatorLink* link) {
    return link && link->parentLink() ? static_cast<int>(link->jointIndex()) : NqArmSketch::kBase;
}

} // namespace

NqArmSketch NqArmSketcher::frame() {
    NqArmSketch sketch;
    sketch.base = m_Manipulator.baseFrameInSystem(m_State.activePositionState()).translation();
    for (unsigned j = 0; j < m_Manipulator.numberOfJoints(); ++j) {
        const NqManipulatorLink* link = m_Manipulator.linkByIndex(j);
        sketch.inboard.push_back(jointOf(link->parentLink()));
        sketch.isLinear.push_back(link->joint().type() == NqJointDescription::Prismatic);
    }
    for (unsigned e = 0; e < m_EndEffectors.size(); ++e) {
        sketch.carrier.push_back(jointOf(m_Manipulator.linkByLabel(m_EndEffectors[e]->linkIdentifier())));
    }
    return sketch;
}

NqArmSketch::Posture NqArmSketcher::posture(const std::string& label, const std::vector<double>& positions) {
    m_State.setPositionState(NqPositionState(positions));
    NqArmSketch::Posture posture{label, {}, {}};
    for (unsigned j = 0; j < m_Manipulator.numberOfJoints(); ++j) {
        posture.joints.push_back(
            m_Manipulator.linkByIndex(j)->linkFrameInSystem(m_State.activePositionState()).translation());
    }
    for (unsigned e = 0; e < m_EndEffectors.size(); ++e) {
        NqEndEffectorPlacement placement;
        m_EndEffectors[e]->calculatePlacement(m_Manipulator, m_State, placement);
        posture.endEffectors.push_back(placement.coordSysXForm().translation());
    }
    return posture;
}
