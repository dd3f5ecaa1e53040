#pragma once

#include <nqControlCore/endeffector/NqRowEndEffector.h>
#include <nqControlCore/endeffector/NqScalarBasedEndEffector.h>
#include <nqControlCore/endeffector/NqTargetedEndEffector.h>

/// A number that a constraint drives, and where it is to go.
struct NqDrivenNumber {
    double present;
    double desired;
};

/// The layer between an end-effector class that drives one number and its base. Derived offers, beside what
/// NqRowEndEffector asks for,
///
///     NqDrivenNumber drivenNumber(const NqIndividualManipulator&, NqManipulatorActiveState&,
///                                 const NqEndEffectorPlacement& desiredPlacement) const
///     double rate(const NqIndividualManipulator&, NqManipulatorActiveState&) const
///
/// and gets the filter and the velocity of its row.
template <typename Derived>
class NqNumberEndEffector
    : public NqTargetedEndEffector<Derived, NqRowEndEffector<Derived, NqScalarBasedEndEffector>> {
public:
    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override {
        const double rate = self().rate(manipulator, state);
        velocity.resize(start + 1);
        velocity[start] = rate;
    }

    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const {
        const NqDrivenNumber number =
            self().drivenNumber(request.manipulator, request.state, request.desiredPlacement);
        this->filterNumber(number.present, number.desired, request, filtered);
    }

protected:
    /// Present minus desired number, as a list of one entry.
    void insertNumberError(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           const NqEndEffectorPlacement& desiredPlacement, NqXmlRealVector& error) const {
        const NqDrivenNumber number = self().drivenNumber(manipulator, state, desiredPlacement);
        error.assign(1, number.present - number.desired);
    }

private:
    const Derived& self() const { return static_cast<const Derived&>(*this); }
};
