#include <nqControlCore/endeffector/NqPointDistanceEndEffector.h>

#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>

const NqToken& NqPointDistanceEndEffector::classToken() {
    return NqControlCore::NqPointDistanceEndEffectorToken;
}

NqPointDistanceEndEffector::NqPointDistanceEndEffector() {
    describe(editableTable(), "An end effector constraining the distance between two points rigidly attached "
                              "to any two links of the manipulator.");
}

bool NqPointDistanceEndEffector::read(NqXmlReader& reader) {
    clearLinkIndices();
    return NqScalarBasedEndEffector::read(reader);
}

bool NqPointDistanceEndEffector::changeLinkLabel(const std::string& oldLabel, const std::string& newLabel) {
    const bool changesOne = labelOne() == oldLabel;
    const bool changesTwo = labelTwo() == oldLabel;
    if (changesOne) {
        setLabelOne(newLabel);
    }
    if (changesTwo) {
        setLabelTwo(newLabel);
    }
    return NqScalarBasedEndEffector::changeLinkLabel(oldLabel, newLabel) || changesOne || changesTwo;
}

void NqPointDistanceEndEffector::insertJacobianComponent(const NqIndividualManipulator& manipulator,
                                                         unsigned row, const NqEndEffectorRelativeLinkData&,
                                                         bool fixedBase, NqManipulatorActiveState& state,
                                                         NqReArray& jacobian) const {
    rightSizeJacobian(row, jacobianWidth(manipulator, fixedBase), jacobian);
    NqVector one;
    NqVector two;
    calculatePointPlacements(manipulator, state, one, two);
    const NqVector u = (two - one).unitVector();
    NqManipulatorActivePositionState& p = state.activePositionState();

    const NqManipulatorLink* linkTwo =
        linkOrMessage(manipulator, labelTwo(),
                      "NqPointDistanceEndEffector::insertJacobianComponent(): bad label on point2: : %s.\n");
    if (linkTwo) {
        linkTwo->forEachUnitRateMotion(two, p, [&](unsigned column, const NqGeneralMotion& motion) {
            jacobian[row][column] = u.dot(motion.linear());
        });
    }
    const NqManipulatorLink* linkOne =
        linkOrMessage(manipulator, labelOne(),
                      "NqPointDistanceEndEffector::insertJacobianComponent(): bad label on point1: : %s.\n");
    if (linkOne) {
        linkOne->forEachUnitRateMotion(one, p, [&](unsigned column, const NqGeneralMotion& motion) {
            jacobian[row][column] -= u.dot(motion.linear());
        });
    }
}

void NqPointDistanceEndEffector::insertSparsityComponent(const NqIndividualManipulator& manipulator,
                                                         unsigned row, const NqEndEffectorRelativeLinkData&,
                                                         bool fixedBase,
                                                         SparsityDescription& sparsity) const {
    clearBits(manipulator, row, fixedBase, sparsity);
    const auto insertChain = [&](const std::string& label, const char* message) {
        const NqManipulatorLink* link = manipulator.linkByLabel(label);
        insertChainBits(link, row, sparsity);
        if (!link) {
            // Names the end-effector's own link, not the label that is missing.
            Nq::Print::instance().write(Nq::PrintFailure, message, linkIdentifier());
        }
    };
    insertChain(labelOne(),
                "NqPointDistanceEndEffector::insertSparsityComponent(): bad label on first point: %s.\n");
    insertChain(labelTwo(),
                "NqPointDistanceEndEffector::insertSparsityComponent(): bad label on second point: %s.\n");
}

void NqPointDistanceEndEffector::insertErrorWeightComponent(unsigned row, NqReArray& weights) const {
    insertErrorWeights(row, weights, errorWeight(), errorWeight());
}

void NqPointDistanceEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                                    NqManipulatorActiveState& state,
                                                    NqEndEffectorPlacement& placement) const {
    placement.setCoordSysXForm(NqVector(0.0, 0.0, gap(manipulator, state).mag()));
}

void NqPointDistanceEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                                   NqManipulatorActiveState& state, NqXmlRealVector& velocity,
                                                   unsigned start) const {
    const NqVector u = gap(manipulator, state).unitVector();
    NqVector one;
    NqVector two;
    calculatePointVelocities(manipulator, state, one, two);
    velocity.resize(start + doc());
    velocity[start] = u.dot(two - one);
}

void NqPointDistanceEndEffector::calculateAcceleration(const NqIndividualManipulator&,
                                                       NqManipulatorActiveState&,
                                                       NqXmlRealVector& acceleration, unsigned start) const {
    acceleration.resize(start + doc());
    acceleration[start] = 0.0;
}

void NqPointDistanceEndEffector::filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                           const NqEndEffectorPlacement& desiredPlacement,
                                                           const NqXmlRealVector& desiredVelocity,
                                                           const NqXmlRealVector& previousVelocity,
                                                           double timeStep, NqManipulatorActiveState& state,
                                                           NqXmlRealVector& filtered) const {
    const double distance = gap(manipulator, state).mag();
    const double target = std::max(number(desiredPlacement), m_theMinimumDistance);
    filterNumber(distance, target, desiredVelocity, previousVelocity, timeStep, filtered);
}

