#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqJointList.h>
#include <nqControlCore/endeffector/NqRowEndEffector.h>
#include <nqControlCore/endeffector/NqScalarBasedEndEffector.h>
#include <nqControlCore/endeffector/NqTargetedEndEffector.h>
#include <nqControlCore/foundation/math/NqDroppedOnCopy.h>

/// Drives one joint, the master, to a position and has others, the slaves, follow it in fixed ratios, as the
/// fingers of a gripper do. The master is the joint of the link that the base class names.
///
/// Row 0 is the rate of the master. Row i says that the i-th slave's rate is w times the master's, with w the
/// i-th of slaveJointWeights(), or 1 where there are fewer:
///
///     x_master - x_slave / w = 0
///
/// Its target is zero always, and so are its velocity and its error, whatever the slaves do: what they have
/// strayed is not taken back. A weight of 0 leaves the row empty.
///
/// doc() counts all labels of slaves. One that is unknown, or of a link without a joint, is skipped silently:
/// the joints behind it move up a row, and to the weight of that row, and the last row stays empty.
/// Velocities then have fewer entries than doc(). Accelerations always have one: size the list beforehand,
/// where there are slaves.
///
/// Joints are looked up once and remembered, also for another manipulator, until slaves or weights are set or
/// the object is read, edited or assigned; setLinkIdentifier() alone keeps the old master. While the master
/// is not found, all is zero and the placement stays, and each evaluation adds the slaves to the list once
/// more: a velocity that has a master again is longer by them, until the joints are forgotten.
///
/// Relative links, external offsets and a free base play no part.
class NqOneDofGripperEndEffector
    : public NqConcreteEndEffector<
          NqOneDofGripperEndEffector,
          NqTargetedEndEffector<NqOneDofGripperEndEffector,
                                NqRowEndEffector<NqOneDofGripperEndEffector, NqScalarBasedEndEffector>>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqOneDofGripperEndEffectorToken; }
    static constexpr const char* theTooltip = "Type of end-effector that can be used as a 1-DOF gripper.";
    static const NqEditableValueTable<NqOneDofGripperEndEffector>& editableTable();

    /// Forgets the joints.
    bool read(NqXmlReader& reader) override;

    unsigned doc() const override { return 1 + m_SlaveJointLabels.size(); }

    void insertRows(const NqRowRequest& request, NqManipulatorActiveState& state, NqReArray& jacobian) const;
    void insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const;

    /// The master's position; left alone without a master.
    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;
    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override;
    /// One zero, whatever doc() is.
    void calculateAcceleration(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                               NqXmlRealVector& acceleration, unsigned start) const override;

    using NqTargetedEndEffector::filterEndEffectorVelocity;
    void filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqXmlRealVector& filtered) const override;
    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const;

    /// Present minus desired position of the master.
    void calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   NqManipulatorActiveState& state, NqXmlRealVector& error) const override;

    /// Positions of the master at which the gripper is closed and open, for whoever sets targets.
    virtual double fullyClosedPosition() const { return m_FullyClosedPosition; }
    virtual void setFullyClosedPosition(double position) { m_FullyClosedPosition = position; }
    virtual double fullyOpenPosition() const { return m_FullyOpenPosition; }
    virtual void setFullyOpenPosition(double position) { m_FullyOpenPosition = position; }

    /// Labels of the links that the slaves move.
    virtual const NqLabelVector& slaveJointLabels() const { return m_SlaveJointLabels; }
    virtual void setSlaveJointLabels(const NqLabelVector& labels);

    /// Rates of the slaves per rate of the master.
    virtual const NqXmlRealVector& slaveJointWeights() const { return m_SlaveJointWeights; }
    virtual void setSlaveJointWeights(const NqXmlRealVector& weights);

    virtual double errorWeight() const { return m_ErrorWeight; }
    virtual void setErrorWeight(double weight) { m_ErrorWeight = weight; }

protected:
    /// Looks the joints up, unless the master is remembered.
    virtual void initialize(const NqIndividualManipulator& manipulator) const;
    /// Forgets the joints.
    virtual void reset() const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using E = NqOneDofGripperEndEffector;
        return nqComponentList(nqComponent(NqFullyClosedPositionToken, &E::m_FullyClosedPosition),
                               nqComponent(NqFullyOpenPositionToken, &E::m_FullyOpenPosition),
                               nqComponent(NqSlaveJointLabelsToken, &E::m_SlaveJointLabels),
                               nqComponent(NqSlaveJointWeightsToken, &E::m_SlaveJointWeights),
                               nqComponent(NqErrorWeightToken, &E::m_ErrorWeight));
    }

    struct Joints {
        NqJointList master; ///< one joint, or none
        NqJointList slaves; ///< those that were found
    };

    /// Calls `visit(i, row, column)` for the master, as the 0th, and the slaves, where the matrix has that
    /// row and the joint's column; prints the message where it hasn't.
    template <typename Matrix, typename Visit>
    void forEachRow(const NqRowRequest& request, const Matrix& matrix, const char* message,
                    Visit visit) const;

    /// The master's entry of a joint vector; null without a master.
    const double* ofMaster(const NqIndividualManipulator& manipulator, const NqXmlRealVector& values) const;

    NqXmlBasicType<double> m_FullyClosedPosition = 0.0;
    NqXmlBasicType<double> m_FullyOpenPosition = 0.1;
    NqLabelVector m_SlaveJointLabels;
    NqXmlRealVector m_SlaveJointWeights;
    NqXmlBasicType<double> m_ErrorWeight = 1.0;

    mutable NqDroppedOnCopy<Joints> m_Joints;
};
