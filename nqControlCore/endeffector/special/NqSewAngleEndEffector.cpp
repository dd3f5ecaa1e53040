#include <nqControlCore/endeffector/special/NqSewAngleEndEffector.h>

#include <nqControlCore/endeffector/NqLinkMotion.h>
#include <nqControlCore/endeffector/NqVelocityEntries.h>

#include <algorithm>
#include <cmath>

namespace {

double angleOf(const NqEndEffectorPlacement& placement) {
    return placement.coordSysXForm().translation().z();
}

/// The first link of that label that has a joint, from `link` on towards the base.
const NqManipulatorLink* jointedLink(const NqManipulatorLink* link, const std::string& label) {
    while (link && link->parentLink() && link->linkLabel() != label) {
        link = link->parentLink();
    }
    return link && link->parentLink() ? link : nullptr;
}

} // namespace

bool NqSewAngleEndEffector::read(NqXmlReader& reader) {
    clearLinkPointers();
    return NqUnfilteredEndEffector::read(reader);
}

void NqSewAngleEndEffector::insertRows(const NqRowRequest& request, NqManipulatorActiveState& state,
                                       NqReArray& jacobian) const {
    setLinkPointers(request.manipulator);
    if (!m_Links->wrist) {
        return;
    }
    NqManipulatorActivePositionState& p = state.activePositionState();
    calculateIntermediates(p);
    const NqOrientation& toShoulder = m_Arm->shoulderFrameInverse.orientation();
    bool movesElbow = false;
    forEachLinkBehindShoulder([&](const NqManipulatorLink& link) {
        movesElbow = movesElbow || &link == m_Links->elbow;
        NqVector dw, de;
        unitVectorDerivative(m_Arm->wrist, toShoulder * pointMotion(link, *m_Links->wrist, wristPoint(), p),
                             dw);
        if (movesElbow) {
            unitVectorDerivative(m_Arm->elbow,
                                 toShoulder * pointMotion(link, *m_Links->elbow, elbowPoint(), p), de);
        }
        jacobian[request.row][link.jointIndex()] = sewDerivative(dw, de);
    });
}

void NqSewAngleEndEffector::insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const {
    setLinkPointers(request.manipulator);
    forEachLinkBehindShoulder(
        [&](const NqManipulatorLink& link) { sparsity[request.row][link.jointIndex()] = true; });
}

void NqSewAngleEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                               NqManipulatorActiveState& state,
                                               NqEndEffectorPlacement& placement) const {
    setLinkPointers(manipulator);
    if (m_Links->wrist) {
        calculateIntermediates(state.activePositionState());
        placement.coordSysXForm().setTranslationZ(std::atan2(-m_Arm->onX(), m_Arm->onReference()));
    }
}

void NqSewAngleEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                              NqManipulatorActiveState& state, NqXmlRealVector& velocity,
                                              unsigned start) const {
    setLinkPointers(manipulator);
    if (!m_Links->wrist) {
        NqVelocityEntries::put(std::array{0.0}, start, NqVelocityEntries::Tail::Kept, velocity);
        return;
    }
    calculateIntermediates(state.activePositionState());

    // With the joints at rest that come before the shoulder's own.
    *m_RatesFromShoulder = state.velocityState();
    NqXmlRealVector& rates = m_RatesFromShoulder->jointVelocities();
    std::fill_n(rates.begin(), std::min<std::size_t>(m_Links->shoulder->jointIndex(), rates.size()), 0.0);
    *m_StateFromShoulder = state;
    m_StateFromShoulder->setVelocityState(*m_RatesFromShoulder);

    const NqOrientation& toShoulder = m_Arm->shoulderFrameInverse.orientation();
    NqVector dw, de;
    unitVectorDerivative(m_Arm->wrist,
                         toShoulder * pointVelocity(*m_Links->wrist, wristPoint(), *m_StateFromShoulder), dw);
    unitVectorDerivative(m_Arm->elbow,
                         toShoulder * pointVelocity(*m_Links->elbow, elbowPoint(), *m_StateFromShoulder), de);
    NqVelocityEntries::put(std::array{sewDerivative(dw, de)}, start, NqVelocityEntries::Tail::Cut, velocity);
}

void NqSewAngleEndEffector::insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const {
    const double actual = angleOf(presentPlacement(request.manipulator, request.state));
    const double limit = m_Threshold;
    const double v = -(actual - angleOf(request.desiredPlacement)) * m_Gain;
    filtered.assign(1, std::max(std::min(v, limit), -limit));
}

double NqSewAngleEndEffector::minimumTime(const NqEndEffectorPlacement& from,
                                          const NqEndEffectorPlacement& to) const {
    return difference(from, to) / NqMath::nonZeroPos(m_SpeedFactor * m_Threshold);
}

double NqSewAngleEndEffector::difference(const NqEndEffectorPlacement& a,
                                         const NqEndEffectorPlacement& b) const {
    return std::fabs(angleOf(a) - angleOf(b));
}

void NqSewAngleEndEffector::setShoulderLink(const std::string& label) {
    m_ShoulderLink = label;
    clearLinkPointers();
}

