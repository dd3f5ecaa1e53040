#include <nqControlCore/endeffector/NqLinearConstraintEndEffector.h>

#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>

namespace {

constexpr const char* theBadColumnMessage =
    "NqLinearConstraintEndEffector::insertSparsityComponent(): Indices out of range: row %d and column %d\n";

} // namespace

const NqToken& NqLinearConstraintEndEffector::classToken() {
    return NqControlCore::NqLinearConstraintEndEffectorToken;
}

NqLinearConstraintEndEffector::NqLinearConstraintEndEffector() {
    describe(editableTable(), "This end effector constrains a linear combination of joint values.");
}

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

void NqLinearConstraintEndEffector::insertJacobianComponent(const NqIndividualManipulator& manipulator,
                                                            unsigned row,
                                                            const NqEndEffectorRelativeLinkData&,
                                                            bool fixedBase, NqManipulatorActiveState&,
                                                            NqReArray& jacobian) const {
    rightSizeJacobian(row, jacobianWidth(manipulator, fixedBase), jacobian);
    forEachJoint(manipulator, [&](unsigned column, double weight) {
        if (row < jacobian.size() && column < jacobian[row].size()) {
            jacobian[row][column] = weight;
        } else {
            Nq::Print::instance().write(Nq::PrintFailure, theBadColumnMessage, row, column);
        }
    });
}

void NqLinearConstraintEndEffector::insertSparsityComponent(const NqIndividualManipulator& manipulator,
                                                            unsigned row,
                                                            const NqEndEffectorRelativeLinkData&,
                                                            bool fixedBase,
                                                            SparsityDescription& sparsity) const {
    clearBits(manipulator, row, fixedBase, sparsity);
    forEachJoint(manipulator, [&](unsigned column, double) {
        if (row < sparsity.size() && column < sparsity[row].size()) {
            sparsity[row][column] = true;
        } else {
            Nq::Print::instance().write(Nq::PrintFailure, theBadColumnMessage, row, column);
        }
    });
}

void NqLinearConstraintEndEffector::insertErrorWeightComponent(unsigned row, NqReArray& weights) const {
    insertErrorWeights(row, weights, errorWeight(), errorWeight());
}

void NqLinearConstraintEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                                       NqManipulatorActiveState& state,
                                                       NqEndEffectorPlacement& placement) const {
    const Sum s = sum(manipulator, state.positionState().jointPositions(), -m_WeightedSum);
    if (m_IsInteractive) {
        placement.coordSysXForm().setTranslationZ(s.value);
    }
}

void NqLinearConstraintEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                                      NqManipulatorActiveState& state,
                                                      NqXmlRealVector& velocity, unsigned start) const {
    velocity.resize(start + 1);
    velocity[start] = sum(manipulator, state.velocityState().jointVelocities(), 0.0).value;
}

void NqLinearConstraintEndEffector::calculateAcceleration(const NqIndividualManipulator&,
                                                          NqManipulatorActiveState&,
                                                          NqXmlRealVector& acceleration,
                                                          unsigned start) const {
    acceleration.resize(start + 1);
    acceleration[start] = 0.0;
}

void NqLinearConstraintEndEffector::filterEndEffectorVelocity(
    const NqIndividualManipulator& manipulator, const NqEndEffectorPlacement& desiredPlacement,
    const NqXmlRealVector& desiredVelocity, const NqXmlRealVector& previousVelocity, double timeStep,
    NqManipulatorActiveState& state, NqXmlRealVector& filtered) const {
    const Numbers n = numbers(manipulator, state, desiredPlacement);
    filterNumber(n.present, n.desired, desiredVelocity, previousVelocity, timeStep, filtered);
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
    const Numbers n = numbers(manipulator, state, desiredPlacement);
    error.assign(1, n.present - n.desired);
}

void NqLinearConstraintEndEffector::setLinkLabels(const NqLabelVector& labels) {
    m_LinkLabels = labels;
    clearLinkIndices();
}

