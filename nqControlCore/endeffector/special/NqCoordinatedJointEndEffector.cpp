#include <nqControlCore/endeffector/special/NqCoordinatedJointEndEffector.h>

#include <nqControlCore/core/NqControlParameters.h>
#include <nqControlCore/endeffector/NqVelocityEntries.h>

#include <algorithm>
#include <cmath>

using NqVelocityEntries::numberAt;

namespace {

/// From which change on a target is another one.
constexpr double kTargetTolerance = 1.0e-9;

/// What placements of different length are apart.
constexpr double kIncomparable = 1000.0;

/// From which rate limit on a joint counts as without one.
constexpr double kUnlimitedRate = 1000.0;

bool isOtherTarget(const NqXmlRealVector& a, const NqXmlRealVector& b) {
    return a.size() != b.size() || !std::equal(a.begin(), a.end(), b.begin(), [](double x, double y) {
               return !(std::fabs(x - y) > kTargetTolerance);
           });
}

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
    // An assigned object may remember more joints than it has rows.
    const unsigned count = std::min(static_cast<unsigned>(m_Work->joints.size()), doc());
    for (unsigned k = 0; k < count; ++k) {
        const unsigned row = request.row + k;
        const unsigned column = m_Work->joints[k].index;
        if (NqJacobianRows::hasElement(row, column, matrix, message)) {
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
    values.resize(std::min(m_Work->joints.size(), positions.size()));
    for (std::size_t k = 0; k < values.size(); ++k) {
        values[k] = numberAt(positions, m_Work->joints[k].index);
    }
}

void NqCoordinatedJointEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                                      NqManipulatorActiveState& state,
                                                      NqXmlRealVector& velocity, unsigned start) const {
    initialize(manipulator);
    const NqXmlRealVector& rates = state.velocityState().jointVelocities();
    velocity.resize(start + m_Work->joints.size());
    for (std::size_t k = 0; k < m_Work->joints.size(); ++k) {
        velocity[start + k] = numberAt(rates, m_Work->joints[k].index);
    }
}

void NqCoordinatedJointEndEffector::filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                                              const NqXmlRealVector& previousVelocity,
                                                              double timeStep,
                                                              NqXmlRealVector& filtered) const {
    Work& work = *m_Work;
    filtered.resize(work.joints.size());
    for (unsigned i = 0; i < work.joints.size(); ++i) {
        Joint& joint = work.joints[i];
        joint.filter.setThreshold(work.maxVelocity(joint));
        joint.filter.filterVelocity(numberAt(desiredVelocity, i), numberAt(previousVelocity, i), timeStep,
                                    filtered[i]);
    }
}

void NqCoordinatedJointEndEffector::filterEndEffectorVelocity(
    const NqIndividualManipulator& manipulator, const NqEndEffectorPlacement& desiredPlacement,
    const NqXmlRealVector& desiredVelocity, const NqXmlRealVector& previousVelocity, double timeStep,
    NqManipulatorActiveState& state, NqXmlRealVector& filtered) const {
    initialize(manipulator);
    Work& work = *m_Work;
    if (!takeTarget(desiredPlacement)) {
        filtered.assign(work.joints.size(), 0.0);
        return;
    }
    const NqXmlRealVector& positions = state.positionState().jointPositions();
    if (isOtherTarget(work.previousDesired, work.desired)) {
        coordinate(positions, previousVelocity);
    }
    filtered.resize(work.joints.size());
    for (unsigned i = 0; i < work.joints.size(); ++i) {
        const Joint& joint = work.joints[i];
        joint.filter.calculateVelocity(numberAt(positions, joint.index), work.desired[i],
                                       numberAt(desiredVelocity, i), numberAt(previousVelocity, i), timeStep,
                                       filtered[i]);
    }
    work.previousDesired = work.desired;
}

void NqCoordinatedJointEndEffector::coordinate(const NqXmlRealVector& positions,
                                               const NqXmlRealVector& velocities) const {
    Work& work = *m_Work;
    const auto distance = [&](unsigned i) {
        return work.desired[i] - numberAt(positions, work.joints[i].index);
    };
    const auto report = [](const char* message) { Nq::Print::instance().write(Nq::PrintFailure, message); };

    double slowestTime = 0.0;
    unsigned slowest = 0;
    for (unsigned i = 0; i < work.joints.size(); ++i) {
        NqTrapezoidalProfileTool& profile = work.joints[i].profile;
        profile.setInitialVelocity(numberAt(velocities, i));
        double time = 0.0;
        if (!profile.computeMinimumTime(distance(i), time)) {
            report("NqCoordinatedJointEndEffector::filterEndEffectorVelocity - Failed to compute minimum "
                   "time");
        } else if (time > slowestTime) {
            slowestTime = time;
            slowest = i;
        }
    }

    for (unsigned i = 0; i < work.joints.size(); ++i) {
        Joint& joint = work.joints[i];
        double threshold = work.maxVelocity(joint);
        double cruise = 0.0;
        if (i != slowest && !joint.profile.computeProfileVelocity(distance(i), slowestTime, cruise)) {
            report("NqCoordinatedJointEndEffector::filterEndEffectorVelocity - Failed to compute profile "
                   "velocity");
        } else if (i != slowest && joint.filter.speedFactor() > 0.0) {
            threshold = std::fabs(cruise) / joint.filter.speedFactor(); // the filter multiplies by it
        }
        joint.filter.setThreshold(threshold);
    }
}

