#include <nqControlCore/endeffector/special/NqJointCoordination.h>

#include <nqControlCore/endeffector/NqVelocityEntries.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>
#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>
#include <cmath>

using NqVelocityEntries::numberAt;

namespace {

/// From which change on a target is another one.
constexpr double kTargetTolerance = 1.0e-9;

void reportFailure(const char* what) {
    Nq::Print::instance().write(
        Nq::PrintFailure, "NqCoordinatedJointEndEffector::filterEndEffectorVelocity - Failed to compute %s",
        what);
}

} // namespace

void NqJointCoordination::append(unsigned jointIndex) {
    const double velocity = m_Limits.velocities[jointIndex];
    const double acceleration = m_Limits.accelerations[jointIndex];
    Joint joint{jointIndex, {}, {}};
    joint.filter.setFilteringMode(NqBaseMotionFilter::Trapezoidal);
    joint.filter.setThreshold(velocity);
    joint.filter.setAccelerationThreshold(acceleration);
    joint.filter.setDecelerationThreshold(acceleration);
    joint.profile.setParameters(acceleration, velocity, 0.0);
    m_Joints.push_back(joint);
}

bool NqJointCoordination::takeTarget(const NqXmlRealVector& values) {
    if (values.size() < m_Joints.size()) {
        return false;
    }
    if (values.size() > m_Joints.size()) {
        select(values.values(), m_Target.values());
    } else {
        m_Target = values;
    }
    return true;
}

void NqJointCoordination::select(const std::vector<double>& all, std::vector<double>& selected) const {
    selected.resize(m_Joints.size());
    for (std::size_t i = 0; i < m_Joints.size(); ++i) {
        if (m_Joints[i].index < all.size()) {
            selected[i] = all[m_Joints[i].index];
        }
    }
}

void NqJointCoordination::filterTowardsTarget(const NqTargetRequest& request, NqXmlRealVector& filtered) {
    const NqXmlRealVector& positions = request.state.positionState().jointPositions();
    if (hasNewTarget()) {
        coordinate(positions, request.previousVelocity);
    }
    filtered.resize(m_Joints.size());
    for (unsigned i = 0; i < m_Joints.size(); ++i) {
        m_Joints[i].filter.calculateVelocity(
            numberAt(positions, m_Joints[i].index), m_Target[i], numberAt(request.desiredVelocity, i),
            numberAt(request.previousVelocity, i), request.timeStep, filtered[i]);
    }
    m_CoordinatedTarget = m_Target;
}

void NqJointCoordination::filterVelocity(const NqXmlRealVector& desiredVelocity,
                                         const NqXmlRealVector& previousVelocity, double timeStep,
                                         NqXmlRealVector& filtered) {
    filtered.resize(m_Joints.size());
    for (unsigned i = 0; i < m_Joints.size(); ++i) {
        NqScalarMotionFilter& filter = m_Joints[i].filter;
        filter.setThreshold(m_Limits.velocities[m_Joints[i].index]);
        filter.filterVelocity(numberAt(desiredVelocity, i), numberAt(previousVelocity, i), timeStep,
                              filtered[i]);
    }
}

double NqJointCoordination::minimumTime(const NqXmlRealVector& from, const NqXmlRealVector& to) const {
    const std::size_t count = std::min({from.size(), to.size(), m_Joints.size()});
    double slowestTime = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        double time = 0.0;
        m_Joints[i].profile.computeMinimumTime(to[i] - from[i], time);
        slowestTime = std::max(slowestTime, time);
    }
    return slowestTime;
}

void NqJointCoordination::setSpeedFactor(double factor) {
    for (Joint& joint : m_Joints) {
        joint.filter.setSpeedFactor(factor);
        joint.profile.setSpeedFactor(factor);
    }
}

void NqJointCoordination::setFilteringActive(bool active) {
    for (Joint& joint : m_Joints) {
        joint.filter.setFilteringActive(active);
    }
}

bool NqJointCoordination::hasNewTarget() const {
    const auto isSame = [](double a, double b) { return !(std::fabs(a - b) > kTargetTolerance); };
    return !std::equal(m_CoordinatedTarget.begin(), m_CoordinatedTarget.end(), m_Target.begin(),
                       m_Target.end(), isSame);
}

void NqJointCoordination::coordinate(const NqXmlRealVector& positions, const NqXmlRealVector& velocities) {
    const auto distance = [&](unsigned i) { return m_Target[i] - numberAt(positions, m_Joints[i].index); };
    double slowestTime = 0.0;
    unsigned slowest = 0;
    for (unsigned i = 0; i < m_Joints.size(); ++i) {
        NqTrapezoidalProfileTool& profile = m_Joints[i].profile;
        profile.setInitialVelocity(numberAt(velocities, i));
        double time = 0.0;
        if (!profile.computeMinimumTime(distance(i), time)) {
            reportFailure("minimum time");
        } else if (time > slowestTime) {
            slowestTime = time;
            slowest = i;
        }
    }
    for (unsigned i = 0; i < m_Joints.size(); ++i) {
        auto& [index, filter, profile] = m_Joints[i];
        double threshold = m_Limits.velocities[index];
        double cruise = 0.0;
        if (i != slowest && !profile.computeProfileVelocity(distance(i), slowestTime, cruise)) {
            reportFailure("profile velocity");
        } else if (i != slowest && filter.speedFactor() > 0.0) {
            threshold = std::fabs(cruise) / filter.speedFactor(); // the filter multiplies by it
        }
        filter.setThreshold(threshold);
    }
}
