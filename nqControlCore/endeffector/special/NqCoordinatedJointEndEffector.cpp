#include <nqControlCore/endeffector/special/NqCoordinatedJointEndEffector.h>

#include <nqControlCore/core/NqControlParameters.h>
#include <nqControlCore/endeffector/NqVelocityEntries.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

using NqVelocityEntries::numberAt;

namespace {

/// What placements of different length are apart.
constexpr double kIncomparable = 1000.0;

/// From which rate limit on a joint counts as without one.
constexpr double kUnlimitedRate = 1000.0;

} // namespace

NqCoordinatedJointEndEffector
NqCoordinatedJointEndEffector::defaultJointControlEndEffector(const NqIndividualManipulator& manipulator,
                                                              double speedScale) {
    NqLabelVector labels;
    NqXmlRealVector velocities, accelerations;
    for (unsigned j = 0; j < manipulator.numberOfJoints(); ++j) {
        const NqManipulatorLink& link = *manipulator.linkByIndex(j);
        const double limit = link.joint().rateLimit();
        const double speed = (limit < kUnlimitedRate ? limit : 1.0) * speedScale;
        labels.pushBack(link.linkLabel());
        velocities.pushBack(speed);
        accelerations.pushBack(2.0 * speed);
    }
    NqCoordinatedJointEndEffector endEffector;
    endEffector.setLinkIdentifier(manipulator.manipulatorLabel());
    endEffector.setLinkLabels(labels);
    endEffector.setMaxVelocities(velocities);
    endEffector.setProfileAccelerations(accelerations);
    return endEffector;
}

bool NqCoordinatedJointEndEffector::read(NqXmlReader& reader) {
    reset();
    return NqUnfilteredEndEffector::read(reader);
}

template <typename Matrix, typename Visit>
void NqCoordinatedJointEndEffector::forEachElement(const NqRowRequest& request, const Matrix& matrix,
                                                   const char* message, Visit visit) const {
    initialize(request.manipulator);
    for (unsigned k = 0; k < m_Joints->size(); ++k) {
        const unsigned row = request.row + k;
        const unsigned column = m_Joints->jointIndex(k);
        // An assigned object may remember more joints than it has rows.
        if (NqJacobianRows::hasElement(row, column, matrix, message) && k < doc()) {
            visit(row, column);
        }
    }
}

void NqCoordinatedJointEndEffector::insertRows(const NqRowRequest& request, NqManipulatorActiveState&,
                                               NqReArray& jacobian) const {
    forEachElement(request, jacobian,
                   "NqCoordinatedJointEndEffector::insertJacobianComponent(): Indices out of range: row %d "
                   "and column %d\n",
                   [&](unsigned row, unsigned column) { jacobian[row][column] = 1.0; });
}

void NqCoordinatedJointEndEffector::insertBits(const NqRowRequest& request,
                                               SparsityDescription& sparsity) const {
    forEachElement(request, sparsity,
                   "NqCoordinatedJointEndEffector::insertSparsityComponent(): Indices out of range: row %d "
                   "and column %d\n",
                   [&](unsigned row, unsigned column) { sparsity[row][column] = true; });
}

void NqCoordinatedJointEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                                       NqManipulatorActiveState& state,
                                                       NqEndEffectorPlacement& placement) const {
    initialize(manipulator);
    const NqXmlRealVector& positions = state.positionState().jointPositions();
    NqXmlRealVector& values = placement.dataVector();
    values.resize(std::min<std::size_t>(m_Joints->size(), positions.size()));
    for (unsigned k = 0; k < values.size(); ++k) {
        values[k] = numberAt(positions, m_Joints->jointIndex(k));
    }
}

void NqCoordinatedJointEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                                      NqManipulatorActiveState& state,
                                                      NqXmlRealVector& velocity, unsigned start) const {
    initialize(manipulator);
    const NqXmlRealVector& rates = state.velocityState().jointVelocities();
    velocity.resize(start + m_Joints->size());
    for (unsigned k = 0; k < m_Joints->size(); ++k) {
        velocity[start + k] = numberAt(rates, m_Joints->jointIndex(k));
    }
}

void NqCoordinatedJointEndEffector::filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                                              const NqXmlRealVector& previousVelocity,
                                                              double timeStep,
                                                              NqXmlRealVector& filtered) const {
    m_Joints->filterVelocity(desiredVelocity, previousVelocity, timeStep, filtered);
}

void NqCoordinatedJointEndEffector::insertCommand(const NqTargetRequest& request,
                                                  NqXmlRealVector& filtered) const {
    initialize(request.manipulator);
    if (m_Joints->takeTarget(request.desiredPlacement.dataVector())) {
        m_Joints->filterTowardsTarget(request, filtered);
    } else {
        filtered.assign(m_Joints->size(), 0.0);
    }
}

void NqCoordinatedJointEndEffector::calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                                              const NqEndEffectorPlacement& desiredPlacement,
                                                              NqManipulatorActiveState& state,
                                                              NqXmlRealVector& error) const {
    initialize(manipulator);
    error.assign(m_Joints->size(), 0.0);
    if (!m_Joints->takeTarget(desiredPlacement.dataVector())) {
        return;
    }
    const NqXmlRealVector& positions = state.positionState().jointPositions();
    for (unsigned k = 0; k < m_Joints->size(); ++k) {
        error[k] = m_Joints->target(k) - numberAt(positions, m_Joints->jointIndex(k));
    }
}

