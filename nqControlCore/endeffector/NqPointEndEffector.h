#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqMotionEndEffector.h>
#include <nqControlCore/endeffector/NqPointBasedEndEffector.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

/// Constrains one point fixed in a link: three rows, the point's position in the system frame.
///
/// The placement has the point as translation, and no rotation; a link that is not found gives the origin.
class NqPointEndEffector
    : public NqConcreteEndEffector<NqPointEndEffector,
                                   NqMotionEndEffector<NqPointEndEffector, NqPointBasedEndEffector>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqPointEndEffectorToken; }
    static constexpr const char* theTooltip = "PointEndEffector.";
    static const NqEditableValueTable<NqPointEndEffector>& editableTable();

    static constexpr NqMotionPlan theMotionPlan = {
        .rows = {NqMotionComponent::LinearX, NqMotionComponent::LinearY, NqMotionComponent::LinearZ},
        .badLabel = "NqPointEndEffector::insertJacobianComponent(): bad label on point end effector: %s.\n",
        .badRelativeLabel =
            "NqPointEndEffector::insertJacobianComponent(): bad index on relative link: %d.\n",
        .badSparsityLabel =
            "NqPointEndEffector::insertSparsityComponent(): bad label on point end effector: %s.\n",
        .badSparsityRelativeLabel =
            "NqPointEndEffector::insertSparsityComponent(): bad index on relative pLink: %d.\n",
        .badPlacementLabel =
            "NqPointEndEffector::calculatePointPlacement(): bad label on point end effector: %s.\n"};

    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;

    /// The point, measured from the primary frame of the link, in m.
    virtual const NqVector& point() const { return m_Point.value(); }
    virtual void setPoint(const NqVector& point) { m_Point = point; }

    /// The weight of each row.
    virtual const double& errorWeight() const { return m_ErrorWeight.value(); }
    virtual void setErrorWeight(const double& weight) { m_ErrorWeight = weight; }

    /// The point in the system frame; untouched, with a message, where the link is not found.
    virtual void calculatePointPlacement(const NqIndividualManipulator& manipulator,
                                         NqManipulatorActiveState& state, NqVector& point) const;

    /// The point as a frame whose motion the rows are.
    NqCoordinateSystemTransformation motionFrame() const { return pointOffset(); }

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
