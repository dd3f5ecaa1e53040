#include <nqControlCore/endeffector/special/NqSagEndEffector.h>

#include <nqControlCore/endeffector/NqVelocityEntries.h>

#include <algorithm>
#include <cmath>

using NqVelocityEntries::numberAt;

namespace {

void complain(const char* complaint) {
    Nq::Print::instance().ostream(Nq::PrintMismatch, "NqSagEndEffector::setEditableValues> ")
        << complaint << "\n";
}

} // namespace

bool NqSagEndEffector::read(NqXmlReader& reader) {
    clearLinkIndices();
    const bool isRead = NqUnfilteredEndEffector::read(reader);
    m_CalibrationOffsets.resize(m_SpringConstants.size());
    return isRead;
}

void NqSagEndEffector::setActivationTriggerValues(const NqXmlRealVector& values) {
    m_ActivationTriggerValues = values;
    clearLinkIndices();
}

void NqSagEndEffector::setTriggerLinkLabel(const NqXmlBasicType<std::string>& label) {
    m_TriggerLinkLabel = label;
    clearLinkIndices();
}

void NqSagEndEffector::setLinkLabels(const NqLabelVector& labels) {
    m_LinkLabels = labels;
    clearLinkIndices();
}

void NqSagEndEffector::setSpringConstants(const NqXmlRealVector& constants) {
    m_SpringConstants = constants;
    clearLinkIndices();
}

void NqSagEndEffector::clearLinkIndices() const {
    m_LookedUp->joints.clear();
}

void NqSagEndEffector::setLinkIndices(const NqIndividualManipulator& manipulator) const {
    LookedUp& lookedUp = *m_LookedUp;
    if (!m_TriggerLinkLabel.value().empty()) {
        const NqManipulatorLink* link = manipulator.linkByLabel(m_TriggerLinkLabel);
        lookedUp.hasTrigger = NqJointList::hasJoint(link);
        lookedUp.triggerJoint = lookedUp.hasTrigger ? link->jointIndex() : 0;
    }
    if (!lookedUp.joints.isEmpty()) {
        return;
    }
    const std::size_t count = std::min<std::size_t>(m_SpringConstants.size(), m_LinkLabels.size());
    for (std::size_t i = 0; i < count; ++i) {
        lookedUp.joints.append(manipulator, m_LinkLabels[i],
                               "NqSagEndEffector::setLinkIndices(): bad label: %s.\n",
                               "NqSagEndEffector::setLinkIndices(): error: label is for base link\n");
    }
}

void NqSagEndEffector::setupGravTorqueTool(const NqIndividualManipulator& manipulator) const {
    m_GravTorqueTool->setGravity(m_Gravity);
    if (m_GravTorqueTool->manipulator() != &manipulator) {
        m_GravTorqueTool->setManipulator(manipulator);
    }
}

template <typename Visit>
void NqSagEndEffector::forEachRow(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                                  Visit visit) const {
    setLinkIndices(manipulator);
    setupGravTorqueTool(manipulator);
    const LookedUp& lookedUp = *m_LookedUp;
    const double trigger = numberAt(state.positionState().jointPositions(), lookedUp.triggerJoint);
    for (unsigned i = 0; i < doc(); ++i) {
        const NqJointList::Joint& joint = lookedUp.joints[i];
        // Those remembered may be another manipulator's.
        if (joint.isValid && joint.index < manipulator.numberOfJoints()) {
            const bool isOff = lookedUp.hasTrigger && trigger < numberAt(m_ActivationTriggerValues, i);
            visit(i, joint.index, !isOff);
        }
    }
}

void NqSagEndEffector::insertJacobianComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                               const NqEndEffectorRelativeLinkData& relativeLink,
                                               bool fixedBase, NqManipulatorActiveState& state,
                                               NqReArray& jacobian) const {
    setLinkIndices(manipulator); // rows are right-sized by doc()
    NqRowEndEffector::insertJacobianComponent(manipulator, row, relativeLink, fixedBase, state, jacobian);
}

void NqSagEndEffector::insertSparsityComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                               const NqEndEffectorRelativeLinkData& relativeLink,
                                               bool fixedBase, SparsityDescription& sparsity) const {
    setLinkIndices(manipulator);
    NqRowEndEffector::insertSparsityComponent(manipulator, row, relativeLink, fixedBase, sparsity);
}

