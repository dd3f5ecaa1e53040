#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqJacobianRows.h>
#include <nqControlCore/endeffector/NqPointBasedEndEffector.h>
#include <nqControlCore/endeffector/NqRowEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>

/// The layer of the end-effectors that constrain the centre of mass of a whole manipulator, its base
/// included, or some of its coordinates. Placement and velocity are those of the centre of mass in space; the
/// link that the base class names plays no part, nor does an external offset.
///
/// Derived offers calculatePointPlacement() and firstMomentRate(), and lets this layer call them.
template <typename Derived>
class NqCenterOfMassBasedEndEffector : public NqRowEndEffector<Derived, NqPointBasedEndEffector> {
public:
    /// The centre of mass as translation, and no rotation.
    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override {
        NqVector point;
        self().calculatePointPlacement(manipulator, state, point);
        placement.setCoordSysXForm(point);
    }

    /// Writes nothing.
    void calculateAcceleration(const NqIndividualManipulator&, NqManipulatorActiveState&, NqXmlRealVector&,
                               unsigned) const override {}

protected:
    /// What a unit rate of a link's joint adds to the first moment of the manipulator, in the axes of the
    /// system frame:
    ///
    ///     v + w x F
    ///
    /// with (v, w) the joint's motion and F the first moment of the link and all that hangs from it, about
    /// the link's DH frame. The v of a joint that slides stands as it is, without the mass that it moves: the
    /// columns of such joints are not the motion of the centre of mass.
    static NqVector momentRate(const NqManipulatorLink& link, NqManipulatorActiveState& state) {
        NqManipulatorActivePositionState& p = state.activePositionState();
        const NqGeneralMotion motion = link.unitRateMotion(link.linkFrameInSystem(p).translation(), p);
        return motion.linear() + motion.angular().cross(link.compositeFirstMoment(p));
    }

    /// Velocity of the centre of mass in the system frame, in m/s; zero where there is no mass.
    static NqVector centerOfMassVelocity(const NqIndividualManipulator& manipulator,
                                         NqManipulatorActiveState& state) {
        const double mass = manipulator.compositeMass();
        return mass != 0.0 ? (1.0 / mass) * manipulator.linearMomentum(state) : NqVector();
    }

    /// Sets all columns of the rows that `rowsOf` takes out of the motion of a point (NqJacobianRows): those
    /// of joints are 1/M times firstMomentRate(), with M the mass.
    ///
    /// Where the rows are relative to a link, what the joints do to a body fixed in that link is taken away.
    /// It is taken at the centre of mass as given in the base frame, which is where it is only while that
    /// frame is the system frame.
    template <typename RowsOf>
    void setColumns(const NqRowRequest& request, NqManipulatorActiveState& state,
                    const char* badRelativeLabel, NqReArray& jacobian, RowsOf rowsOf) const {
        const NqIndividualManipulator& manipulator = request.manipulator;
        NqManipulatorActivePositionState& p = state.activePositionState();
        const double mass = manipulator.compositeMass();
        const double perMass = mass != 0.0 ? 1.0 / mass : 0.0;
        for (unsigned joint = 0; joint < manipulator.numberOfJoints(); ++joint) {
            if (const NqManipulatorLink* link = manipulator.linkByIndex(joint)) {
                const auto entries =
                    rowsOf(NqGeneralMotion(perMass * self().firstMomentRate(*link, state), {}));
                for (unsigned i = 0; i < entries.size(); ++i) {
                    jacobian[request.row + i][joint] = entries[i];
                }
            }
        }
        const NqVector arm = perMass * manipulator.compositeFirstMoment(p);
        const auto* reference =
            NqLinkLookup::internalLinkOrMessage(manipulator, request.relativeLink, badRelativeLabel);
        if (reference) {
            const NqVector inBase = manipulator.baseFrameInSystem(p).orientation().inverse() * arm;
            NqJacobianRows::subtractJointColumns(*reference, inBase, p, request.row, jacobian, rowsOf);
        }
        if (request.hasBaseColumns()) {
            NqJacobianRows::setBaseColumns(arm, request.baseColumn(), request.row, jacobian, rowsOf);
        }
    }

    /// The editable values of the filter: a limit of speed, one of acceleration that is also that of
    /// deceleration, and the mode, of which there are two words.
    static typename NqEditableValueTable<Derived>::Rows filterRows(const char* modeTooltip) {
        using F = NqPointMotionFilter;
        using Table = NqEditableValueTable<Derived>;
        constexpr auto filter = NqPointBasedEndEffector::theFilterPart;
        return Table::together(
            {Table::number("Max. Linear Velocity",
                           "The maximum linear velocity the end effector can achieve (m/s).", filter,
                           &F::threshold, &F::setThreshold),
             Table::number("Max. Linear Acceleration/Deceleration",
                           "The maximum linear acceleration/deceleration the end effector can achieve "
                           "(m/s^2).",
                           filter, &F::accelerationThreshold, &F::setAccelerationAndDecelerationThresholds),
             Table::modeWord(modeTooltip, filter, NqEditableModeWords::Set::Two)});
    }

private:
    const Derived& self() const { return static_cast<const Derived&>(*this); }
};
