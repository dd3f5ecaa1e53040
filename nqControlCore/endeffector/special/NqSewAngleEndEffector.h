#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqRowEndEffector.h>
#include <nqControlCore/endeffector/NqTargetedEndEffector.h>
#include <nqControlCore/endeffector/NqUnfilteredEndEffector.h>
#include <nqControlCore/foundation/math/NqDroppedOnCopy.h>
#include <nqControlCore/foundation/math/NqMath.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

/// Constrains the swivel of an arm like a man's: the angle by which the elbow swings about the line from the
/// shoulder to the wrist (shoulder, elbow, wrist: SEW). One row.
///
/// Wrist and elbow are points, each fixed in its link, as seen from the primary frame of the shoulder link.
/// With w and e the unit vectors to them, x the x axis of that frame and n = w x e the normal of the arm, the
/// angle is
///
///     atan2(-x . n, (w x x) . n)
///
/// in rad, from -pi to pi: zero where the elbow lies in the half plane of w and x, positive where it has
/// turned about w from there. It stands in the z translation of the placement. Nothing takes the shorter way
/// round: difference and filter see 3.1 and -3.1 as 6.2 apart.
///
/// The row is the derivative of the angle in the joints behind the shoulder's own, up to the wrist's. With
/// the arm straight, or the upper arm along w, n is zero and the row is not finite; so it is with w along x.
/// Joints up to the shoulder's own and the base turn the arm together with the frame that the angle is
/// measured in: their columns are zero. The velocity nevertheless counts the shoulder's own joint and the
/// motion of the base, as though the frame rested, so it is J x only where these are at rest.
///
/// Relative links and external offsets play no part, nor does the link that the base class names, and
/// changeLinkLabel() changes that one alone. The error is always zero.
///
/// The elbow must be a link between the wrist and the base, the shoulder the elbow itself or a link between
/// it and the base, and both must have a joint of their own, which a body fixed to another hasn't. A label
/// that doesn't fit is told with a message, and the row is zero. Links that were found are remembered; from
/// then on their labels are only looked up again, so that another manipulator gives its own links, in
/// whatever order these are.
class NqSewAngleEndEffector
    : public NqConcreteEndEffector<
          NqSewAngleEndEffector,
          NqTargetedEndEffector<NqSewAngleEndEffector,
                                NqRowEndEffector<NqSewAngleEndEffector, NqUnfilteredEndEffector>>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqSewAngleEndEffectorToken; }
    static constexpr const char* theTooltip =
        "A 1-dof end-effector that controls an angle of the elbow swinging around the SEW "
        "(Shoulder-Elbow-Wrist) plane. This is mostly applicable to a 7-dof anthropomorphic arm.";
    static const NqEditableValueTable<NqSewAngleEndEffector>& editableTable();

    /// Forgets the links.
    bool read(NqXmlReader& reader) override;

    unsigned doc() const override { return 1; }

    void insertRows(const NqRowRequest& request, NqManipulatorActiveState& state, NqReArray& jacobian) const;
    void insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const;

    /// Left alone where the links are not found.
    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;

    /// The rate of the angle, as said above; 0, in a list that is lengthened but not cut, where the links are
    /// not found.
    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override;

    /// gain() times the way from the present to the desired angle, but at most motionThreshold(). Velocities,
    /// time step and speed factor play no part.
    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const;

    double minimumTime(const NqEndEffectorPlacement& from, const NqEndEffectorPlacement& to) const override;

    /// The distance between the angles, the long way round where that is the way between the numbers.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    /// Limit of the speed, rad/s.
    double motionThreshold() const override { return m_Threshold; }
    void setMotionThreshold(double threshold) override { m_Threshold = threshold; }

    /// Factor on the limit of speed in the minimum time, and nowhere else. Neither persisted nor compared.
    double speedFactor() const override { return m_SpeedFactor; }
    void setSpeedFactor(double factor) override { m_SpeedFactor = factor; }

    /// Labels of the links.
    virtual const std::string& shoulderLink() const { return m_ShoulderLink; }
    virtual void setShoulderLink(const std::string& label);
    virtual const std::string& elbowLink() const { return m_ElbowLink; }
    virtual void setElbowLink(const std::string& label);
    virtual const std::string& wristLink() const { return m_WristLink; }
    virtual void setWristLink(const std::string& label);

    /// The points, each in the primary frame of its link.
    virtual const NqVector& elbowPoint() const { return m_ElbowPoint.value(); }
    virtual void setElbowPoint(const NqVector& point) { m_ElbowPoint = point; }
    virtual const NqVector& wristPoint() const { return m_WristPoint.value(); }
    virtual void setWristPoint(const NqVector& point) { m_WristPoint = point; }

    /// What the filter multiplies the way by, 1/s.
    virtual double gain() const { return m_Gain; }
    virtual void setGain(double gain) { m_Gain = gain; }

    virtual const double& errorWeight() const { return m_ErrorWeight.value(); }
    virtual void setErrorWeight(const double& weight) { m_ErrorWeight = weight; }