void NqSagEndEffector::insertRows(const NqRowRequest& request, NqManipulatorActiveState& state,
                                  NqReArray& jacobian) const {
    forEachRow(request.manipulator, state, [&](unsigned i, unsigned joint, bool hasGravity) {
        std::vector<double>& row = jacobian[request.row + i];
        row[joint] = m_SpringConstants[i];
        if (hasGravity) {
            m_GravTorqueTool->jointTorqueGradient(joint, state, 0).addMultipleTo(row, -1.0);
        }
    });
}

void NqSagEndEffector::insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const {
    NqSparsityBits::setColumns(0, request.width(), request.row, doc(), sparsity);
}

void NqSagEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                          NqManipulatorActiveState& state,
                                          NqEndEffectorPlacement& placement) const {
    setLinkIndices(manipulator);
    NqXmlRealVector& residuals = placement.dataVector();
    residuals.resize(doc());
    const NqXmlRealVector& positions = state.positionState().jointPositions();
    forEachRow(manipulator, state, [&](unsigned i, unsigned joint, bool hasGravity) {
        const double spring =
            (numberAt(positions, joint) - numberAt(m_CalibrationOffsets, i)) * m_SpringConstants[i];
        const double gravity = hasGravity ? m_GravTorqueTool->jointTorque(joint, state, 0) : 0.0;
        residuals[i] = spring - gravity;
    });
}

void NqSagEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                         NqManipulatorActiveState& state, NqXmlRealVector& velocity,
                                         unsigned start) const {
    setLinkIndices(manipulator);
    velocity.resize(start + doc());
    const NqXmlRealVector& rates = state.velocityState().jointVelocities();
    forEachRow(manipulator, state, [&](unsigned i, unsigned joint, bool hasGravity) {
        double ofGravity = 0.0;
        if (hasGravity) {
            m_Gradient->assign(manipulator.numberOfJoints(), 0.0);
            m_GravTorqueTool->jointTorqueGradient(joint, state, 0).addMultipleTo(*m_Gradient, 1.0);
            for (unsigned column = 0; column < m_Gradient->size(); ++column) {
                ofGravity += (*m_Gradient)[column] * numberAt(rates, column);
            }
        }
        velocity[start + i] = numberAt(rates, joint) * m_SpringConstants[i] - ofGravity;
    });
}

void NqSagEndEffector::insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const {
    const NqXmlRealVector& residuals = presentPlacement(request.manipulator, request.state).dataVector();
    filtered.resize(residuals.size());
    for (unsigned i = 0; i < residuals.size(); ++i) {
        filtered[i] = -(errorWeight() * residuals[i]);
    }
}

double NqSagEndEffector::difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const {
    const std::size_t count = std::min(a.dataVector().size(), b.dataVector().size());
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const double way = a.dataVector()[i] - b.dataVector()[i];
        sum += way * way;
    }
    return std::sqrt(sum);
}

const NqEditableValueTable<NqSagEndEffector>& NqSagEndEffector::editableTable() {
    using E = NqSagEndEffector;
    using Table = NqEditableValueTable<E>;
    static const Table table = {
        Table::list("Sag Links",
                    "List of Link/Joint names for sag model seperated by commas. You can use one instance of "
                    "this EE per sag link too.",
                    &E::linkLabels, &E::setLinkLabels),
        Table::list("Spring Constants", "List of sprint constants for the above-mentioned sag model joints",
                    &E::springConstants, &E::setSpringConstants),
        Table::list("Calibration constants", "Calibrated joint offsets to remove sag in home position",
                    &E::calibrationOffsets, &E::setCalibrationOffsets),
        Table::list("Trigger min. thresholds",
                    "Minimum deployer values beyond which the constraint is enabled",
                    &E::activationTriggerValues, &E::setActivationTriggerValues),
        Table::text(
            "Trigger Link",
            "Label of Link/Joint whose value controls triggering. Leave as blank if conditional triggering "
            "is not desired.",
            &E::triggerLinkLabel,
            [](E& e, const std::string& label) {
                e.setTriggerLinkLabel(label);
                if (e.m_LinkLabels.size() != e.m_SpringConstants.size()) {
                    complain("Link Labels and Spring Constants count mismatch.");
                }
            }),
        Table::number("Error weight", "Error weight for velocity calculation", &E::errorWeight,
                      &E::setErrorWeight),
        Table::vectorText(
            "Gravity", "Gravity Vector in system frame", [](auto& e) -> auto& { return e.m_Gravity.value(); },
            [] { complain("Invalid gravity vector."); }),
        Table::hardConstraint(),
    };
    return table;
}
