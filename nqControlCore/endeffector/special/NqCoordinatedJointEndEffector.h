#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqJointList.h>
#include <nqControlCore/endeffector/NqRowEndEffector.h>
#include <nqControlCore/endeffector/NqTargetedEndEffector.h>
#include <nqControlCore/endeffector/NqUnfilteredEndEffector.h>
#include <nqControlCore/endeffector/special/NqJointCoordination.h>
#include <nqControlCore/foundation/math/NqUncopied.h>

#include <vector>

class NqControlParameters;

/// Drives a list of joints to targets that they all reach at the same time. A row for each of linkLabels(),
/// with a one in the column of the joint that moves that link.
///
/// The placement is the data vector: the positions of the joints, in the order of their labels. A target of
/// as many numbers is taken in that order, and one of more as the positions of all joints of the manipulator,
/// by joint index; one of fewer asks for nothing.
///
/// When the target changes, each joint gets a limit of speed with which it takes as long as the slowest; see
/// NqJointCoordination. With v the speed that a joint brakes from and a its acceleration, it arrives within
/// 2 sqrt(v h / a) of that time, in steps of h; starting at rest, that is: a joint that has to slow down or
/// turn back first is not timed exactly.
///
/// A label that is unknown, or of a link without a joint, is skipped silently: doc() counts it, but the
/// joints behind it move up a row, and lists of velocities, errors and positions have an entry for each joint
/// that was found. Limits belong to labels all the same: the i-th to the i-th label. Those that are missing
/// are the default ones.
///
/// Joints and filters are made when first needed, for the manipulator at hand, and remembered, also for
/// another one, until labels or limits are set or the object is read; the default limits are looked at only
/// then. A copy starts without them, while an object that is assigned to keeps its own: set its labels. The
/// speed factor and the switch of the filters are theirs and go with them.
///
/// Relative links, external offsets and a free base play no part, nor does the link that the base class
/// names. Conversions to a relative frame drop the data vector: leave the relative mode at none.
class NqCoordinatedJointEndEffector
    : public NqConcreteEndEffector<
          NqCoordinatedJointEndEffector,
          NqTargetedEndEffector<NqCoordinatedJointEndEffector,
                                NqRowEndEffector<NqCoordinatedJointEndEffector, NqUnfilteredEndEffector>>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqCoordinatedJointEndEffectorToken; }
    static constexpr const char* theTooltip = "Type of end-effector used for coordinated joint control.";
    static const NqEditableValueTable<NqCoordinatedJointEndEffector>& editableTable();

    /// All joints of a manipulator, by joint index, under its label. The limit of speed of each is its rate
    /// limit where that is below 1000, otherwise 1, times `speedScale`; that of acceleration is twice as much
    /// (1/s^2).
    static NqCoordinatedJointEndEffector
    defaultJointControlEndEffector(const NqIndividualManipulator& manipulator, double speedScale);

    /// Forgets joints and filters.
    bool read(NqXmlReader& reader) override;

    unsigned doc() const override { return m_LinkLabels.size(); }

    void insertRows(const NqRowRequest& request, NqManipulatorActiveState& state, NqReArray& jacobian) const;
    void insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const;

    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;
    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override;

    using NqTargetedEndEffector::filterEndEffectorVelocity;
    /// Under each joint's own limits, without a target and without coordination: the limits of speed that
    /// were found for a target are gone until the next one.
    void filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqXmlRealVector& filtered) const override;
    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const;

    /// Desired minus present positions.
    void calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   NqManipulatorActiveState& state, NqXmlRealVector& error) const override;

    /// Time of the slowest joint, from the velocities at which the last target was taken up; 0 before the
    /// first use.
    double minimumTime(const NqEndEffectorPlacement& from, const NqEndEffectorPlacement& to) const override;

    /// Sum of the distances of all joints; 1000 for placements of different length.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    /// Those of the filters, from the first use on; before it they are 1 and true, and setting them does
    /// nothing. The profiles take a factor that is not above 0 for the one before.
    double speedFactor() const override { return m_Joints->speedFactor(); }
    void setSpeedFactor(double factor) override { m_Joints->setSpeedFactor(factor); }
    bool filteringActive() const override { return m_Joints->filteringActive(); }
    void setFilteringActive(bool active) override { m_Joints->setFilteringActive(active); }

    /// Limits of joints that have none of their own (rad/s or m/s, and s).
    virtual double defaultMaxVelocity() const { return m_DefaultMaxVelocity; }
    virtual void setDefaultMaxVelocity(double velocity) { m_DefaultMaxVelocity = velocity; }
    virtual double defaultProfileAcceleration() const { return m_DefaultProfileAcceleration; }
    virtual void setDefaultProfileAcceleration(double acceleration) {
        m_DefaultProfileAcceleration = acceleration;
    }

    /// Labels of the links whose joints are driven.
    virtual const NqLabelVector& linkLabels() const { return m_LinkLabels; }
    virtual void setLinkLabels(const NqLabelVector& labels);

    /// Limits of the joints, in the order of the labels.
    virtual const NqXmlRealVector& maxVelocities() const { return m_MaxVelocities; }
    virtual void setMaxVelocities(const NqXmlRealVector& velocities);
    virtual const NqXmlRealVector& profileAccelerations() const { return m_ProfileAccelerations; }
    virtual void setProfileAccelerations(const NqXmlRealVector& accelerations);

    virtual double errorWeight() const { return m_ErrorWeight; }
    virtual void setErrorWeight(double weight) { m_ErrorWeight = weight; }

    /// Takes the limits from the parameters, which have them by joint index, and makes the filters anew;
    /// nothing is done where limits are as they were, or useControlParameters() is false. Call it again after
    /// labels or limits were set. Parameters that don't have as many entries as the manipulator has joints
    /// make the filters anew with each call, and so undo the coordination.
    virtual void initializeWithControlParams(const NqIndividualManipulator& manipulator,
                                             const NqControlParameters& parameters);

    bool useControlParameters() const { return m_UseControlParameters; }
    void setUseControlParameters(bool use) { m_UseControlParameters = use; }