void NqSewAngleEndEffector::setElbowLink(const std::string& label) {
    m_ElbowLink = label;
    clearLinkPointers();
}

void NqSewAngleEndEffector::setWristLink(const std::string& label) {
    m_WristLink = label;
    clearLinkPointers();
}

void NqSewAngleEndEffector::setLinkPointers(const NqIndividualManipulator& manipulator) const {
    const NqManipulatorLink* wrist = manipulator.linkByLabel(m_WristLink);
    if (m_Links->wrist) {
        *m_Links = {manipulator.linkByLabel(m_ShoulderLink), manipulator.linkByLabel(m_ElbowLink), wrist};
        if (!m_Links->shoulder || !m_Links->elbow || !m_Links->wrist) {
            clearLinkPointers();
        }
        return;
    }
    const NqManipulatorLink* elbow = wrist ? jointedLink(wrist->parentLink(), m_ElbowLink) : nullptr;
    if (const NqManipulatorLink* shoulder = jointedLink(elbow, m_ShoulderLink)) {
        *m_Links = {shoulder, elbow, wrist};
        return;
    }
    clearLinkPointers();
    Nq::Print::instance().write(Nq::PrintFailure,
                                "NqSewAngleEndEffector::setLinkPointers(): bad link label: %s, %s, or %s.\n",
                                m_ShoulderLink.value(), m_ElbowLink.value(), m_WristLink.value());
}

void NqSewAngleEndEffector::clearLinkPointers() const {
    *m_Links = {};
}

NqVector NqSewAngleEndEffector::pointVelocity(const NqManipulatorLink& link, const NqVector& point,
                                              NqManipulatorActiveState& activeState) const {
    return NqLinkMotion::velocity(link, point, activeState).linear();
}

void NqSewAngleEndEffector::unitVectorDerivative(const NqVector& vector, const NqVector& vectorRate,
                                                 NqVector& unitRate) const {
    const double square = vector.dot(vector);
    unitRate = square == 0.0 ? vectorRate
                             : (vectorRate - (vector.dot(vectorRate) / square) * vector) / std::sqrt(square);
}

double NqSewAngleEndEffector::sewDerivative(const NqVector& wristUnitRate,
                                            const NqVector& elbowUnitRate) const {
    const Arm& arm = *m_Arm;
    const double a = arm.onReference();
    const double b = arm.onX();
    const NqVector dn = wristUnitRate.cross(arm.elbowUnit) + arm.wristUnit.cross(elbowUnitRate);
    const NqVector dReference = wristUnitRate.cross(NqVector::xVector(1.0));
    const double da = dReference.dot(arm.normal) + arm.referenceNormal.dot(dn);
    const double db = dn.x();
    return (da * b - db * a) / (b * b + a * a);
}

void NqSewAngleEndEffector::calculateIntermediates(
    NqManipulatorActivePositionState& activePositionState) const {
    Arm& arm = *m_Arm;
    arm.shoulderFrameInverse = m_Links->shoulder->primaryFrameInSystem(activePositionState).inverse();
    arm.wrist =
        arm.shoulderFrameInverse * NqLinkMotion::position(*m_Links->wrist, wristPoint(), activePositionState);
    arm.elbow =
        arm.shoulderFrameInverse * NqLinkMotion::position(*m_Links->elbow, elbowPoint(), activePositionState);
    arm.wristUnit = arm.wrist.unitVector();
    arm.elbowUnit = arm.elbow.unitVector();
    arm.referenceNormal = arm.wristUnit.cross(NqVector::xVector(1.0));
    arm.normal = arm.wristUnit.cross(arm.elbowUnit);
}

template <typename Visit>
void NqSewAngleEndEffector::forEachLinkBehindShoulder(Visit visit) const {
    for (const NqManipulatorLink* link = m_Links->wrist;
         link && link != m_Links->shoulder && link->parentLink(); link = link->parentLink()) {
        visit(*link);
    }
}

const NqEditableValueTable<NqSewAngleEndEffector>& NqSewAngleEndEffector::editableTable() {
    using E = NqSewAngleEndEffector;
    using Table = NqEditableValueTable<E>;
    static const Table table = {
        Table::text("Shoulder Link", "The name of the Shoulder link.", &E::shoulderLink, &E::setShoulderLink),
        Table::text("Elbow Link", "The name of the Elbow link.", &E::elbowLink, &E::setElbowLink),
        Table::text("Wrist Link", "The name of the Writst link", &E::wristLink, &E::setWristLink),
        Table::number("Gain",
                      "The multiplier of the error (difference between desired and actual angles) used to "
                      "calculate the driving velocity.",
                      &E::gain, &E::setGain),
        Table::number("Max. Angular Velocity",
                      "The maximum angular velocity the end effector can achieve (rad/s).",
                      &E::motionThreshold, &E::setMotionThreshold),
        Table::hardConstraint(
            "Boolean flag (0/1) describing if this end effector should be treated as a hard or soft "
            "constraint.Soft constraint (=0) will give a best effort to achieve desired placement."),
    };
    return table;
}
