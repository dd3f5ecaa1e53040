#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqRotationBasedEndEffector.h>
#include <nqControlCore/endeffector/NqRowEndEffector.h>
#include <nqControlCore/endeffector/NqTargetedEndEffector.h>
#include <nqControlCore/endeffector/special/NqSagJoints.h>
#include <nqControlCore/foundation/math/NqDroppedOnCopy.h>
#include <nqControlCore/foundation/xml/NqXmlCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

#include <array>

/// Levels a sensor that feels gravity by means of joints that give way, the sag joints: three rows.
///
/// Off, as it starts, it holds up to three sag joints, in the order of their indices:
///
///     row i      1 in the column of the i-th sag joint
///     velocity   the rate of that joint; 0 in rows without one
///     command    -(angularGain q_i), q_i the joint's position, whatever the target
///
/// On, with the sensor frame S fixed in the link that the base class names, G an orientation whose z axis is
/// the direction of gravity g, and k_i the i-th stiffness:
///
///     rows 0, 1  x and y of the sensor's angular velocity in the system frame, for sag joints that carry it
///     row 2      -k_i (a_i . g) in the column of the i-th sag joint, a_i its axis with it and the sag joints
///                before it at 0; of these as many as there are stiffnesses count, at most three
///     command    x and y of the angular velocity by which the motion filter brings the z axis of R S D to
///                that of G, with R the link's orientation and D the desired placement's; and
///                angularGain times the sum of k_i q_i (a_i . g)
///
/// The placement's orientation is G as the sensor sees it, (R S)^-1 G, so that it is D where R S D = G. What
/// a user has to know:
///
/// - It is switched by setIsOn(), which files don't keep.
/// - Velocity and acceleration take the link's whole motion in rows 0 and 1 while it is on, not only what the
///   sag joints do. The acceleration counts the angular acceleration of the link as given in the axes of the
///   sensor frame.
/// - The target for a sensor whose z axis is to point up, against gravity, is half a turn about x. From
///   exactly upside down it isn't led away, since such z axes count as aligned (see NqRotationMotionFilter).
/// - calculateEndEffectorError() gives zeros. Relative links, external offsets and a free base play no part.
/// - Sag joints are looked up once and remembered, also for another manipulator, until their labels are set,
///   read or assigned; labels that are unknown or of the base are left out in silence.
class NqAccelerometerEndEffector
    : public NqConcreteEndEffector<
          NqAccelerometerEndEffector,
          NqTargetedEndEffector<NqAccelerometerEndEffector,
                                NqRowEndEffector<NqAccelerometerEndEffector, NqRotationBasedEndEffector>>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqAccelerometerEndEffectorToken; }
    static constexpr const char* theTooltip =
        "This end effector levels a sensor that feels gravity by joints that sag.";
    static const NqEditableValueTable<NqAccelerometerEndEffector>& editableTable();

    /// Forgets the sag joints.
    bool read(NqXmlReader& reader) override;

    unsigned doc() const override { return NqSagJoints::theMost; }

    void insertRows(const NqRowRequest& request, NqManipulatorActiveState& state, NqReArray& jacobian) const;
    void insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const;

    /// Sets the orientation alone.
    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;

    /// Zeros for a link that is not found, while it is on.
    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override;

    /// The same; only lengthens the list.
    void calculateAcceleration(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                               NqXmlRealVector& acceleration, unsigned start) const override;

    /// While it is on, keeps the desired orientation for the reading. Zeros for a link that is not found.
    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const;

    /// The angle between the orientations times the error weight.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    /// The weight of each row.
    virtual const double& errorWeight() const { return m_ErrorWeight.value(); }
    virtual void setErrorWeight(const double& weight) { m_ErrorWeight = weight; }

    /// Gravity in the system frame, in m/s^2.
    const NqVector& gravityVector() const { return m_GravityVector.value(); }
    void setGravityVector(const NqVector& gravity) { m_GravityVector = gravity; }

    /// The sensor's frame, measured from the primary frame of the link.
    const NqCoordinateSystemTransformation& sensorFrame() const { return m_SensorFrame.value(); }
    void setSensorFrame(const NqCoordinateSystemTransformation& frame) { m_SensorFrame = frame; }

    /// Labels of the links whose joints sag, in any order.
    const NqLabelVector& sagLinkLabels() const { return m_SagLinkLabels; }
    void setSagLinkLabels(const NqLabelVector& labels);

    /// Stiffnesses of the sag joints, in the order of joint indices.
    const NqXmlRealVector& sagStiffness() const { return m_SagStiffness; }
    void setSagStiffness(const NqXmlRealVector& stiffness) { m_SagStiffness = stiffness; }

    bool isOn() const { return m_IsOn; }
    void setIsOn(bool isOn) { m_IsOn = isOn; }

protected:
    /// Looks the sag joints up, unless they are remembered.
    void setSagJointFlags(const NqIndividualManipulator& manipulator) const {
        m_SagJoints->lookUp(manipulator, m_SagLinkLabels);
    }

    /// What the sensor would read if it were level: R S D, with the last desired orientation D, and as one
    /// number the -sum of k_i q_i (a_i . g). False, with a message, where the link is not found.
    bool calculateGravityReadingPlacement(const NqIndividualManipulator& manipulator,
                                          NqManipulatorActiveState& state,
                                          NqEndEffectorPlacement& placement) const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using E = NqAccelerometerEndEffector;
        return nqComponentList(nqComponent(NqLinkLabelsToken, &E::m_SagLinkLabels),
                               nqComponent(NqLinkWeightsToken, &E::m_SagStiffness),
                               nqComponent(NqFrameToken, &E::m_SensorFrame),
                               nqComponent(NqErrorWeightToken, &E::m_ErrorWeight),
                               nqComponent(NqGravityVectorToken, &E::m_GravityVector));
    }

    /// One for each sag joint that counts, or else two of the sensor and one of all springs.
    using Rows = std::array<double, NqSagJoints::theMost>;

    /// An orientation whose z axis is the direction of gravity.
    NqOrientation gravityOrientation() const { return NqOrientation::fromZTo(gravityVector().unitVector()); }

    /// The sum of -k_i x_i (a_i . g).
    double springSum(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                     const NqXmlRealVector& x) const;

    /// The rows for values of all joints and the sensor's angular motion, which `angularOf` gives for a link.
    template <typename AngularOf>
    Rows rows(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
              const NqXmlRealVector& jointValues, AngularOf angularOf) const;

    NqLabelVector m_SagLinkLabels;
    NqXmlRealVector m_SagStiffness;
    NqXmlCoordinateSystemTransformation m_SensorFrame;
    NqXmlBasicType<double> m_ErrorWeight = 1.0;
    NqXmlVector m_GravityVector{NqVector(0.0, 0.0, -9.8)};
    bool m_IsOn = false;

    mutable NqDroppedOnCopy<NqSagJoints> m_SagJoints;
    mutable NqUncopied<NqOrientation> m_DesiredOrientation;
    mutable NqUncopied<NqEndEffectorPlacement> m_ActualPlacement;
};
