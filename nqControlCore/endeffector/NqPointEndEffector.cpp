#include <nqControlCore/endeffector/NqPointEndEffector.h>

#include <array>

const NqToken& NqPointEndEffector::classToken() {
    return NqControlCore::NqPointEndEffectorToken;
}

NqPointEndEffector::NqPointEndEffector() {
    describe(editableTable(), "PointEndEffector.");
}

void NqPointEndEffector::insertJacobianComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                                 const NqEndEffectorRelativeLinkData& relativeLink,
                                                 bool fixedBase, NqManipulatorActiveState& state,
                                                 NqReArray& jacobian) const {
    rightSizeJacobian(row, jacobianWidth(manipulator, fixedBase), jacobian);
    const NqManipulatorLink* link = linkOrMessage(
        manipulator, linkIdentifier(),
        "NqPointEndEffector::insertJacobianComponent(): bad label on point end effector: %s.\n");
    if (!link) {
        return;
    }
    NqManipulatorActivePositionState& p = state.activePositionState();
    insertMotionRows(manipulator, row, relativeLink, fixedBase, *link, pointPosition(*link, pointOffset(), p),
                     "NqPointEndEffector::insertJacobianComponent(): bad index on relative link: %d.\n", p,
                     jacobian, [](const NqGeneralMotion& motion) {
                         return std::array{motion[0], motion[1], motion[2]};
                     });
}

void NqPointEndEffector::insertSparsityComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                                 const NqEndEffectorRelativeLinkData& relativeLink,
                                                 bool fixedBase, SparsityDescription& sparsity) const {
    constexpr LabelMessages messages = {
        "NqPointEndEffector::insertSparsityComponent(): bad label on point end effector: %s.\n",
        "NqPointEndEffector::insertSparsityComponent(): bad index on relative pLink: %d.\n"};
    insertMotionBits(manipulator, row, relativeLink, fixedBase, messages, m_theBaseBits, sparsity);
}

void NqPointEndEffector::insertErrorWeightComponent(unsigned row, NqReArray& weights) const {
    insertErrorWeights(row, weights, errorWeight(), errorWeight());
}

void NqPointEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                            NqManipulatorActiveState& state,
                                            NqEndEffectorPlacement& placement) const {
    NqVector position;
    calculatePointPlacement(manipulator, state, position);
    placement.setCoordSysXForm(position);
}

void NqPointEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                           NqManipulatorActiveState& state, NqXmlRealVector& velocity,
                                           unsigned start) const {
    const NqManipulatorLink* link = ownLink(manipulator);
    const NqVector v = link ? offsetVelocity(*link, pointOffset(), state).linear() : NqVector();
    insertPart(v, velocity, start);
}

void NqPointEndEffector::calculateAcceleration(const NqIndividualManipulator& manipulator,
                                               NqManipulatorActiveState& state, NqXmlRealVector& acceleration,
                                               unsigned start) const {
    const NqManipulatorLink* link = ownLink(manipulator);
    const NqVector a = link ? offsetAcceleration(*link, pointOffset(), state).linear() : NqVector();
    insertPart(a, acceleration, start);
}

double NqPointEndEffector::minimumTime(const NqEndEffectorPlacement& from,
                                       const NqEndEffectorPlacement& to) const {
    return timeAtThreshold(from, to);
}

double NqPointEndEffector::difference(const NqEndEffectorPlacement& a,
                                      const NqEndEffectorPlacement& b) const {
    return (a.coordSysXForm().inverse() * b.coordSysXForm()).translation().mag();
}

void NqPointEndEffector::calculatePointPlacement(const NqIndividualManipulator& manipulator,
                                                 NqManipulatorActiveState& state, NqVector& point) const {
    const NqManipulatorLink* link = linkOrMessage(
        manipulator, linkIdentifier(),
        "NqPointEndEffector::calculatePointPlacement(): bad label on point end effector: %s.\n");
    if (link) {
        point = pointPosition(*link, pointOffset(), state.activePositionState());
    }
}

NqVector NqPointEndEffector::pointOffset() const {
    return externalOffset() ? point() + externalOffset()->translation() : point();
}

const NqEditableValueTable<NqPointEndEffector>& NqPointEndEffector::editableTable() {
    using E = NqPointEndEffector;
    using F = NqPointMotionFilter;
    using Table = NqEditableValueTable<E>;
    constexpr auto self = [](auto& e) -> auto& {
        return e;
    };
    constexpr auto filter = [](auto& e) -> auto& {
        return e.ownFilter();
    };
    constexpr auto point = [](auto& e) -> auto& {
        return e.m_Point.value();
    };
    static const Table table = {
        Table::component(
            "Frame Offset: X",
            "The X offset of the end effector frame (meters).  This is measured from the DH-Frame of "
            "the link",
            point, 0),
        Table::component(
            "Frame Offset: Y",
            "The Y offset of the end effector frame (meters).  This is measured from the DH-Frame of "
            "the link",
            point, 1),
        Table::component(
            "Frame Offset: Z",
            "The Z offset of the end effector frame (meters).  This is measured from the DH-Frame of "
            "the link",
            point, 2),
        Table::number("Max. Linear Velocity",
                      "The maximum linear velocity the end effector can achieve (m/s)", filter, &F::threshold,
                      &F::setThreshold),
        Table::number("Max. Linear Acceleration",
                      "The maximum linear acceleration the end effector can achieve (m/s^2)", filter,
                      &F::accelerationThreshold, &F::setAccelerationThreshold),
        Table::number("Max. Linear Deceleration",
                      "The maximum linear deceleration the end effector can achieve (m/s^2)", filter,
                      &F::decelerationThreshold, &F::setDecelerationThreshold),
        Table::modeWord(
            "Velocity Profile Type",
            "The velocity profile type.  Current supported values are: trapezoidal and proportional", filter),
        Table::number("Exponent", "Unused", filter, &F::exponent, &F::setExponent),
        Table::hardConstraint(),
        Table::number(
            "Soft Constraint Gain",
            "If this is a soft contraint, gain value (g) such that the soft contraint gain G = g*S (where "
            "S is the overall gain value set in the soft contraint handler)",
            self, &E::errorWeight, &E::setErrorWeight),
    };
    return table;
}
