#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqFilteredEndEffector.h>
#include <nqControlCore/foundation/xml/NqXmlCoordinateSystemTransformation.h>

/// Base of the end-effectors that constrain a frame fixed in a link, or some of its freedoms: the frame, two
/// error weights and what concerns the motion filter. The placement is the frame's; a velocity has doc()
/// entries, at most 6: the linear part of the frame's origin, then the angular part.
class NqFrameBasedEndEffector
    : public NqXmlPersistentBase<
          NqFrameBasedEndEffector,
          NqEditableEndEffector<NqFrameBasedEndEffector, NqFilteredEndEffector<NqGeneralMotionFilter>,
                                NqEditableLength::AtLeast>> {
public:
    void filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqXmlRealVector& filtered) const override;
    void filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqManipulatorActiveState& state, NqXmlRealVector& filtered) const override;

    /// The way from the present to the desired placement: the filter's bare error, with its offset, or for
    /// filtering switched off what it would ask for in unit time.
    void calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   NqManipulatorActiveState& state, NqXmlRealVector& error) const override;

    /// The frame, measured from the primary frame of the link.
    virtual const NqCoordinateSystemTransformation& frame() const { return m_Frame.value(); }
    virtual void setFrame(const NqCoordinateSystemTransformation& frame) { m_Frame = frame; }

    /// The weight of the linear and of the angular rows.
    virtual const double& linearErrorWeight() const { return m_LinearErrorWeight.value(); }
    virtual void setLinearErrorWeight(const double& weight) { m_LinearErrorWeight = weight; }
    virtual const double& angularErrorWeight() const { return m_AngularErrorWeight.value(); }
    virtual void setAngularErrorWeight(const double& weight) { m_AngularErrorWeight = weight; }

    /// The motion by which the filter takes the present placement towards the desired one, both parts made to
    /// arrive together.
    virtual void filterFrameEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                const NqEndEffectorPlacement& desiredPlacement,
                                                const NqGeneralMotion& desiredVelocity,
                                                const NqGeneralMotion& previousVelocity, double timeStep,
                                                NqManipulatorActiveState& state,
                                                NqGeneralMotion& filtered) const;

    /// The frame whose motion the rows are.
    NqCoordinateSystemTransformation motionFrame() const { return frameOffset(); }

    static const NqEditableValueTable<NqFrameBasedEndEffector>& editableTable();

protected:
    /// The first three entries are the linear part, the next three the angular one; missing ones are zero.
    virtual void convertToGeneralVelocity(const NqXmlRealVector& velocity, NqGeneralMotion& motion) const;

    /// Resizes the vector to the smaller of doc() and 6 and copies as many entries into it.
    virtual void convertFromGeneralVelocity(const NqGeneralMotion& motion, NqXmlRealVector& velocity) const;

    /// The frame with the external offset, where one is to be applied, in the frame's own axes.
    NqCoordinateSystemTransformation frameOffset() const {
        return externalOffset() ? frame() * *externalOffset() : frame();
    }

    /// What convertToGeneralVelocity() gives.
    NqGeneralMotion generalVelocity(const NqXmlRealVector& velocity) const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using E = NqFrameBasedEndEffector;
        return nqComponentList(nqComponent(NqFrameToken, &E::m_Frame),
                               nqComponent(NqLinearErrorWeightToken, &E::m_LinearErrorWeight),
                               nqComponent(NqAngularErrorWeightToken, &E::m_AngularErrorWeight));
    }

    NqXmlCoordinateSystemTransformation m_Frame;
    NqXmlBasicType<double> m_LinearErrorWeight = 1.0;
    NqXmlBasicType<double> m_AngularErrorWeight = 0.2;
};
