#pragma once

#include <nqControlCore/endeffector/NqTargetRequest.h>
#include <nqControlCore/filter/NqScalarMotionFilter.h>
#include <nqControlCore/filter/NqTrapezoidalProfileTool.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>

#include <vector>

/// Joints that are filtered one by one and arrive at their targets together.
///
/// Each has a scalar motion filter with a trapezoidal profile. When the target changes, by more than 1e-9 in
/// any joint, the least time of each joint's move is found from its distance, its velocity, and its limits.
/// The slowest joint, the first of several, keeps its limit of speed; each other one gets the speed at which
/// its own move takes as long, or keeps its limit, with a message, where there is none. Until the next target
/// these stay the limits of the filters.
class NqJointCoordination {
public:
    /// By joint index: rad/s or m/s, rad/s^2 or m/s^2.
    struct Limits {
        std::vector<double> velocities;
        std::vector<double> accelerations;
    };

    /// The limits of all joints of the manipulator. A joint's are to be set before it is appended; that of
    /// speed is looked at again with each target.
    Limits& limits() { return m_Limits; }

    bool isEmpty() const { return m_Joints.empty(); }
    unsigned size() const { return static_cast<unsigned>(m_Joints.size()); }
    unsigned jointIndex(unsigned i) const { return m_Joints[i].index; }

    void append(unsigned jointIndex);
    /// Forgets the joints, but neither limits nor target.
    void clear() { m_Joints.clear(); }

    /// Takes a target: of as many numbers as there are joints in their order, of more by joint index. False
    /// where there are fewer.
    bool takeTarget(const NqXmlRealVector& values);
    double target(unsigned i) const { return m_Target[i]; }

    /// Picks the joints' entries by joint index; one that isn't there leaves what was selected.
    void select(const std::vector<double>& all, std::vector<double>& selected) const;

    /// The velocities towards the target that was taken. Missing entries are zero.
    void filterTowardsTarget(const NqTargetRequest& request, NqXmlRealVector& filtered);

    /// The velocities under each joint's own limits, which from then on are those of the filters.
    void filterVelocity(const NqXmlRealVector& desiredVelocity, const NqXmlRealVector& previousVelocity,
                        double timeStep, NqXmlRealVector& filtered);

    /// Least time of the slowest joint, from the velocities at the last change of target.
    double minimumTime(const NqXmlRealVector& from, const NqXmlRealVector& to) const;

    /// Those of the filters; 1 and true without joints, and not to be set then.
    double speedFactor() const { return isEmpty() ? 1.0 : m_Joints.front().filter.speedFactor(); }
    void setSpeedFactor(double factor);
    bool filteringActive() const { return isEmpty() || m_Joints.front().filter.filteringActive(); }
    void setFilteringActive(bool active);

private:
    struct Joint {
        unsigned index;
        NqScalarMotionFilter filter;
        NqTrapezoidalProfileTool profile;
    };

    bool hasNewTarget() const;
    void coordinate(const NqXmlRealVector& positions, const NqXmlRealVector& velocities);

    Limits m_Limits;
    std::vector<Joint> m_Joints;
    NqXmlRealVector m_Target;
    NqXmlRealVector m_CoordinatedTarget; ///< that of the last step
};
