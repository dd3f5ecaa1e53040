#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqRotationBasedEndEffector.h>
#include <nqControlCore/foundation/xml/NqXmlOrientation.h>

/// Constrains the orientation of a frame fixed in a link: three rows, its angular velocity in the system
/// frame.
///
/// The column of a joint is the angular velocity of its link for unit rate. The placement has the orientation
/// and no translation. An external offset plays no part.
class NqOrientationEndEffector
    : public NqConcreteEndEffector<NqOrientationEndEffector, NqRotationBasedEndEffector> {
public:
    static const NqToken& classToken();

    NqOrientationEndEffector();

    static const NqEditableValueTable<NqOrientationEndEffector>& editableTable();

    unsigned doc() const override { return 3; }

    /// For a free base the ones stand in the first three base columns, those of its translation.
    void insertJacobianComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                 const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                 NqManipulatorActiveState& state, NqReArray& jacobian) const override;
    void insertSparsityComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                 const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                 SparsityDescription& sparsity) const override;
    void insertErrorWeightComponent(unsigned row, NqReArray& weights) const override;

    /// A link that is not found leaves the placement.
    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;

    /// A link that is not found gives zeros, without a message; so with the acceleration.
    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override;

    /// A vector longer than `start + 3` keeps its length.
    void calculateAcceleration(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                               NqXmlRealVector& acceleration, unsigned start) const override;

    void filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqXmlRealVector& filtered) const override;
    void filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqManipulatorActiveState& state, NqXmlRealVector& filtered) const override;
    double minimumTime(const NqEndEffectorPlacement& from, const NqEndEffectorPlacement& to) const override;

    /// The angle between the orientations times the error weight, by which minimumTime() counts too.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    /// The rotation vector from the present to the desired orientation, in the system frame.
    void calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   NqManipulatorActiveState& state, NqXmlRealVector& error) const override;

    /// The orientation, measured from the primary frame of the link.
    virtual const NqOrientation& orientation() const { return m_Orientation.value(); }
    virtual void setOrientation(const NqOrientation& orientation) { m_Orientation = orientation; }

    /// The weight of each row.
    virtual const double& errorWeight() const { return m_ErrorWeight.value(); }
    virtual void setErrorWeight(const double& weight) { m_ErrorWeight = weight; }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqOrientationToken, &NqOrientationEndEffector::m_Orientation),
            nqComponent(NqControlCore::NqErrorWeightToken, &NqOrientationEndEffector::m_ErrorWeight));
    }

    NqXmlOrientation m_Orientation;
    NqXmlBasicType<double> m_ErrorWeight = 0.2;
};
