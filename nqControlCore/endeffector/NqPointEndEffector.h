#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqPointBasedEndEffector.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

/// Constrains one point fixed in a link: three rows, the point's position in the system frame.
///
/// The column of a joint is w x d + v, with (v, w) the motion of its link's frame for unit rate and d the way
/// from that frame to the point, all in the system frame. The placement has the point as translation, and no
/// rotation.
class NqPointEndEffector : public NqConcreteEndEffector<NqPointEndEffector, NqPointBasedEndEffector> {
public:
    static const NqToken& classToken();

    NqPointEndEffector();

    static const NqEditableValueTable<NqPointEndEffector>& editableTable();

    unsigned doc() const override { return 3; }

    void insertJacobianComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                 const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                 NqManipulatorActiveState& state, NqReArray& jacobian) const override;
    void insertSparsityComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                 const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                 SparsityDescription& sparsity) const override;
    void insertErrorWeightComponent(unsigned row, NqReArray& weights) const override;

    /// A link that is not found gives the origin.
    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;

    /// A link that is not found gives zeros, without a message; so with the acceleration.
    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override;
    void calculateAcceleration(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                               NqXmlRealVector& acceleration, unsigned start) const override;

    double minimumTime(const NqEndEffectorPlacement& from, const NqEndEffectorPlacement& to) const override;

    /// The distance, in m.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    /// The point, measured from the primary frame of the link, in m.
    virtual const NqVector& point() const { return m_Point.value(); }
    virtual void setPoint(const NqVector& point) { m_Point = point; }

    /// The weight of each row.
    virtual const double& errorWeight() const { return m_ErrorWeight.value(); }
    virtual void setErrorWeight(const double& weight) { m_ErrorWeight = weight; }

    /// The point in the system frame; untouched, with a message, where the link is not found.
    virtual void calculatePointPlacement(const NqIndividualManipulator& manipulator,
                                         NqManipulatorActiveState& state, NqVector& point) const;

protected:
    /// The point, moved by the translation of the external offset; its rotation plays no part.
    NqVector pointOffset() const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqPointToken, &NqPointEndEffector::m_Point),
            nqComponent(NqControlCore::NqErrorWeightToken, &NqPointEndEffector::m_ErrorWeight));
    }

    NqXmlVector m_Point;
    NqXmlBasicType<double> m_ErrorWeight = 1.0;
};
