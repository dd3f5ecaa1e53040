#include <nqControlCore/endeffector/special/NqRCMEndEffector.h>

#include <cmath>

void NqRCMEndEffector::insertRows(const NqRowRequest& request, NqManipulatorActiveState& state,
                                  NqReArray& jacobian) const {
    calculateFrameInSystem(request.manipulator, state, m_ActualFrame);
    Layer::insertRows(request, state, jacobian);
}

void NqRCMEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                         NqManipulatorActiveState& state, NqXmlRealVector& velocity,
                                         unsigned start) const {
    calculateFrameInSystem(manipulator, state, m_ActualFrame);
    Layer::calculateVelocity(manipulator, state, velocity, start);
}

void NqRCMEndEffector::insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const {
    filtered.resize(doc());
    if (!calculateFrameInSystem(request.manipulator, request.state, m_ActualFrame)) {
        return;
    }
    const NqVector way = request.desiredPlacement.coordSysXForm().translation() - m_ActualFrame.translation();
    putRows({way / NqMath::nonZeroPos(request.timeStep), NqVector()}, m_ActualFrame.orientation(), filtered);
}

double NqRCMEndEffector::difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const {
    const NqVector way = m_ActualFrame.orientation().inverse() *
                         (b.coordSysXForm().translation() - a.coordSysXForm().translation());
    return std::sqrt(way.y() * way.y() + way.z() * way.z());
}

double NqRCMEndEffector::minimumTime(const NqEndEffectorPlacement& from,
                                     const NqEndEffectorPlacement& to) const {
    return difference(from, to) / NqMath::nonZeroPos(motionFilter().threshold());
}
