#include <nqControlCore/endeffector/special/NqOneDofGripperEndEffector.h>

#include <nqControlCore/endeffector/NqVelocityEntries.h>

bool NqOneDofGripperEndEffector::read(NqXmlReader& reader) {
    reset();
    return NqScalarBasedEndEffector::read(reader);
}

template <typename Matrix, typename Visit>
void NqOneDofGripperEndEffector::forEachRow(const NqRowRequest& request, const Matrix& matrix,
                                            const char* message, Visit visit) const {
    initialize(request.manipulator);
    if (m_Joints->master.isEmpty()) {
        return;
    }
    const NqJointList& slaves = m_Joints->slaves;
    for (unsigned i = 0; i <= slaves.size(); ++i) {
        const unsigned row = request.row + i;
        const unsigned column = i == 0 ? m_Joints->master[0].index : slaves[i - 1].index;
        // Slaves that have piled up have no rows of their own.
        if (NqJacobianRows::hasElement(row, column, matrix, message) && i < doc()) {
            visit(i, row, column);
        }
    }
}

void NqOneDofGripperEndEffector::insertRows(const NqRowRequest& request, NqManipulatorActiveState&,
                                            NqReArray& jacobian) const {
    constexpr auto message =
        "NqOneDofGripperEndEffector::insertJacobianComponent(): Indices out of range: row %d and column %d\n";
    forEachRow(request, jacobian, message, [&](unsigned i, unsigned row, unsigned column) {
        const unsigned master = m_Joints->master[0].index;
        if (i == 0) {
            jacobian[row][master] = 1.0;
            return;
        }
        const double w = i <= m_SlaveJointWeights.size() ? m_SlaveJointWeights[i - 1] : 1.0;
        jacobian[row][column] = w == 0.0 ? 0.0 : -1.0 / w;
        if (master < jacobian[row].size()) {
            jacobian[row][master] = w == 0.0 ? 0.0 : 1.0;
        }
    });
}

void NqOneDofGripperEndEffector::insertBits(const NqRowRequest& request,
                                            SparsityDescription& sparsity) const {
    constexpr auto message =
        "NqOneDofGripperEndEffector::insertSparsityComponent(): Indices out of range: row %d and column %d\n";
    forEachRow(request, sparsity, message, [&](unsigned, unsigned row, unsigned column) {
        const unsigned master = m_Joints->master[0].index;
        sparsity[row][column] = true;
        if (master < sparsity[row].size()) {
            sparsity[row][master] = true;
        }
    });
}

void NqOneDofGripperEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                                    NqManipulatorActiveState& state,
                                                    NqEndEffectorPlacement& placement) const {
    if (const double* position = ofMaster(manipulator, state.positionState().jointPositions())) {
        placement.coordSysXForm().setTranslationZ(*position);
    }
}

void NqOneDofGripperEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                                   NqManipulatorActiveState& state, NqXmlRealVector& velocity,
                                                   unsigned start) const {
    const double* rate = ofMaster(manipulator, state.velocityState().jointVelocities());
    NqVelocityEntries::putZeros(start, static_cast<unsigned>(1 + m_Joints->slaves.size()), velocity);
    velocity[start] = rate ? *rate : 0.0;
}

void NqOneDofGripperEndEffector::calculateAcceleration(const NqIndividualManipulator&,
                                                       NqManipulatorActiveState&,
                                                       NqXmlRealVector& acceleration, unsigned start) const {
    NqVelocityEntries::putZeros(start, 1, acceleration);
}

void NqOneDofGripperEndEffector::filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                                           const NqXmlRealVector& previousVelocity,
                                                           double timeStep, NqXmlRealVector& filtered) const {
    NqScalarBasedEndEffector::filterEndEffectorVelocity(desiredVelocity, previousVelocity, timeStep,
                                                        filtered);
    filtered.resize(doc());
}

void NqOneDofGripperEndEffector::insertCommand(const NqTargetRequest& request,
                                               NqXmlRealVector& filtered) const {
    if (const double* position =
            ofMaster(request.manipulator, request.state.positionState().jointPositions())) {
        filterNumber(*position, number(request.desiredPlacement), request, filtered);
    } else {
        filtered.clear();
    }
    filtered.resize(doc());
}

void NqOneDofGripperEndEffector::calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                                           const NqEndEffectorPlacement& desiredPlacement,
                                                           NqManipulatorActiveState& state,
                                                           NqXmlRealVector& error) const {
    error.assign(doc(), 0.0);
    if (const double* position = ofMaster(manipulator, state.positionState().jointPositions())) {
        error[0] = *position - number(desiredPlacement);
    }
}

void NqOneDofGripperEndEffector::setSlaveJointLabels(const NqLabelVector& labels) {
    m_SlaveJointLabels = labels;
    reset();
}

void NqOneDofGripperEndEffector::setSlaveJointWeights(const NqXmlRealVector& weights) {
    m_SlaveJointWeights = weights;
    reset();
}

void NqOneDofGripperEndEffector::initialize(const NqIndividualManipulator& manipulator) const {
    if (!m_Joints->master.isEmpty()) {
        return;
    }
    m_Joints->master.appendFound(manipulator, linkIdentifier());
    for (const auto& label : m_SlaveJointLabels) {
        m_Joints->slaves.appendFound(manipulator, label);
    }
}

void NqOneDofGripperEndEffector::reset() const {
    m_Joints->master.clear();
    m_Joints->slaves.clear();
}

const double* NqOneDofGripperEndEffector::ofMaster(const NqIndividualManipulator& manipulator,
                                                   const NqXmlRealVector& values) const {
    initialize(manipulator);
    const NqJointList& master = m_Joints->master;
    return !master.isEmpty() && master[0].index < values.size() ? &values[master[0].index] : nullptr;
}

const NqEditableValueTable<NqOneDofGripperEndEffector>& NqOneDofGripperEndEffector::editableTable() {
    using E = NqOneDofGripperEndEffector;
    using Table = NqEditableValueTable<E>;
    static const Table table = {
        Table::number("Fully-closed Position",
                      "The value of the position at which the gripper is considered fully closed.",
                      &E::fullyClosedPosition, &E::setFullyClosedPosition),
        Table::number("Fully-open Position",
                      "The value of the position at which the gripper is considered fully open.",
                      &E::fullyOpenPosition, &E::setFullyOpenPosition),
        Table::list("Slave Joints", "The names of slave joints (or links) separated by commas.",
                    &E::slaveJointLabels, &E::setSlaveJointLabels),
        Table::list("Slave Joint Weights", "The weights of slave joints separated by commas.",
                    &E::slaveJointWeights, &E::setSlaveJointWeights),
        limitRows<E>("Linear", {"The maximum linear velocity the end effector can achieve (m/s).",
                                "The maximum linear acceleration the end effector can achieve (m/s^2).",
                                "The maximum linear deceleration the end effector can achieve (m/s^2)."}),
        Table::modeWord(
            "The velocity profile type.  Current supported values are: trapezoidal and proportional.",
            theFilterPart),
    };
    return table;
}
