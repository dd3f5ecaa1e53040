#include <nqControlCore/endeffector/NqFrameEndEffector.h>

#include <array>
#include <cmath>

const NqToken& NqFrameEndEffector::classToken() {
    return NqControlCore::NqFrameEndEffectorToken;
}

NqFrameEndEffector::NqFrameEndEffector() {
    describe(editableTable(),
             "This end-effector type gives 6 degrees of freedom to the end-effector, viz: x, "
             "y, z, roll, pitch and yaw.");
}

void NqFrameEndEffector::insertJacobianComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                                 const NqEndEffectorRelativeLinkData& relativeLink,
                                                 bool fixedBase, NqManipulatorActiveState& state,
                                                 NqReArray& jacobian) const {
    rightSizeJacobian(row, jacobianWidth(manipulator, fixedBase), jacobian);
    const NqVector offset = frameOffset().translation();
    const NqManipulatorLink* link = linkOrMessage(
        manipulator, linkIdentifier(),
        "NqFrameEndEffector::insertJacobianComponent(): bad label on frame end effector: %s.\n");
    if (!link) {
        return;
    }
    NqManipulatorActivePositionState& p = state.activePositionState();
    insertMotionRows(manipulator, row, relativeLink, fixedBase, *link, pointPosition(*link, offset, p),
                     "NqFrameEndEffector::insertJacobianComponent(): bad index on relative link: %d.\n", p,
                     jacobian,
                     [](const NqGeneralMotion& m) { return std::array{m[0], m[1], m[2], m[3], m[4], m[5]}; });
}

void NqFrameEndEffector::insertSparsityComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                                 const NqEndEffectorRelativeLinkData& relativeLink,
                                                 bool fixedBase, SparsityDescription& sparsity) const {
    constexpr LabelMessages messages = {
        "NqFrameEndEffector::insertSparsityComponent(): bad label on frame end effector: %s.\n",
        "NqFrameEndEffector::insertSparsityComponent(): bad index on relative link: %d.\n"};
    insertMotionBits(manipulator, row, relativeLink, fixedBase, messages, m_theBaseBits, sparsity);
}

void NqFrameEndEffector::insertErrorWeightComponent(unsigned row, NqReArray& weights) const {
    insertErrorWeights(row, weights, linearErrorWeight(), angularErrorWeight());
}

void NqFrameEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                            NqManipulatorActiveState& state,
                                            NqEndEffectorPlacement& placement) const {
    const NqManipulatorLink* link = linkOrMessage(
        manipulator, linkIdentifier(),
        "NqFrameEndEffector::calculateFramePlacement():  bad label on frame end effector: %s.\n");
    if (link) {
        placement.setCoordSysXForm(link->primaryFrameInSystem(state.activePositionState()) * frameOffset());
    }
}

void NqFrameEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                           NqManipulatorActiveState& state, NqXmlRealVector& velocity,
                                           unsigned start) const {
    const NqManipulatorLink* link = ownLink(manipulator);
    const NqGeneralMotion v =
        link ? offsetVelocity(*link, frameOffset().translation(), state) : NqGeneralMotion();
    insertPart(v.linear(), velocity, start);
    insertPart(v.angular(), velocity, start + 3);
}

void NqFrameEndEffector::calculateAcceleration(const NqIndividualManipulator& manipulator,
                                               NqManipulatorActiveState& state, NqXmlRealVector& acceleration,
                                               unsigned start) const {
    const NqManipulatorLink* link = ownLink(manipulator);
    const NqGeneralMotion a = link ? offsetAcceleration(*link, frameOffset(), state) : NqGeneralMotion();
    insertPart(a.linear(), acceleration, start, Tail::Kept);
    insertPart(a.angular(), acceleration, start + 3, Tail::Kept);
}

double NqFrameEndEffector::minimumTime(const NqEndEffectorPlacement& from,
                                       const NqEndEffectorPlacement& to) const {
    return timeForDistance(difference(from, to), motionFilter().threshold() * speedFactor());
}

double NqFrameEndEffector::difference(const NqEndEffectorPlacement& a,
                                      const NqEndEffectorPlacement& b) const {
    const NqCoordinateSystemTransformation relative = a.coordSysXForm().inverse() * b.coordSysXForm();
    double angle = 0.0;
    NqVector axis;
    relative.orientation().getAngleAxis(angle, axis);
    return relative.translation().mag() * linearErrorWeight() + std::fabs(angle) * angularErrorWeight();
}
