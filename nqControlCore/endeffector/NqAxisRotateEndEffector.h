#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqNumberEndEffector.h>
#include <nqControlCore/foundation/xml/NqXmlOrientation.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

/// Constrains the angle between the z axis of a frame fixed in a link and a reference axis.
///
/// The number is acos(r . z) - pi / 2, with z the frame's z axis and r the reference axis in the system
/// frame; r must have length 1. For the angular velocity w of the link per unit rate the row has
///
///     -1 / sqrt(1 - (r . z)^2) (r . (w x z) + c)
///
/// where c is 0, but in internal relative mode (v x r) . z with v the present angular velocity of the
/// relative link, which carries r. It is not finite where r and z are parallel. An external offset plays no
/// part, and the columns of a free base stay zero.
class NqAxisRotateEndEffector
    : public NqConcreteEndEffector<NqAxisRotateEndEffector, NqNumberEndEffector<NqAxisRotateEndEffector>,
                                   NqEditableLength::AtLeast> {
public:
    static const NqToken& classToken() { return NqControlCore::NqAxisRotateEndEffectorToken; }
    static constexpr const char* theTooltip = "The endeffector with respect to an axis.";
    static const NqEditableValueTable<NqAxisRotateEndEffector>& editableTable();

    void insertRows(const NqRowRequest& request, NqManipulatorActiveState& state, NqReArray& jacobian) const;
    void insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const;

    /// A link that is not found leaves the placement.
    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;

    /// Velocities of fewer than doc() entries are refused with a message, `filtered` as it was.
    using NqNumberEndEffector::filterEndEffectorVelocity;
    void filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqXmlRealVector& filtered) const override;
    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const;

    /// Present minus desired number.
    void calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   NqManipulatorActiveState& state, NqXmlRealVector& error) const override;

    /// The orientation of the frame, measured from the primary frame of the link.
    virtual const NqOrientation& orientation() const { return m_Orientation.value(); }
    virtual void setOrientation(const NqOrientation& orientation) { m_Orientation = orientation; }

    /// The reference axis, in the system frame, or in internal relative mode in the primary frame of the
    /// relative link.
    virtual const NqVector& referenceAxis() const { return m_ReferenceAxis.value(); }
    virtual void setReferenceAxis(const NqVector& axis) { m_ReferenceAxis = axis; }

    virtual double errorWeight() const { return m_ErrorWeight; }
    virtual void setErrorWeight(double weight) { m_ErrorWeight = weight; }

    NqDrivenNumber drivenNumber(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                                const NqEndEffectorPlacement& desiredPlacement) const;

    /// By the formula of the class, but with the z axis of the system for z: a NaN where the reference axis
    /// is that axis, as it is by default outside internal relative mode.
    double rate(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state) const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        // The orientation alone stands under the name that others have for a whole frame.
        return nqComponentList(
            nqComponent(NqControlCore::NqFrameToken, &NqAxisRotateEndEffector::m_Orientation),
            nqComponent(NqControlCore::NqReferenceAxisToken, &NqAxisRotateEndEffector::m_ReferenceAxis),
            nqComponent(NqControlCore::NqErrorWeightToken, &NqAxisRotateEndEffector::m_ErrorWeight));
    }

    /// The reference axis in the system frame, and the velocity at which the relative link turns it.
    struct Reference {
        NqVector axis;
        NqVector velocity;
    };
    Reference reference(const NqIndividualManipulator& manipulator,
                        const NqEndEffectorRelativeLinkData& relativeLink,
                        NqManipulatorActiveState& state) const;

    /// Rate of the number for an angular velocity w of the frame.
    static double numberRate(const Reference& reference, const NqVector& z, const NqVector& w);

    bool hasEntries(const NqXmlRealVector& desiredVelocity, const NqXmlRealVector& previousVelocity) const;

    NqXmlOrientation m_Orientation;
    NqXmlVector m_ReferenceAxis = NqVector(0.0, 0.0, 1.0);
    NqXmlBasicType<double> m_ErrorWeight = 1.0;
};
