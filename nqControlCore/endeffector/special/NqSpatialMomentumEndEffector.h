#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqRowEndEffector.h>
#include <nqControlCore/endeffector/NqTargetedEndEffector.h>
#include <nqControlCore/endeffector/NqUnfilteredEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqMatrixDTool.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

/// Drives the momentum of a whole manipulator, its base included, to given values: three rows of linear
/// momentum (kg m/s) and, unless these alone are asked for, three of angular momentum (kg m^2/s) about the
/// origin of the base frame, all in the axes of the system frame.
///
///     column j  the momentum for a unit rate of joint j: row j of the matrix of NqMatrixDTool
///     base      [ M 1   -F x ]    M mass, F first moment and I second moment of the manipulator about the
///               [ F x    I   ]    origin of the base frame: its inertia
///
/// What a user has to know:
///
/// - The velocity of this constraint is a momentum, and always the desired one: calculateVelocity() and the
///   filter that has a manipulator give the target whatever the manipulator does. Rows times rates is the
///   present momentum.
/// - There is no placement (it is the identity), and no difference, least time, limit or motion filter.
/// - Momentum about a point that moves, as the origin of a free base does, is not conserved by itself: to
///   keep a robot from spinning, ask for zero linear momentum too.
/// - Relative links, external offsets and the link that the base class names play no part.
class NqSpatialMomentumEndEffector
    : public NqConcreteEndEffector<
          NqSpatialMomentumEndEffector,
          NqTargetedEndEffector<NqSpatialMomentumEndEffector,
                                NqRowEndEffector<NqSpatialMomentumEndEffector, NqUnfilteredEndEffector>>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqSpatialMomentumEndEffectorToken; }
    static constexpr const char* theTooltip =
        "This end effector constrains the linear and angular momentum of the complete system.";
    static const NqEditableValueTable<NqSpatialMomentumEndEffector>& editableTable();

    /// 6 with angular momentum, 3 without.
    unsigned doc() const override { return m_IncludeAngular ? 6 : 3; }

    void insertRows(const NqRowRequest& request, NqManipulatorActiveState& state, NqReArray& jacobian) const;
    void insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const;

    /// The identity.
    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;

    /// The desired momentum.
    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override;

    /// The desired momentum; all inputs are ignored.
    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const;

    /// Both 0 for any placements.
    double minimumTime(const NqEndEffectorPlacement&, const NqEndEffectorPlacement&) const override {
        return 0.0;
    }
    double difference(const NqEndEffectorPlacement&, const NqEndEffectorPlacement&) const override {
        return 0.0;
    }

    /// The weight of each row.
    virtual const double& errorWeight() const { return m_ErrorWeight.value(); }
    virtual void setErrorWeight(const double& weight) { m_ErrorWeight = weight; }

    /// The targets, in the axes of the system frame.
    virtual const NqVector& desiredLinearMomentum() const { return m_DesiredLinearMomentum.value(); }
    virtual void setDesiredLinearMomentum(const NqVector& momentum) { m_DesiredLinearMomentum = momentum; }
    virtual const NqVector& desiredAngularMomentum() const { return m_DesiredAngularMomentum.value(); }
    virtual void setDesiredAngularMomentum(const NqVector& momentum) { m_DesiredAngularMomentum = momentum; }

    /// Whether there are rows of angular momentum.
    virtual bool includeAngular() const { return m_IncludeAngular; }
    virtual void setIncludeAngular(bool include) { m_IncludeAngular = include; }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using E = NqSpatialMomentumEndEffector;
        return nqComponentList(nqComponent(NqErrorWeightToken, &E::m_ErrorWeight),
                               nqComponent(NqDesiredLinearMomentumToken, &E::m_DesiredLinearMomentum),
                               nqComponent(NqDesiredAngularMomentumToken, &E::m_DesiredAngularMomentum),
                               nqComponent(NqIncludeAngularToken, &E::m_IncludeAngular));
    }

    NqXmlBasicType<double> m_ErrorWeight = 1.0;
    NqXmlVector m_DesiredLinearMomentum;
    NqXmlVector m_DesiredAngularMomentum;
    NqXmlBasicType<bool> m_IncludeAngular = true;

    mutable NqUncopied<NqMatrixDTool> m_MatrixDTool;
    mutable NqUncopied<NqReArray> m_MomentumMatrix; ///< a row for each joint, a column for each component
};
