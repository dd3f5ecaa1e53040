#pragma once

#include <nqControlLoop/NqControlLoopTokens.h>

#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlEnumType.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>
#include <nqControlCore/xml/NqXmlVectorType.h>

/// All that a control loop is told besides its end-effectors and their targets. Lists have an entry for each
/// joint, by joint index; an empty one stands for the default.
class NqControlLoopSettings : public NqXmlPersistent<NqControlLoopSettings, NqXmlCompoundType> {
public:
    /// What to do where limits block the straight way to the targets altogether.
    enum Blocked : unsigned int {
        Hold, ///< stay on the way, at rest
        Slide ///< leave it by the least error that the limits allow
    };
    using Labels = NqXmlVectorType<NqXmlBasicType<std::string>>;

    static const NqToken& classToken();
    bool xmlInit() override;

    /// s.
    double timeStep() const { return m_TimeStep; }
    void setTimeStep(double timeStep) { m_TimeStep = timeStep; }

    /// Above 0: a joint with more weight moves less. Default: 1 each.
    const NqXmlRealVector& jointWeights() const { return m_JointWeights; }
    void setJointWeights(const NqXmlRealVector& weights) { m_JointWeights = weights; }

    /// What free joints drift to, at the gain (1/s) times their distance from it. Default: no posture.
    const NqXmlRealVector& posture() const { return m_Posture; }
    void setPosture(const NqXmlRealVector& posture) { m_Posture = posture; }
    double postureGain() const { return m_PostureGain; }
    void setPostureGain(double gain) { m_PostureGain = gain; }

    /// Factor on the error weights of soft end-effectors.
    double softGain() const { return m_SoftGain; }
    void setSoftGain(double gain) { m_SoftGain = gain; }

    /// Largest magnitude of acceleration, rad/s^2 or m/s^2. Default: what takes a joint to its limit of rate
    /// in accelerationTime() (s; 0 for no limits).
    const NqXmlRealVector& accelerationLimits() const { return m_AccelerationLimits; }
    void setAccelerationLimits(const NqXmlRealVector& limits) { m_AccelerationLimits = limits; }
    double accelerationTime() const { return m_AccelerationTime; }
    void setAccelerationTime(double time) { m_AccelerationTime = time; }

    /// How fast a joint may approach the end of its range, for its distance from there (1/s).
    double approach() const { return m_Approach; }
    void setApproach(double approach) { m_Approach = approach; }

    Blocked blocked() const { return static_cast<Blocked>(m_Blocked.value()); }
    void setBlocked(Blocked blocked) { m_Blocked = blocked; }

    /// Least singular value of the hard rows below which the direction that belongs to it is damped, and the
    /// damping that it has at 0. With a threshold of 0 only directions that no joint moves are left out.
    double singularityThreshold() const { return m_SingularityThreshold; }
    void setSingularityThreshold(double threshold) { m_SingularityThreshold = threshold; }
    double damping() const { return m_Damping; }
    void setDamping(double damping) { m_Damping = damping; }

    /// What is left to a target (m, rad) at which it counts as reached, for the status alone.
    double tolerance() const { return m_Tolerance; }
    void setTolerance(double tolerance) { m_Tolerance = tolerance; }

    /// Names of joints, or labels of the links they move, that take no part.
    const Labels& heldJoints() const { return m_HeldJoints; }
    void setHeldJoints(const Labels& labels) { m_HeldJoints = labels; }

    /// Whether the base stands still. One that doesn't adds six unknowns, with weights of their own (the
    /// motion along x, y, z and about them; default 1).
    bool isBaseFixed() const { return m_IsBaseFixed; }
    void setIsBaseFixed(bool isFixed) { m_IsBaseFixed = isFixed; }
    const NqXmlRealVector& baseWeights() const { return m_BaseWeights; }
    void setBaseWeights(const NqXmlRealVector& weights) { m_BaseWeights = weights; }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqLoop;
        using S = NqControlLoopSettings;
        return nqComponentList(
            nqComponent(NqTimeStepToken, &S::m_TimeStep),
            nqComponent(NqJointWeightsToken, &S::m_JointWeights), nqComponent(NqPostureToken, &S::m_Posture),
            nqComponent(NqPostureGainToken, &S::m_PostureGain), nqComponent(NqSoftGainToken, &S::m_SoftGain),
            nqComponent(NqAccelerationLimitsToken, &S::m_AccelerationLimits),
            nqComponent(NqAccelerationTimeToken, &S::m_AccelerationTime),
            nqComponent(NqApproachToken, &S::m_Approach), nqComponent(NqBlockedToken, &S::m_Blocked),
            nqComponent(NqSingularityThresholdToken, &S::m_SingularityThreshold),
            nqComponent(NqDampingToken, &S::m_Damping), nqComponent(NqToleranceToken, &S::m_Tolerance),
            nqComponent(NqHeldJointsToken, &S::m_HeldJoints),
            nqComponent(NqIsBaseFixedToken, &S::m_IsBaseFixed),
            nqComponent(NqBaseWeightsToken, &S::m_BaseWeights));
    }

    NqXmlBasicType<double> m_TimeStep = 0.001;
    NqXmlRealVector m_JointWeights;
    NqXmlRealVector m_Posture;
    NqXmlBasicType<double> m_PostureGain = 1.0;
    NqXmlBasicType<double> m_SoftGain = 1000.0;
    NqXmlRealVector m_AccelerationLimits;
    NqXmlBasicType<double> m_AccelerationTime = 0.1;
    NqXmlBasicType<double> m_Approach = 10.0;
    NqXmlEnumType<unsigned int> m_Blocked = Slide;
    NqXmlBasicType<double> m_SingularityThreshold = 0.05;
    NqXmlBasicType<double> m_Damping = 0.05;
    NqXmlBasicType<double> m_Tolerance = 1.0e-4;
    Labels m_HeldJoints;
    NqXmlBasicType<bool> m_IsBaseFixed = true;
    NqXmlRealVector m_BaseWeights;
};
