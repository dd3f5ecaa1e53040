#pragma once

#include <nqControlCore/endeffector/NqEndEffector.h>
#include <nqControlCore/endeffector/NqTargetRequest.h>

/// The layer between an end-effector class and its base that hands on in one piece what the filter with a
/// target is asked with. Derived offers
///
///     void insertCommand(const NqTargetRequest&, NqXmlRealVector& filtered) const
template <typename Derived, typename Base>
class NqTargetedEndEffector : public Base {
public:
    using Base::filterEndEffectorVelocity;
    void filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqManipulatorActiveState& state,
                                   NqXmlRealVector& filtered) const override {
        static_cast<const Derived&>(*this).insertCommand(
            {manipulator, desiredPlacement, desiredVelocity, previousVelocity, timeStep, state}, filtered);
    }
};