protected:
    /// Finds the links, or looks up again those that are remembered.
    virtual void setLinkPointers(const NqIndividualManipulator& manipulator) const;
    virtual void clearLinkPointers() const;

    /// Velocity of a point fixed in a link, in the system frame.
    virtual NqVector pointVelocity(const NqManipulatorLink& link, const NqVector& point,
                                   NqManipulatorActiveState& activeState) const;

    /// The rate of a vector's unit vector, from that of the vector; for a zero vector the rate itself.
    virtual void unitVectorDerivative(const NqVector& vector, const NqVector& vectorRate,
                                      NqVector& unitRate) const;

    /// The rate of the angle, from those of w and e in the shoulder's frame.
    virtual double sewDerivative(const NqVector& wristUnitRate, const NqVector& elbowUnitRate) const;

    /// Brings the arm as seen from the shoulder up to date. The links must have been found.
    virtual void calculateIntermediates(NqManipulatorActivePositionState& activePositionState) const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using E = NqSewAngleEndEffector;
        return nqComponentList(
            nqComponent(NqShoulderLinkToken, &E::m_ShoulderLink),
            nqComponent(NqElbowLinkToken, &E::m_ElbowLink), nqComponent(NqWristLinkToken, &E::m_WristLink),
            nqComponent(NqElbowPointToken, &E::m_ElbowPoint),
            nqComponent(NqWristPointToken, &E::m_WristPoint), nqComponent(NqGainToken, &E::m_Gain),
            nqComponent(NqThresholdToken, &E::m_Threshold),
            nqComponent(NqErrorWeightToken, &E::m_ErrorWeight));
    }

    /// Links of a manipulator; either all of them or none.
    struct Links {
        const NqManipulatorLink* shoulder = nullptr;
        const NqManipulatorLink* elbow = nullptr;
        const NqManipulatorLink* wrist = nullptr;
    };

    /// The arm in the frame of the shoulder link.
    struct Arm {
        NqCoordinateSystemTransformation shoulderFrameInverse; ///< from the system to that frame
        NqVector wrist, elbow;
        NqVector wristUnit, elbowUnit;
        NqVector referenceNormal; ///< w x x
        NqVector normal;          ///< n
        double onReference() const { return referenceNormal.dot(normal); }
        double onX() const { return normal.x(); }
    };

    /// Calls `visit(link)` for each link from the wrist's to the one behind the shoulder's.
    template <typename Visit>
    void forEachLinkBehindShoulder(Visit visit) const;

    NqXmlBasicType<std::string> m_ShoulderLink;
    NqXmlBasicType<std::string> m_ElbowLink;
    NqXmlBasicType<std::string> m_WristLink;
    NqXmlVector m_ElbowPoint;
    NqXmlVector m_WristPoint;
    NqXmlBasicType<double> m_Gain = 50.0;
    NqXmlBasicType<double> m_Threshold = 1.0;
    NqXmlBasicType<double> m_ErrorWeight = 1.0;

    double m_SpeedFactor = 1.0;

    mutable NqDroppedOnCopy<Links> m_Links;
    mutable NqUncopied<Arm> m_Arm;
    mutable NqUncopied<NqManipulatorActiveState> m_StateFromShoulder;
    mutable NqUncopied<NqVelocityState> m_RatesFromShoulder;
};