void NqLinearConstraintEndEffector::setLinkIndices(const NqIndividualManipulator& manipulator) const {
    if (!m_Joints->linkIndices.empty()) {
        return;
    }
    const std::size_t count = std::min<std::size_t>(m_LinkLabels.size(), m_LinkWeights.size());
    for (std::size_t i = 0; i < count; ++i) {
        const NqManipulatorLink* link =
            linkOrMessage(manipulator, m_LinkLabels[i],
                          "NqLinearConstraintEndEffector::setLinkIndices(): bad label: %s.\n");
        const bool hasJoint = link && link->parentLink();
        if (link && !hasJoint) {
            Nq::Print::instance().write(
                Nq::PrintFailure,
                "NqLinearConstraintEndEffector::setLinkIndices(): error: label is for base link\n");
        }
        m_Joints->linkIndices.push_back(hasJoint ? link->jointIndex() : 0);
        m_Joints->linkIndexValid.push_back(hasJoint);
    }
}

void NqLinearConstraintEndEffector::clearLinkIndices() const {
    m_Joints->linkIndices.clear();
    m_Joints->linkIndexValid.clear();
}

template <typename Visit>
void NqLinearConstraintEndEffector::forEachJoint(const NqIndividualManipulator& manipulator, Visit visit,
                                                 std::size_t most) const {
    setLinkIndices(manipulator);
    // Weights may have become fewer since the joints were looked up.
    const std::size_t count = std::min({m_Joints->linkIndices.size(), m_LinkWeights.size(), most});
    for (std::size_t i = 0; i < count; ++i) {
        if (m_Joints->linkIndexValid[i]) {
            visit(m_Joints->linkIndices[i], m_LinkWeights[i]);
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

NqLinearConstraintEndEffector::Numbers
NqLinearConstraintEndEffector::numbers(const NqIndividualManipulator& manipulator,
                                       NqManipulatorActiveState& state,
                                       const NqEndEffectorPlacement& desiredPlacement) const {
    const Sum s = sum(manipulator, state.positionState().jointPositions(), -m_WeightedSum);
    return m_IsInteractive && s.count > 0 ? Numbers{s.value, number(desiredPlacement)} : Numbers{0.0, 0.0};
}

const NqEditableValueTable<NqLinearConstraintEndEffector>& NqLinearConstraintEndEffector::editableTable() {
    using E = NqLinearConstraintEndEffector;
    using F = NqScalarMotionFilter;
    using Table = NqEditableValueTable<E>;
    constexpr auto self = [](auto& e) -> auto& {
        return e;
    };
    constexpr auto filter = [](auto& e) -> auto& {
        return e.ownFilter();
    };
    static const Table table = {
        Table::list("Links", "Comma separated link names.", &E::linkLabels, &E::setLinkLabels),
        Table::list("Link Weights", "Comma separated link weights.", &E::linkWeights, &E::setLinkWeights),
        Table::number(
            "Offset added to weighted link_joint_variables",
            "The weighted sum of the link joint variables must equal this value plus the input value.", self,
            &E::weightedSum, &E::setWeightedSum),
        Table::number("gain", "Not used.", filter, &F::gain, &F::setGain),
        Table::number("Max. Linear Velocity",
                      "The maximum linear velocity the end effector can achieve (m/s).", filter,
                      &F::threshold, &F::setThreshold),
        Table::number("Max. Linear Acceleration",
                      "The maximum linear acceleration the end effector can achieve (m/s^2).", filter,
                      &F::accelerationThreshold, &F::setAccelerationThreshold),
        Table::number("Max. Linear Deceleration",
                      "The maximum linear deceleration the end effector can achieve (m/s^2).", filter,
                      &F::decelerationThreshold, &F::setDecelerationThreshold),
        Table::modeWord(
            "Velocity Profile Type",
            "The velocity profile type.  Current supported values are: trapezoidal and proportional.",
            filter),
        Table::hardConstraint(),
        Table::flag("is_editable",
                    "Boolean flag (0/1) indicating whether this end effector appears in the standard GUI "
                    "drop-down list.",
                    &E::isEditable, &E::setIsEditable),
    };
    return table;
}
