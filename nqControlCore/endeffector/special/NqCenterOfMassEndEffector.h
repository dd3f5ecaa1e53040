#pragma once

#include <nqControlCore/endeffector/special/NqCenterOfMassBasedEndEffector.h>

/// Constrains the centre of mass of a whole manipulator, its base included: three rows, its x, y and z in the
/// system frame.
///
///     position  c = p_0 + F_0 / M
///     velocity  dc/dt, the momentum over the mass M; zero where there is no mass
///     column j  firstMomentRate(j) / M; zero where there is no mass
///
/// with p_0 the origin of the base frame and F_0 the first moment about it. Base columns are those of a point
/// at c. What a user has to know:
///
/// - The column of a joint that slides is its direction over M, whatever mass it moves, while the velocity is
///   the true one. A target that only such joints reach is approached at the wrong speed.
/// - Rows relative to a link are right only while the base frame is the system frame; see setColumns(). Their
///   base columns are empty, though their bits are set.
/// - calculateAcceleration() writes nothing.
class NqCenterOfMassEndEffector
    : public NqConcreteEndEffector<NqCenterOfMassEndEffector,
                                   NqCenterOfMassBasedEndEffector<NqCenterOfMassEndEffector>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqCenterOfMassEndEffectorToken; }
    static constexpr const char* theTooltip =
        "This end effector constrains the 3D location of the center of gravity.";
    static const NqEditableValueTable<NqCenterOfMassEndEffector>& editableTable();

    unsigned doc() const override { return 3; }

    void insertRows(const NqRowRequest& request, NqManipulatorActiveState& state, NqReArray& jacobian) const;
    void insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const;

    /// Only lengthens the list.
    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override;

    /// The weight of each row.
    virtual const double& errorWeight() const { return m_ErrorWeight.value(); }
    virtual void setErrorWeight(const double& weight) { m_ErrorWeight = weight; }

    /// The centre of mass in the system frame, in m; the origin of the base frame where there is no mass.
    virtual void calculatePointPlacement(const NqIndividualManipulator& manipulator,
                                         NqManipulatorActiveState& state, NqVector& point) const {
        point = manipulator.centerOfMass(state.activePositionState());
    }

protected:
    /// The column of a link's joint, times the mass; see momentRate().
    virtual NqVector firstMomentRate(const NqManipulatorLink& link, NqManipulatorActiveState& state) const {
        return momentRate(link, state);
    }

private:
    friend class NqCenterOfMassBasedEndEffector<NqCenterOfMassEndEffector>;
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqErrorWeightToken, &NqCenterOfMassEndEffector::m_ErrorWeight));
    }

    NqXmlBasicType<double> m_ErrorWeight = 1.0;
};
