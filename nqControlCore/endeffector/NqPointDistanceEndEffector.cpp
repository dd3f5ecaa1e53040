#include <nqControlCore/endeffector/NqPointDistanceEndEffector.h>

#include <nqControlCore/endeffector/NqJointList.h>
#include <nqControlCore/endeffector/NqLinkMotion.h>

#include <algorithm>
#include <array>

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

void NqPointDistanceEndEffector::insertRows(const NqRowRequest& request, NqManipulatorActiveState& state,
                                            NqReArray& jacobian) const {
    const auto* linkTwo = NqLinkLookup::linkOrMessage(
        request.manipulator, labelTwo(),
        "NqPointDistanceEndEffector::insertJacobianComponent(): bad label on point2: : %s.\n");
    const auto* linkOne = NqLinkLookup::linkOrMessage(
        request.manipulator, labelOne(),
        "NqPointDistanceEndEffector::insertJacobianComponent(): bad label on point1: : %s.\n");
    NqManipulatorActivePositionState& p = state.activePositionState();
    const NqVector two = placed(linkTwo, pointTwo(), p);
    const NqVector one = placed(linkOne, pointOne(), p);
    const NqVector u = (two - one).unitVector();
    const auto alongGap = [&](const NqGeneralMotion& motion) { return std::array{u.dot(motion.linear())}; };
    if (linkTwo) {
        NqJacobianRows::setJointColumns(*linkTwo, two, p, request.row, jacobian, alongGap);
    }
    if (linkOne) {
        NqJacobianRows::subtractJointColumns(*linkOne, one, p, request.row, jacobian, alongGap);
    }
}

void NqPointDistanceEndEffector::insertBits(const NqRowRequest& request,
                                            SparsityDescription& sparsity) const {
    const auto insertChain = [&](const std::string& label, const char* message) {
        const NqManipulatorLink* link = request.manipulator.linkByLabel(label);
        NqSparsityBits::setChain(link, request.row, doc(), sparsity);
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

void NqPointDistanceEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                                    NqManipulatorActiveState& state,
                                                    NqEndEffectorPlacement& placement) const {
    NqVector one;
    NqVector two;
    calculatePointPlacements(manipulator, state, one, two);
    placement.setCoordSysXForm(NqVector(0.0, 0.0, (two - one).mag()));
}

NqDrivenNumber
NqPointDistanceEndEffector::drivenNumber(const NqIndividualManipulator& manipulator,
                                         NqManipulatorActiveState& state,
                                         const NqEndEffectorPlacement& desiredPlacement) const {
    const double distance = number(presentPlacement(manipulator, state));
    return {distance, std::max(number(desiredPlacement), m_theMinimumDistance)};
}

double NqPointDistanceEndEffector::rate(const NqIndividualManipulator& manipulator,
                                        NqManipulatorActiveState& state) const {
    NqManipulatorActivePositionState& p = state.activePositionState();
    const NqVector gap = placed(manipulator.linkByLabel(labelTwo()), pointTwo(), p) -
                         placed(manipulator.linkByLabel(labelOne()), pointOne(), p);
    NqVector one;
    NqVector two;
    calculatePointVelocities(manipulator, state, one, two);
    return gap.unitVector().dot(two - one);
}

void NqPointDistanceEndEffector::setLabelOne(const std::string& label) {
    m_LabelOne = label;
    clearLinkIndices();
}

void NqPointDistanceEndEffector::setLabelTwo(const std::string& label) {
    m_LabelTwo = label;
    clearLinkIndices();
}

NqVector NqPointDistanceEndEffector::placed(const NqManipulatorLink* link, const NqVector& point,
                                            NqManipulatorActivePositionState& state) {
    return link ? NqLinkMotion::position(*link, point, state) : NqVector();
}

void NqPointDistanceEndEffector::calculatePointPlacements(const NqIndividualManipulator& manipulator,
                                                          NqManipulatorActiveState& state, NqVector& one,
                                                          NqVector& two) const {
    const auto place = [&](const std::string& label, const NqVector& point, NqVector& result) {
        const auto* link = NqLinkLookup::linkOrMessage(
            manipulator, label,
            "NqPointDistanceEndEffector::calculatePointPlacements(): bad label on point end effector: %s.\n");
        result = link ? placed(link, point, state.activePositionState()) : result;
    };
    place(labelOne(), pointOne(), one);
    place(labelTwo(), pointTwo(), two);
}

void NqPointDistanceEndEffector::calculatePointVelocities(const NqIndividualManipulator& manipulator,
                                                          NqManipulatorActiveState& state, NqVector& one,
                                                          NqVector& two) const {
    const auto move = [&](const std::string& label, const NqVector& point, NqVector& result) {
        const auto* link = NqLinkLookup::linkOrMessage(
            manipulator, label,
            "NqPointDistanceEndEffector::calculatePointVelocities(): bad label on point end effector: %s.\n");
        result = link ? NqLinkMotion::velocity(*link, point, state).linear() : result;
    };
    move(labelOne(), pointOne(), one);
    move(labelTwo(), pointTwo(), two);
}

void NqPointDistanceEndEffector::setLinkIndices(const NqIndividualManipulator& manipulator) const {
    const auto setIndex = [&](const std::string& label, const char* message, unsigned& index) {
        const NqManipulatorLink* link = manipulator.linkByLabel(label);
        const bool hasJoint = NqJointList::hasJoint(link);
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
    using Table = NqEditableValueTable<E>;
    constexpr auto pointOne = [](auto& e) -> auto& {
        return e.m_PointOne.value();
    };
    constexpr auto pointTwo = [](auto& e) -> auto& {
        return e.m_PointTwo.value();
    };
    static const Table table = {
        Table::vector({{"point1_trans_x", "The x-coordinate of the first point in the primary frame."},
                       {"point1_trans_y", "The y-coordinate of the first point in the primary frame."},
                       {"point1_trans_z", "The z-coordinate of the first point in the primary frame."}},
                      pointOne),
        Table::vector({{"point2_trans_x", "The x-coordinate of the second point in the primary frame."},
                       {"point2_trans_y", "The y-coordinate of the second point in the primary frame."},
                       {"point2_trans_z", "The z-coordinate of the second point in the primary frame."}},
                      pointTwo),
        Table::text("link_label1", "The label for the link defining the first 3D point.", &E::labelOne,
                    &E::setLabelOne),
        Table::text("link_label2", "The label for the link defining the second 3D point.", &E::labelTwo,
                    &E::setLabelTwo),
        limitRows<E>("Linear", {"The maximum linear velocity the end effector can achieve (m/s).",
                                "The maximum linear acceleration the end effector can achieve (m/s).",
                                "The maximum linear deceleration the end effector can achieve (m/s)."}),
        Table::modeWord(
            "The velocity profile type.  Current supported values are: trapezoidal and proportional.",
            theFilterPart),
    };
    return table;
}
