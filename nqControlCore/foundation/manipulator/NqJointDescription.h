#pragma once

#include <nqControlCore/foundation/math/NqGeneralMotion.h>

#include <limits>
#include <string>

/// What joins a link to its parent: kind, name and limits of the joint. Default is a fixed joint.
///
/// A revolute joint turns its link about the z axis of the link's DH frame, a prismatic one slides it along
/// that axis; positions are rad or m. A limit that isn't set is infinite.
class NqJointDescription {
public:
    enum Type { Fixed, Revolute, Prismatic };

    NqJointDescription() = default;
    explicit NqJointDescription(Type type, std::string name = std::string());
    virtual ~NqJointDescription() = default;
    NqJointDescription(const NqJointDescription&) = default;
    NqJointDescription(NqJointDescription&&) = default;
    NqJointDescription& operator=(const NqJointDescription&) = default;
    NqJointDescription& operator=(NqJointDescription&&) = default;

    /// Motion of the link's DH frame relative to its parent, in the axes of that frame, at joint rate `rate`;
    /// for these joints it is the same at every position. The result for a rate other than 1 holds until the
    /// thread's next call.
    virtual const NqGeneralMotion& jointMotion(double position, double rate) const;

    Type type() const { return m_Type; }
    const std::string& name() const { return m_Name; }

    /// Whether the joint is revolute and turns without end.
    bool isContinuous() const { return m_Type == Revolute && !hasPositionLimits(); }
    bool hasPositionLimits() const {
        return m_LowerPositionLimit > -s_Unlimited || m_UpperPositionLimit < s_Unlimited;
    }
    double lowerPositionLimit() const { return m_LowerPositionLimit; }
    double upperPositionLimit() const { return m_UpperPositionLimit; }
    /// Largest magnitude of the rate, rad/s or m/s.
    double rateLimit() const { return m_RateLimit; }
    /// Largest magnitude of torque (N m) or force (N).
    double effortLimit() const { return m_EffortLimit; }

    void setPositionLimits(double lower, double upper);
    void setRateLimit(double limit) { m_RateLimit = limit; }
    void setEffortLimit(double limit) { m_EffortLimit = limit; }

    bool operator==(const NqJointDescription&) const = default;

private:
    static constexpr double s_Unlimited = std::numeric_limits<double>::infinity();

    Type m_Type = Fixed;
    std::string m_Name;
    double m_LowerPositionLimit = -s_Unlimited;
    double m_UpperPositionLimit = s_Unlimited;
    double m_RateLimit = s_Unlimited;
    double m_EffortLimit = s_Unlimited;
};