protected:
    /// Makes joints and filters, unless they are there.
    virtual void initialize(const NqIndividualManipulator& manipulator) const;
    /// Forgets joints and filters.
    virtual void reset() const { m_Joints->clear(); }

    /// Picks the joints' entries from those of all joints of the manipulator; one that isn't there leaves
    /// what was selected.
    void reorderJointPositions(const std::vector<double>& all, std::vector<double>& selected) const {
        m_Joints->select(all, selected);
    }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using E = NqCoordinatedJointEndEffector;
        return nqComponentList(
            nqComponent(NqDefaultMaxVelocityToken, &E::m_DefaultMaxVelocity),
            nqComponent(NqDefaultProfileAccelerationToken, &E::m_DefaultProfileAcceleration),
            nqComponent(NqLinkLabelsToken, &E::m_LinkLabels),
            nqComponent(NqMaxVelocitiesToken, &E::m_MaxVelocities),
            nqComponent(NqProfileAccelerationsToken, &E::m_ProfileAccelerations),
            nqComponent(NqErrorWeightToken, &E::m_ErrorWeight),
            nqComponent(NqUseControlParametersToken, &E::m_UseControlParameters));
    }

    /// Calls `visit(label, index)` for each label that has a joint, with its place in the list.
    template <typename Visit>
    void forEachJoint(const NqIndividualManipulator& manipulator, Visit visit) const;

    /// Calls `visit(row, column)` for each joint that has its row there; prints the message where the matrix
    /// hasn't that element.
    template <typename Matrix, typename Visit>
    void forEachElement(const NqRowRequest& request, const Matrix& matrix, const char* message,
                        Visit visit) const;

    NqXmlBasicType<double> m_DefaultMaxVelocity = 1.0;
    NqXmlBasicType<double> m_DefaultProfileAcceleration = 1.0;
    NqLabelVector m_LinkLabels;
    NqXmlRealVector m_MaxVelocities;
    NqXmlRealVector m_ProfileAccelerations;
    NqXmlBasicType<double> m_ErrorWeight = 1.0;
    NqXmlBasicType<bool> m_UseControlParameters = false;

    mutable NqUncopied<NqJointCoordination> m_Joints;
};
