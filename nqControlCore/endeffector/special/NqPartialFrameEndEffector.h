#pragma once

#include <nqControlCore/endeffector/NqFrameBasedEndEffector.h>
#include <nqControlCore/endeffector/NqMotionEndEffector.h>
#include <nqControlCore/endeffector/NqTargetedEndEffector.h>
#include <nqControlCore/foundation/text/NqTextLiteral.h>

/// The plan of a constraint on some freedoms of a frame, in the frame's own axes. Messages name the class,
/// those of the Jacobian the class that it is part of.
template <NqTextLiteral Class, NqTextLiteral JacobianClass = "NqFrameEndEffector">
constexpr NqMotionPlan nqPartialFramePlan(NqMotionComponents rows) {
    return {.rows = rows,
            .axes = NqMotionPlan::Axes::Own,
            .clearsBits = true,
            .lostLinkRests = false,
            .velocityTail = NqMotionPlan::Tail::Kept,
            .accelerationTail = NqMotionPlan::Tail::Kept,
            .badLabel =
                NqJoinedText<JacobianClass,
                             "::insertJacobianComponent(): bad label on frame end effector: %s.\n">::text(),
            .badRelativeLabel =
                NqJoinedText<JacobianClass,
                             "::insertJacobianComponent(): bad index on relative link: %d.\n">::text(),
            .badSparsityLabel =
                NqJoinedText<Class,
                             "::insertSparsityComponent(): bad label on point end effector: %s.\n">::text(),
            .badSparsityRelativeLabel =
                NqJoinedText<Class, "::insertSparsityComponent(): bad index on relative link: %d.\n">::text(),
            .badPlacementLabel =
                NqJoinedText<Class,
                             "::calculateFramePlacement():  bad label on frame end effector: %s.\n">::text()};
}

/// The layer of the end-effectors that constrain some freedoms of a frame fixed in a link. With R the present
/// orientation of the frame and (v; w) its motion, all in the system frame, the rows are those components of
///
///     (R^-1 v; R^-1 w)
///
/// that the plan of the class names; the others are free. Placement, files and editable values are those of a
/// whole frame.
///
/// - Velocity and acceleration are lists of these components too. A list that is longer than they need keeps
///   its length. A link that is not found leaves the velocity as it was, and gives zeros for the
///   acceleration.
/// - The error is not: it has the first doc() entries of that of a whole frame, in the system frame, unless
///   the class says otherwise. The motion filter gives the command that belongs to the rows.
/// - The filter takes the way of the whole frame, that of the free motions too, and what it asks for there is
///   dropped after limits are applied.
///
/// Derived offers its name, `static constexpr NqTextLiteral theName`.
template <typename Derived>
class NqPartialFrameEndEffector
    : public NqTargetedEndEffector<Derived, NqMotionEndEffector<Derived, NqFrameBasedEndEffector>> {
public:
    /// The frame in the system; false where the link is not found.
    virtual bool calculateFrameInSystem(const NqIndividualManipulator& manipulator,
                                        NqManipulatorActiveState& state,
                                        NqCoordinateSystemTransformation& frame) const {
        const auto* link = this->ownLink(manipulator);
        if (link) {
            frame = link->primaryFrameInSystem(state.activePositionState()) * this->frameOffset();
        }
        return link != nullptr;
    }

    /// The desired velocity must have doc() entries, or else the output stays, with a message. The previous
    /// one plays no part: the filter counts every step as one from rest, and its limits of acceleration
    /// times the step bound the speed.
    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const {
        NqCoordinateSystemTransformation frame;
        if (!isRightSize(request.desiredVelocity.size() == this->doc()) ||
            !calculateFrameInSystem(request.manipulator, request.state, frame)) {
            return;
        }
        NqGeneralMotion out;
        this->filterFrameEndEffectorVelocity(request.manipulator, request.desiredPlacement,
                                             systemMotion(request.desiredVelocity, frame.orientation()), {},
                                             request.timeStep, request.state, out);
        putRows(out, frame.orientation(), filtered);
    }

protected:
    /// Says so where a velocity hasn't the right size.
    static bool isRightSize(bool isRight) {
        if (!isRight) {
            Nq::Print::instance().write(
                Nq::PrintFailure,
                NqJoinedText<Derived::theName,
                             "::filterEndEffectorVelocity input velocity size wrong.">::text());
        }
        return isRight;
    }

    /// The motion in the system frame that has these rows, the first doc() entries, in a frame of that
    /// orientation, and zeros in the free components.
    static NqGeneralMotion systemMotion(const NqXmlRealVector& rows, const NqOrientation& orientation) {
        NqVector parts[2];
        for (unsigned i = 0; i < rowComponents().size(); ++i) {
            parts[rowComponents()[i] / 3][rowComponents()[i] % 3] = rows[i];
        }
        return orientation * NqGeneralMotion(parts[0], parts[1]);
    }

    /// Makes a list the rows of a motion in the system frame.
    static void putRows(const NqGeneralMotion& motion, const NqOrientation& orientation,
                        NqXmlRealVector& rows) {
        const NqGeneralMotion own = orientation.inverse() * motion;
        rows.resize(rowComponents().size());
        for (unsigned i = 0; i < rowComponents().size(); ++i) {
            rows[i] = own[rowComponents()[i]];
        }
    }

private:
    static constexpr const NqMotionComponents& rowComponents() { return Derived::theMotionPlan.rows; }
};