double NqPointDistanceEndEffector::minimumTime(const NqEndEffectorPlacement& from,
                                               const NqEndEffectorPlacement& to) const {
    return timeAtThreshold(from, to);
}

void NqPointDistanceEndEffector::setLabelOne(const std::string& label) {
    m_LabelOne = label;
    clearLinkIndices();
}

void NqPointDistanceEndEffector::setLabelTwo(const std::string& label) {
    m_LabelTwo = label;
    clearLinkIndices();
}

void NqPointDistanceEndEffector::calculatePointPlacements(const NqIndividualManipulator& manipulator,
                                                          NqManipulatorActiveState& state, NqVector& one,
                                                          NqVector& two) const {
    const auto place = [&](const std::string& label, const NqVector& point, NqVector& result) {
        const NqManipulatorLink* link = linkOrMessage(
            manipulator, label,
            "NqPointDistanceEndEffector::calculatePointPlacements(): bad label on point end effector: %s.\n");
        if (link) {
            result = pointPosition(*link, point, state.activePositionState());
        }
    };
    place(labelOne(), pointOne(), one);
    place(labelTwo(), pointTwo(), two);
}

void NqPointDistanceEndEffector::calculatePointVelocities(const NqIndividualManipulator& manipulator,
                                                          NqManipulatorActiveState& state, NqVector& one,
                                                          NqVector& two) const {
    const auto move = [&](const std::string& label, const NqVector& point, NqVector& result) {
        const NqManipulatorLink* link = linkOrMessage(
            manipulator, label,
            "NqPointDistanceEndEffector::calculatePointVelocities(): bad label on point end effector: %s.\n");
        if (link) {
            result = offsetVelocity(*link, point, state).linear();
        }
    };
    move(labelOne(), pointOne(), one);
    move(labelTwo(), pointTwo(), two);
}

NqVector NqPointDistanceEndEffector::gap(const NqIndividualManipulator& manipulator,
                                         NqManipulatorActiveState& state) const {
    NqVector one;
    NqVector two;
    calculatePointPlacements(manipulator, state, one, two);
    return two - one;
}

void NqPointDistanceEndEffector::setLinkIndices(const NqIndividualManipulator& manipulator) const {
    const auto setIndex = [&](const std::string& label, const char* message, unsigned& index) {
        const NqManipulatorLink* link = manipulator.linkByLabel(label);
        const bool hasJoint = link && link->parentLink();
        index = hasJoint ? link->jointIndex() : 0;
        if (!hasJoint) {
            m_Joints->isValid = false;
            Nq::Print::instance().write(Nq::PrintFailure, message);
        }
        return hasJoint;
    };
    setIndex(labelOne(), "NqPointDistanceEndEffector::setLinkIndices(): error: bad label one.\n",
             m_Joints->one);
    if (setIndex(labelTwo(), "NqPointDistanceEndEffector::setLinkIndices(): error: bad label two.\n",
                 m_Joints->two)) {
        m_Joints->isValid = true;
    }
}

void NqPointDistanceEndEffector::clearLinkIndices() const {
    m_Joints->isValid = false;
}

const NqEditableValueTable<NqPointDistanceEndEffector>& NqPointDistanceEndEffector::editableTable() {
    using E = NqPointDistanceEndEffector;
    using F = NqScalarMotionFilter;
    using Table = NqEditableValueTable<E>;
    constexpr auto filter = [](auto& e) -> auto& {
        return e.ownFilter();
    };
    constexpr auto pointOne = [](auto& e) -> auto& {
        return e.m_PointOne.value();
    };
    constexpr auto pointTwo = [](auto& e) -> auto& {
        return e.m_PointTwo.value();
    };
    static const Table table = {
        Table::component("point1_trans_x", "The x-coordinate of the first point in the primary frame.",
                         pointOne, 0),
        Table::component("point1_trans_y", "The y-coordinate of the first point in the primary frame.",
                         pointOne, 1),
        Table::component("point1_trans_z", "The z-coordinate of the first point in the primary frame.",
                         pointOne, 2),
        Table::component("point2_trans_x", "The x-coordinate of the second point in the primary frame.",
                         pointTwo, 0),
        Table::component("point2_trans_y", "The y-coordinate of the second point in the primary frame.",
                         pointTwo, 1),
        Table::component("point2_trans_z", "The z-coordinate of the second point in the primary frame.",
                         pointTwo, 2),
        Table::text("link_label1", "The label for the link defining the first 3D point.", &E::labelOne,
                    &E::setLabelOne),
        Table::text("link_label2", "The label for the link defining the second 3D point.", &E::labelTwo,
                    &E::setLabelTwo),
        Table::number("Max. Linear Velocity",
                      "The maximum linear velocity the end effector can achieve (m/s).", filter,
                      &F::threshold, &F::setThreshold),
        Table::number("Max. Linear Acceleration",
                      "The maximum linear acceleration the end effector can achieve (m/s).", filter,
                      &F::accelerationThreshold, &F::setAccelerationThreshold),
        Table::number("Max. Linear Deceleration",
                      "The maximum linear deceleration the end effector can achieve (m/s).", filter,
                      &F::decelerationThreshold, &F::setDecelerationThreshold),
        Table::modeWord(
            "Velocity Profile Type",
            "The velocity profile type.  Current supported values are: trapezoidal and proportional.",
            filter),
    };
    return table;
}
