#include <nqControlCore/endeffector/NqLinearConstraintEndEffector.h>

#include <algorithm>

namespace {

/// Both operations name one of them.
constexpr const char* theBadColumnMessage =
    "NqLinearConstraintEndEffector::insertSparsityComponent(): Indices out of range: row %d and column %d\n";

} // namespace

bool NqLinearConstraintEndEffector::read(NqXmlReader& reader) {
    clearLinkIndices();
    return NqScalarBasedEndEffector::read(reader);
}

bool NqLinearConstraintEndEffector::changeLinkLabel(const std::string& oldLabel,
                                                    const std::string& newLabel) {
    bool isChanged = false;
    for (auto& label : m_LinkLabels) {
        if (label.value() == oldLabel) {
            label = newLabel;
            isChanged = true;
        }
    }
    return isChanged;
}

void NqLinearConstraintEndEffector::insertRows(const NqRowRequest& request, NqManipulatorActiveState&,
                                               NqReArray& jacobian) const {
    forEachJoint(request.manipulator, [&](unsigned column, double weight) {
        if (NqJacobianRows::hasElement(request.row, column, jacobian, theBadColumnMessage)) {
            jacobian[request.row][column] = weight;
        }
    });
}

void NqLinearConstraintEndEffector::insertBits(const NqRowRequest& request,
                                               SparsityDescription& sparsity) const {
    forEachJoint(request.manipulator, [&](unsigned column, double) {
        if (NqJacobianRows::hasElement(request.row, column, sparsity, theBadColumnMessage)) {
            sparsity[request.row][column] = true;
        }
    });
}

void NqLinearConstraintEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                                       NqManipulatorActiveState& state,
                                                       NqEndEffectorPlacement& placement) const {
    const Sum s = sum(manipulator, state.positionState().jointPositions(), -m_WeightedSum);
    if (m_IsInteractive) {
        placement.coordSysXForm().setTranslationZ(s.value);
    }
}

double NqLinearConstraintEndEffector::rate(const NqIndividualManipulator& manipulator,
                                           NqManipulatorActiveState& state) const {
    return sum(manipulator, state.velocityState().jointVelocities(), 0.0).value;
}

NqDrivenNumber
NqLinearConstraintEndEffector::drivenNumber(const NqIndividualManipulator& manipulator,
                                            NqManipulatorActiveState& state,
                                            const NqEndEffectorPlacement& desiredPlacement) const {
    const Sum s = sum(manipulator, state.positionState().jointPositions(), -m_WeightedSum);
    return m_IsInteractive && s.count > 0 ? NqDrivenNumber{s.value, number(desiredPlacement)}
                                          : NqDrivenNumber{0.0, 0.0};
}

double NqLinearConstraintEndEffector::minimumTime(const NqEndEffectorPlacement& from,
                                                  const NqEndEffectorPlacement& to) const {
    const double t = motionFilter().threshold();
    return t > 0.0 ? difference(from, to) / t : 0.0;
}

void NqLinearConstraintEndEffector::calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                                              const NqEndEffectorPlacement& desiredPlacement,
                                                              NqManipulatorActiveState& state,
                                                              NqXmlRealVector& error) const {
    insertNumberError(manipulator, state, desiredPlacement, error);
}

void NqLinearConstraintEndEffector::setLinkLabels(const NqLabelVector& labels) {
    m_LinkLabels = labels;
    clearLinkIndices();
}

void NqLinearConstraintEndEffector::setLinkIndices(const NqIndividualManipulator& manipulator) const {
    if (!m_Joints->isEmpty()) {
        return;
    }
    const std::size_t count = std::min<std::size_t>(m_LinkLabels.size(), m_LinkWeights.size());
    for (std::size_t i = 0; i < count; ++i) {
        m_Joints->append(manipulator, m_LinkLabels[i],
                         "NqLinearConstraintEndEffector::setLinkIndices(): bad label: %s.\n",
                         "NqLinearConstraintEndEffector::setLinkIndices(): error: label is for base link\n");
    }
}

void NqLinearConstraintEndEffector::clearLinkIndices() const {
    m_Joints->clear();
}

template <typename Visit>
void NqLinearConstraintEndEffector::forEachJoint(const NqIndividualManipulator& manipulator, Visit visit,
                                                 std::size_t most) const {
    setLinkIndices(manipulator);
    // Weights may have become fewer since the joints were looked up.
    const std::size_t count = std::min({m_Joints->size(), m_LinkWeights.size(), most});
    for (std::size_t i = 0; i < count; ++i) {
        if ((*m_Joints)[i].isValid) {
            visit((*m_Joints)[i].index, m_LinkWeights[i]);
        }
    }
}

NqLinearConstraintEndEffector::Sum
NqLinearConstraintEndEffector::sum(const NqIndividualManipulator& manipulator,
                                   const NqXmlRealVector& jointValues, double start) const {
    Sum sum{start};
    const auto add = [&](unsigned column, double weight) {
        if (column < jointValues.size()) {
            sum.value += jointValues[column] * weight;
            ++sum.count;
        }
    };
    forEachJoint(manipulator, add, jointValues.size());
    return sum;
}

const NqEditableValueTable<NqLinearConstraintEndEffector>& NqLinearConstraintEndEffector::editableTable() {
    using E = NqLinearConstraintEndEffector;
    using F = NqScalarMotionFilter;
    using Table = NqEditableValueTable<E>;
    static const Table table = {
        Table::list("Links", "Comma separated link names.", &E::linkLabels, &E::setLinkLabels),
        Table::list("Link Weights", "Comma separated link weights.", &E::linkWeights, &E::setLinkWeights),
        Table::number(
            "Offset added to weighted link_joint_variables",
            "The weighted sum of the link joint variables must equal this value plus the input value.",
            &E::weightedSum, &E::setWeightedSum),
        Table::number("gain", "Not used.", theFilterPart, &F::gain, &F::setGain),
        limitRows<E>("Linear", {"The maximum linear velocity the end effector can achieve (m/s).",
                                "The maximum linear acceleration the end effector can achieve (m/s^2).",
                                "The maximum linear deceleration the end effector can achieve (m/s^2)."}),
        Table::modeWord(
            "The velocity profile type.  Current supported values are: trapezoidal and proportional.",
            theFilterPart),
        Table::hardConstraint(),
        Table::flag("is_editable",
                    "Boolean flag (0/1) indicating whether this end effector appears in the standard GUI "
                    "drop-down list.",
                    &E::isEditable, &E::setIsEditable),
    };
    return table;
}
