#pragma once

#include <nqControlCore/endeffector/NqTargetedEndEffector.h>
#include <nqControlCore/endeffector/special/NqCenterOfMassBasedEndEffector.h>
#include <nqControlCore/foundation/math/NqPlanarVector.h>
#include <nqControlCore/foundation/xml/NqXmlOrientation.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

/// Constrains where the centre of mass of a whole manipulator lies over a plane, as for balance: two rows,
/// its x and y in the working orientation W of the plane.
///
///     projected  x and y of (R W)^-1 c
///     velocity   x and y of (R W)^-1 dc/dt
///     column j   x and y of (R W)^-1 firstMomentRate(j) / M
///
/// with c, M, sliding joints and relative rows as NqCenterOfMassEndEffector has them, and R the orientation
/// of the link that the rows are relative to: the identity in other modes than the internal one, and for a
/// link that is not found. W is xyOrientation(), whose z axis is the plane's normal, or else that orientation
/// tilted so that its normal lies along systemVector(), and the projection runs along that vector. With u the
/// unit vector along systemVector() in the axes of the plane, the tilt is by acos(|u.z|) about (-u.y, u.x,
/// 0); for |u.z| > 0.999 it is that rotation vector itself. What a user has to know:
///
/// - For u.z below 0 the tilt goes the other way: the normal then lies along systemVector() only where the
///   two are opposite to begin with. Let the vector point to the side that the normal points to.
/// - The placement has all three coordinates of c. difference(), minimumTime() and the filter without a
///   manipulator are in space; of calculateEndEffectorError() the two entries are x and y in the axes of the
///   system, not of the plane. The planar way is that of the filter with a manipulator.
/// - That filter takes the previous velocity for zero, so that the change of velocity is limited from rest.
/// - Bits of base columns are set where the base has columns.
class NqProjectedCenterOfMassEndEffector
    : public NqConcreteEndEffector<
          NqProjectedCenterOfMassEndEffector,
          NqTargetedEndEffector<NqProjectedCenterOfMassEndEffector,
                                NqCenterOfMassBasedEndEffector<NqProjectedCenterOfMassEndEffector>>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqProjectedCenterOfMassEndEffectorToken; }
    static constexpr const char* theTooltip =
        "This end effector constrains the projection of the location of the center of gravity onto a plane.";
    static const NqEditableValueTable<NqProjectedCenterOfMassEndEffector>& editableTable();

    unsigned doc() const override { return 2; }

    void insertRows(const NqRowRequest& request, NqManipulatorActiveState& state, NqReArray& jacobian) const;
    void insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const;

    /// Only lengthens the list.
    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override;

    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const;

    /// The plane, in the axes of the system or of the link that the rows are relative to.
    virtual const NqOrientation& xyOrientation() const { return m_XyOrientation.value(); }
    virtual void setXyOrientation(const NqOrientation& orientation) { m_XyOrientation = orientation; }

    /// Whether the projection runs along systemVector() rather than along the plane's normal.
    virtual bool projectAlongSystemVector() const { return m_ProjectAlongSystemVector; }
    virtual void setProjectAlongSystemVector(bool along) { m_ProjectAlongSystemVector = along; }

    /// A direction, of any length, in the system frame.
    virtual const NqVector& systemVector() const { return m_SystemVector.value(); }
    virtual void setSystemVector(const NqVector& vector) { m_SystemVector = vector; }

    /// The weight of each row.
    virtual const double& errorWeight() const { return m_ErrorWeight.value(); }
    virtual void setErrorWeight(const double& weight) { m_ErrorWeight = weight; }

    /// The projected centre of mass, in m.
    virtual void calculate2DPointPlacement(const NqIndividualManipulator& manipulator,
                                           NqManipulatorActiveState& state, NqPlanarVector& point) const;

    /// The centre of mass in the system frame, in m; the origin of the base frame where there is no mass.
    virtual void calculatePointPlacement(const NqIndividualManipulator& manipulator,
                                         NqManipulatorActiveState& state, NqVector& point) const {
        point = manipulator.centerOfMass(state.activePositionState());
    }

    /// The velocity, in the plane, by which the motion filter takes the projected centre of mass towards the
    /// projection of the desired frame's origin. Untouched where the filter refuses.
    virtual void filter2DPointEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                  const NqCoordinateSystemTransformation& desiredFrame,
                                                  const NqPlanarVector& desiredVelocity,
                                                  const NqPlanarVector& previousVelocity, double timeStep,
                                                  NqManipulatorActiveState& state,
                                                  NqPlanarVector& filtered) const;

protected:
    /// The column of a link's joint, times the mass; see momentRate().
    virtual NqVector firstMomentRate(const NqManipulatorLink& link, NqManipulatorActiveState& state) const {
        return momentRate(link, state);
    }

    /// Brings the working orientation up to date.
    virtual void updateWorkingXyOrientation(const NqIndividualManipulator& manipulator,
                                            NqManipulatorActiveState& state,
                                            const NqEndEffectorRelativeLinkData& relativeLink) const;
    virtual const NqOrientation& workingXyOrientation() const { return m_WorkingXyOrientation; }

private:
    friend class NqCenterOfMassBasedEndEffector<NqProjectedCenterOfMassEndEffector>;
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using E = NqProjectedCenterOfMassEndEffector;
        return nqComponentList(nqComponent(NqXyOrientationToken, &E::m_XyOrientation),
                               nqComponent(NqProjectAlongSystemVectorToken, &E::m_ProjectAlongSystemVector),
                               nqComponent(NqSystemVectorToken, &E::m_SystemVector),
                               nqComponent(NqErrorWeightToken, &E::m_ErrorWeight));
    }

    /// From the axes of the system into those of the plane, with the working orientation brought up to date.
    NqOrientation toPlane(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                          const NqEndEffectorRelativeLinkData& relativeLink) const;

    NqXmlOrientation m_XyOrientation;
    NqXmlBasicType<bool> m_ProjectAlongSystemVector = false;
    NqXmlVector m_SystemVector{NqVector(0.0, 1.0, 0.0)};
    NqXmlBasicType<double> m_ErrorWeight = 1.0;

    mutable NqOrientation m_WorkingXyOrientation;
};
