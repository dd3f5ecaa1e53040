#include "NqArmSketcher.h"

namespace {

/// Number of the joint that moves a link, or kBase.
int jointOf(const NqManipulatorLink* link) {
    return link && link->parentLink() ? static_cast<int>(link->jointIndex()) : NqArmSketch::kBase;
}

} // namespace

NqArmSketch NqArmSketcher::frame() {
    NqArmSketch sketch;
    for (unsigned j = 0; j < m_Manipulator.numberOfJoints(); ++j) {
        const NqManipulatorLink* link = m_Manipulator.linkByIndex(j);
        sketch.inboard.push_back(jointOf(link->parentLink()));
        sketch.isLinear.push_back(link->joint().type() == NqJointDescription::Prismatic);
    }
    for (const NqTargetKind& kind : m_Kinds) {
        if (kind.ties().size() == 2) {
            sketch.spans.push_back(sketch.carrier.size());
        }
        for (const NqTargetKind::Tie& tie : kind.ties()) {
            sketch.carrier.push_back(jointOf(m_Manipulator.linkByLabel(tie.link)));
        }
    }
    return sketch;
}

NqArmSketch::Posture NqArmSketcher::posture(const std::string& label, const std::vector<double>& positions,
                                            const NqCoordinateSystemTransformation& base) {
    NqPositionState position(positions);
    position.setBaseFrame(base);
    m_State.setPositionState(position);
    NqArmSketch::Posture posture{
        label, m_Manipulator.baseFrameInSystem(m_State.activePositionState()).translation(), {}, {}, {}};
    for (unsigned j = 0; j < m_Manipulator.numberOfJoints(); ++j) {
        posture.joints.push_back(
            m_Manipulator.linkByIndex(j)->linkFrameInSystem(m_State.activePositionState()).translation());
    }
    for (const NqTargetKind& kind : m_Kinds) {
        for (const NqTargetKind::Tie& tie : kind.ties()) {
            const NqManipulatorLink* link = m_Manipulator.linkByLabel(tie.link);
            NqCoordinateSystemTransformation frame = tie.offset;
            if (link) {
                frame = link->primaryFrameInSystem(m_State.activePositionState()) * frame;
            }
            posture.endEffectors.push_back(frame.translation());
            if (kind.hasOrientation()) {
                posture.frames.push_back(frame);
            }
        }
    }
    return posture;
}