void NqCoordinatedJointEndEffector::calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                                              const NqEndEffectorPlacement& desiredPlacement,
                                                              NqManipulatorActiveState& state,
                                                              NqXmlRealVector& error) const {
    initialize(manipulator);
    const Work& work = *m_Work;
    error.assign(work.joints.size(), 0.0);
    if (!takeTarget(desiredPlacement)) {
        return;
    }
    const NqXmlRealVector& positions = state.positionState().jointPositions();
    for (std::size_t i = 0; i < work.joints.size(); ++i) {
        error[i] = work.desired[i] - numberAt(positions, work.joints[i].index);
    }
}

double NqCoordinatedJointEndEffector::minimumTime(const NqEndEffectorPlacement& from,
                                                  const NqEndEffectorPlacement& to) const {
    const std::size_t count =
        std::min({from.dataVector().size(), to.dataVector().size(), m_Work->joints.size()});
    double slowestTime = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        double time = 0.0;
        m_Work->joints[i].profile.computeMinimumTime(to.dataVector()[i] - from.dataVector()[i], time);
        slowestTime = std::max(slowestTime, time);
    }
    return slowestTime;
}

double NqCoordinatedJointEndEffector::difference(const NqEndEffectorPlacement& a,
                                                 const NqEndEffectorPlacement& b) const {
    if (a.dataVector().size() != b.dataVector().size()) {
        return kIncomparable;
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < a.dataVector().size(); ++i) {
        sum += std::fabs(a.dataVector()[i] - b.dataVector()[i]);
    }
    return sum;
}

double NqCoordinatedJointEndEffector::speedFactor() const {
    return m_Work->joints.empty() ? 1.0 : m_Work->joints.front().filter.speedFactor();
}

void NqCoordinatedJointEndEffector::setSpeedFactor(double factor) {
    for (Joint& joint : m_Work->joints) {
        joint.filter.setSpeedFactor(factor);
        joint.profile.setSpeedFactor(factor);
    }
}

bool NqCoordinatedJointEndEffector::filteringActive() const {
    return m_Work->joints.empty() || m_Work->joints.front().filter.filteringActive();
}

void NqCoordinatedJointEndEffector::setFilteringActive(bool active) {
    for (Joint& joint : m_Work->joints) {
        joint.filter.setFilteringActive(active);
    }
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

void NqCoordinatedJointEndEffector::initializeWithControlParams(const NqIndividualManipulator& manipulator,
                                                                const NqControlParameters& parameters) {
    Work& work = *m_Work;
    const std::vector<double>& velocities = parameters.velocityLimits().values();
    const std::vector<double>& accelerations = parameters.accelerationLimits().values();
    if (!m_UseControlParameters ||
        (work.maxVelocities == velocities && work.accelerations == accelerations)) {
        return;
    }
    const auto limitsOf = [&](const std::vector<double>& limits, double theDefault) {
        std::vector<double> result = limits;
        result.resize(manipulator.numberOfJoints(), theDefault);
        return result;
    };
    work.maxVelocities = limitsOf(velocities, m_DefaultMaxVelocity);
    work.accelerations = limitsOf(accelerations, m_DefaultProfileAcceleration);
    reset();
    makeJoints(manipulator, [](unsigned, unsigned) {});
}

void NqCoordinatedJointEndEffector::initialize(const NqIndividualManipulator& manipulator) const {
    Work& work = *m_Work;
    if (!work.joints.empty()) {
        return;
    }
    work.maxVelocities.assign(manipulator.numberOfJoints(), m_DefaultMaxVelocity);
    work.accelerations.assign(manipulator.numberOfJoints(), m_DefaultProfileAcceleration);
    makeJoints(manipulator, [&](unsigned label, unsigned joint) {
        work.maxVelocities[joint] =
            label < m_MaxVelocities.size() ? m_MaxVelocities[label] : m_DefaultMaxVelocity.value();
        work.accelerations[joint] = label < m_ProfileAccelerations.size()
                                        ? m_ProfileAccelerations[label]
                                        : m_DefaultProfileAcceleration.value();
    });
}

template <typename Limit>
void NqCoordinatedJointEndEffector::makeJoints(const NqIndividualManipulator& manipulator,
                                               Limit limit) const {
    Work& work = *m_Work;
    for (unsigned label = 0; label < m_LinkLabels.size(); ++label) {
        const NqManipulatorLink* link = manipulator.linkByLabel(m_LinkLabels[label]);
        if (!NqJointList::hasJoint(link)) {
            continue;
        }
        const unsigned index = link->jointIndex();
        limit(label, index);
        const double velocity = work.maxVelocities[index];
        const double acceleration = work.accelerations[index];
        Joint joint{index, {}, {}};
        joint.filter.setFilteringMode(NqBaseMotionFilter::Trapezoidal);
        joint.filter.setThreshold(velocity);
        joint.filter.setAccelerationThreshold(acceleration);
        joint.filter.setDecelerationThreshold(acceleration);
        joint.profile.setParameters(acceleration, velocity, 0.0);
        work.joints.push_back(joint);
    }
}

void NqCoordinatedJointEndEffector::reset() const {
    m_Work->joints.clear();
}

bool NqCoordinatedJointEndEffector::takeTarget(const NqEndEffectorPlacement& placement) const {
    Work& work = *m_Work;
    const NqXmlRealVector& values = placement.dataVector();
    if (values.size() < work.joints.size()) {
        return false;
    }
    if (values.size() > work.joints.size()) {
        reorderJointPositions(values.values(), work.desired.values());
    } else {
        work.desired = values;
    }
    return true;
}

void NqCoordinatedJointEndEffector::reorderJointPositions(const std::vector<double>& all,
                                                          std::vector<double>& selected) const {
    const std::vector<Joint>& joints = m_Work->joints;
    selected.resize(joints.size());
    for (std::size_t k = 0; k < joints.size(); ++k) {
        if (joints[k].index < all.size()) {
            selected[k] = all[joints[k].index];
        }
    }
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
