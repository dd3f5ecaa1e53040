#pragma once

#include <nqControlCore/endeffector/NqFilteredEndEffector.h>

/// Base of the end-effectors that constrain a point in space, or some of its coordinates: what concerns the
/// point's motion filter. The placement is the translation; a velocity has doc() entries, at most 3.
class NqPointBasedEndEffector : public NqFilteredEndEffector<NqPointMotionFilter> {
public:
    void filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqXmlRealVector& filtered) const override;
    void filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqManipulatorActiveState& state, NqXmlRealVector& filtered) const override;

    /// The way from the present to the desired position, in the system frame.
    void calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   NqManipulatorActiveState& state, NqXmlRealVector& error) const override;

    /// The distance, in m.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    virtual const NqPointMotionFilter& pointMotionFilter() const { return motionFilter(); }
    virtual void setPointMotionFilter(const NqPointMotionFilter& filter) { setMotionFilter(filter); }

    /// The velocity by which the motion filter takes the present position towards the desired one.
    virtual void filterPointEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                const NqEndEffectorPlacement& desiredPlacement,
                                                const NqVector& desiredVelocity,
                                                const NqVector& previousVelocity, double timeStep,
                                                NqManipulatorActiveState& state, NqVector& filtered) const;

protected:
    /// Copies the first entries, at most 3; the other components of the point stay.
    virtual void convertToPointVelocity(const NqXmlRealVector& velocity, NqVector& point) const;

    /// Resizes the vector to the smaller of doc() and 3 and copies as many components into it.
    virtual void convertFromPointVelocity(const NqVector& point, NqXmlRealVector& velocity) const;

private:
    NqVector pointVelocity(const NqXmlRealVector& velocity) const;
};