double NqCoordinatedJointEndEffector::minimumTime(const NqEndEffectorPlacement& from,
                                                  const NqEndEffectorPlacement& to) const {
    return m_Joints->minimumTime(from.dataVector(), to.dataVector());
}

double NqCoordinatedJointEndEffector::difference(const NqEndEffectorPlacement& a,
                                                 const NqEndEffectorPlacement& b) const {
    const NqXmlRealVector& from = a.dataVector();
    const NqXmlRealVector& to = b.dataVector();
    if (from.size() != to.size()) {
        return kIncomparable;
    }
    return std::inner_product(from.begin(), from.end(), to.begin(), 0.0, std::plus(),
                              [](double x, double y) { return std::fabs(x - y); });
}

void NqCoordinatedJointEndEffector::setLinkLabels(const NqLabelVector& labels) {
    m_LinkLabels = labels;
    reset();
}

void NqCoordinatedJointEndEffector::setMaxVelocities(const NqXmlRealVector& velocities) {
    m_MaxVelocities = velocities;
    reset();
}

void NqCoordinatedJointEndEffector::setProfileAccelerations(const NqXmlRealVector& accelerations) {
    m_ProfileAccelerations = accelerations;
    reset();
}

template <typename Visit>
void NqCoordinatedJointEndEffector::forEachJoint(const NqIndividualManipulator& manipulator,
                                                 Visit visit) const {
    for (unsigned label = 0; label < m_LinkLabels.size(); ++label) {
        const NqManipulatorLink* link = manipulator.linkByLabel(m_LinkLabels[label]);
        if (NqJointList::hasJoint(link)) {
            visit(label, link->jointIndex());
        }
    }
}

void NqCoordinatedJointEndEffector::initializeWithControlParams(const NqIndividualManipulator& manipulator,
                                                                const NqControlParameters& parameters) {
    const std::vector<double>& velocities = parameters.velocityLimits().values();
    const std::vector<double>& accelerations = parameters.accelerationLimits().values();
    NqJointCoordination::Limits& limits = m_Joints->limits();
    if (!m_UseControlParameters ||
        (limits.velocities == velocities && limits.accelerations == accelerations)) {
        return;
    }
    limits = {velocities, accelerations};
    limits.velocities.resize(manipulator.numberOfJoints(), m_DefaultMaxVelocity);
    limits.accelerations.resize(manipulator.numberOfJoints(), m_DefaultProfileAcceleration);
    reset();
    forEachJoint(manipulator, [&](unsigned, unsigned index) { m_Joints->append(index); });
}

void NqCoordinatedJointEndEffector::initialize(const NqIndividualManipulator& manipulator) const {
    if (!m_Joints->isEmpty()) {
        return;
    }
    const auto limitOf = [](unsigned label, const NqXmlRealVector& limits, double theDefault) {
        return label < limits.size() ? limits[label] : theDefault;
    };
    NqJointCoordination::Limits& limits = m_Joints->limits();
    limits.velocities.assign(manipulator.numberOfJoints(), m_DefaultMaxVelocity);
    limits.accelerations.assign(manipulator.numberOfJoints(), m_DefaultProfileAcceleration);
    forEachJoint(manipulator, [&](unsigned label, unsigned index) {
        limits.velocities[index] = limitOf(label, m_MaxVelocities, m_DefaultMaxVelocity);
        limits.accelerations[index] = limitOf(label, m_ProfileAccelerations, m_DefaultProfileAcceleration);
        m_Joints->append(index);
    });
}

const NqEditableValueTable<NqCoordinatedJointEndEffector>& NqCoordinatedJointEndEffector::editableTable() {
    using E = NqCoordinatedJointEndEffector;
    using Table = NqEditableValueTable<E>;
    static const Table table = {
        Table::list("Links",
                    "The names of links (or joints) used for coordinated joint control separated by commas.",
                    &E::linkLabels, &E::setLinkLabels),
        Table::list("Max Velocities", "The maximum velocities of joints (rad/s or m/s) separated by commas.",
                    &E::maxVelocities, &E::setMaxVelocities),
        Table::list("Accelerations",
                    "The profile accelerations of joints (rad/s^2 or m/s^2) separated by commas.",
                    &E::profileAccelerations, &E::setProfileAccelerations),
        Table::number("Default Max Velocity",
                      "The default maximum joint velocity used if/when the number of links and number of "
                      "max velocities do not match.",
                      &E::defaultMaxVelocity, &E::setDefaultMaxVelocity),
        Table::number("Default acceleration",
                      "The joint acceleration used if/when the number of links and number of accelerations "
                      "do not match.",
                      &E::defaultProfileAcceleration, &E::setDefaultProfileAcceleration),
        Table::hardConstraint(),
        Table::flag("Use Control Parameters",
                    "Use velocity and acceleration limits in the control parameters instead of those "
                    "specified in the end effector.",
                    &E::useControlParameters, &E::setUseControlParameters),
    };
    return table;
}
