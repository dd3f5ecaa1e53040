#include <nqControlCore/foundation/manipulator/NqManipulatorLink.h>

unsigned NqManipulatorLink::jointIndex() const {
    return m_Entry == 0 ? 0u : static_cast<unsigned>(m_Entry - 1);
}

const NqCoordinateSystemTransformation&
NqManipulatorLink::linkFrameInSystem(NqManipulatorActivePositionState& state) const {
    return state.linkFrame(*m_Tree, m_Entry);
}

const NqCoordinateSystemTransformation&
NqManipulatorLink::primaryFrameInSystem(NqManipulatorActivePositionState& state) const {
    return m_HasOffset ? state.primaryFrame(*m_Tree, m_Entry, m_Body, m_PrimaryFrameOffset)
                       : state.linkFrame(*m_Tree, m_Entry);
}

const NqGeneralMotion& NqManipulatorLink::localVelocity(NqManipulatorActiveState& state) const {
    return state.localVelocity(*m_Tree, m_Entry);
}

const NqGeneralMotion& NqManipulatorLink::primaryFrameVelocity(NqManipulatorActiveState& state) const {
    return state.primaryFrameVelocity(*m_Tree, m_Entry, m_Body, m_PrimaryFrameOffset);
}

const NqGeneralMotion& NqManipulatorLink::localAcceleration(NqManipulatorActiveState& state) const {
    return state.localAcceleration(*m_Tree, m_Entry);
}

const NqRigidBodyMassProperties& NqManipulatorLink::massProperties(unsigned) const {
    return m_MassProperties;
}

const NqRigidBodyMassProperties&
NqManipulatorLink::compositeMassProperties(NqManipulatorActiveState& state) const {
    return state.activePositionState().compositeMassProperties(*m_Tree, m_Entry);
}

double NqManipulatorLink::compositeMass() const {
    return m_Tree->compositeMass(m_Entry);
}

const NqVector& NqManipulatorLink::compositeFirstMoment(NqManipulatorActivePositionState& state) const {
    return state.firstMoments(*m_Tree).firstMoments[m_Entry];
}

const NqSecondMoment&
NqManipulatorLink::compositeSecondMoment(NqManipulatorActivePositionState& state) const {
    return state.compositeMoments(*m_Tree).secondMoments[m_Entry];
}
