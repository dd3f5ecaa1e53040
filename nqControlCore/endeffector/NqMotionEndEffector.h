#pragma once

#include <nqControlCore/endeffector/NqLinkMotion.h>
#include <nqControlCore/endeffector/NqMotionPlan.h>
#include <nqControlCore/endeffector/NqRowEndEffector.h>
#include <nqControlCore/foundation/math/NqEndEffectorPlacement.h>

#include <algorithm>
#include <array>
#include <utility>

/// The layer between an end-effector class and its base that gives rows, placement, velocity and acceleration
/// where the rows are components of the motion of a frame fixed in a link. The column of a joint is
///
///     (w x d + v, w)
///
/// with (v, w) the motion of its link's frame for unit rate and d the way from that frame to the
/// end-effector's, all in the system frame; of it the class takes those components, in those axes, that its
/// plan names.
///
/// Derived offers `static constexpr NqMotionPlan theMotionPlan`; `motionFrame()`, the frame, measured from
/// the primary frame of the link; and for turned axes
///
///     NqOrientation rowAxes(const NqIndividualManipulator&, const NqEndEffectorRelativeLinkData&,
///                           const NqManipulatorLink&, NqManipulatorActivePositionState&) const
///
/// The rows weigh linearErrorWeight() and angularErrorWeight() where Derived has them, or else errorWeight().
///
/// A link that is not found leaves the placement, and gives zeros without a message for velocity and
/// acceleration, unless the plan says otherwise.
template <typename Derived, typename Base>
class NqMotionEndEffector : public NqRowEndEffector<Derived, Base> {
public:
    using SparsityDescription = typename Base::SparsityDescription;

    unsigned doc() const override { return plan().rows.size(); }

    void insertRows(const NqRowRequest& request, NqManipulatorActiveState& state, NqReArray& jacobian) const {
        const auto& [manipulator, row, relativeLink, fixedBase] = request;
        const auto* link = this->linkOrMessage(manipulator, plan().badLabel);
        if (!link) {
            return;
        }
        NqManipulatorActivePositionState& p = state.activePositionState();
        const NqVector origin = NqLinkMotion::position(*link, self().motionFrame().translation(), p);
        const Rows rows = rowsFor(manipulator, relativeLink, *link, p);
        NqJacobianRows::setJointColumns(*link, origin, p, row, jacobian, rows);
        if constexpr (plan().hasRelativeColumns) {
            const auto* reference =
                NqLinkLookup::internalLinkOrMessage(manipulator, relativeLink, plan().badRelativeLabel);
            if (reference) {
                NqJacobianRows::subtractJointColumns(*reference, origin, p, row, jacobian, rows);
            }
        }
        if (request.hasBaseColumns()) {
            insertBaseColumns(request, origin, p, rows, jacobian);
        }
    }

    void insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const {
        const auto& [manipulator, row, relativeLink, fixedBase] = request;
        if constexpr (plan().clearsBits) {
            for (unsigned i = row; i < row + doc(); ++i) {
                std::fill_n(sparsity[i].begin(), request.width(), false);
            }
        }
        const auto* link = this->linkOrMessage(manipulator, plan().badSparsityLabel);
        const auto* reference =
            NqLinkLookup::internalLinkOrMessage(manipulator, relativeLink, plan().badSparsityRelativeLabel);
        NqSparsityBits::setChain(link, row, doc(), sparsity);
        NqSparsityBits::setChain(reference, row, doc(), sparsity);
        for (unsigned i = 0; i < doc() && request.hasBaseColumns(); ++i) {
            for (unsigned c = 0; c < NqRowRequest::theBaseDof; ++c) {
                if (plan().baseMoves(i, c)) {
                    sparsity[row + i][request.baseColumn() + c] = true;
                }
            }
        }
    }

    double rowWeight(unsigned i) const {
        if constexpr (requires { self().linearErrorWeight(); }) {
            return plan().rows[i] < 3 ? self().linearErrorWeight() : self().angularErrorWeight();
        } else {
            return self().errorWeight();
        }
    }

    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override {
        const auto* link = this->linkOrMessage(manipulator, plan().badPlacementLabel);
        if (!link) {
            return;
        }
        const auto& frame = link->primaryFrameInSystem(state.activePositionState());
        if constexpr (plan().placement == NqMotionPlan::Placement::Point) {
            placement.setCoordSysXForm(frame * self().motionFrame().translation());
        } else if constexpr (plan().placement == NqMotionPlan::Placement::Orientation) {
            placement.setCoordSysXForm(frame.orientation() * self().motionFrame().orientation());
        } else {
            placement.setCoordSysXForm(frame * self().motionFrame());
        }
    }

    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override {
        if (const auto* link = this->ownLink(manipulator)) {
            const NqGeneralMotion motion =
                NqLinkMotion::velocity(*link, self().motionFrame().translation(), state);
            putRows(manipulator, *link, state, motion, start, plan().velocityTail, velocity);
        } else if (plan().lostLinkRests) {
            NqVelocityEntries::put(std::array<double, theCount()>{}, start, plan().velocityTail, velocity);
        }
    }

    void calculateAcceleration(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                               NqXmlRealVector& acceleration, unsigned start) const override {
        if (const auto* link = this->ownLink(manipulator)) {
            const NqGeneralMotion motion = NqLinkMotion::acceleration(*link, self().motionFrame(), state);
            putRows(manipulator, *link, state, motion, start, plan().accelerationTail, acceleration);
        } else {
            NqVelocityEntries::put(std::array<double, theCount()>{}, start, plan().accelerationTail,
                                   acceleration);
        }
    }

private:
    static constexpr const NqMotionPlan& plan() { return Derived::theMotionPlan; }
    static constexpr unsigned theCount() { return Derived::theMotionPlan.rows.size(); }

    /// Takes the rows out of a motion.
    struct Rows {
        std::array<NqVector, 3> axes; ///< of the components, where they are turned

        std::array<double, theCount()> operator()(const NqGeneralMotion& motion) const {
            return take(motion, std::make_index_sequence<theCount()>());
        }

    private:
        /// All at once, the components known to the compiler: this is the innermost loop of a Jacobian.
        template <std::size_t... Is>
        std::array<double, theCount()> take(const NqGeneralMotion& motion, std::index_sequence<Is...>) const {
            return {component<Derived::theMotionPlan.rows[Is]>(motion)...};
        }
        template <unsigned Component>
        double component(const NqGeneralMotion& motion) const {
            const NqVector& part = Component < 3 ? motion.linear() : motion.angular();
            if constexpr (plan().axes == NqMotionPlan::Axes::System) {
                return part[Component % 3];
            } else {
                return axes[Component % 3].dot(part);
            }
        }
    };

    Rows rowsFor(const NqIndividualManipulator& manipulator,
                 const NqEndEffectorRelativeLinkData& relativeLink, const NqManipulatorLink& link,
                 NqManipulatorActivePositionState& state) const {
        const auto inAxesOf = [](const NqOrientation& orientation) {
            Rows rows;
            orientation.getDcmColumns(rows.axes[0], rows.axes[1], rows.axes[2]);
            return rows;
        };
        if constexpr (plan().axes == NqMotionPlan::Axes::Own) {
            return inAxesOf(link.primaryFrameInSystem(state).orientation() *
                            self().motionFrame().orientation());
        } else if constexpr (plan().axes == NqMotionPlan::Axes::Turned) {
            return inAxesOf(self().rowAxes(manipulator, relativeLink, link, state));
        } else {
            return {};
        }
    }

    void putRows(const NqIndividualManipulator& manipulator, const NqManipulatorLink& link,
                 NqManipulatorActiveState& state, const NqGeneralMotion& motion, unsigned start,
                 NqVelocityEntries::Tail tail, NqXmlRealVector& values) const {
        const Rows rows = rowsFor(manipulator, this->relativeLinkData(), link, state.activePositionState());
        NqVelocityEntries::put(rows(motion), start, tail, values);
    }

    void insertBaseColumns(const NqRowRequest& request, const NqVector& origin,
                           NqManipulatorActivePositionState& state, const Rows& rows,
                           NqReArray& jacobian) const {
        using BaseColumns = NqMotionPlan::BaseColumns;
        if constexpr (plan().base == BaseColumns::Motion) {
            const NqVector arm = origin - request.manipulator.baseFrameInSystem(state).translation();
            NqJacobianRows::setBaseColumns(arm, request.baseColumn(), request.row, jacobian, rows);
        } else if constexpr (plan().base == BaseColumns::RotationInTranslation) {
            for (unsigned i = 0; i < doc(); ++i) {
                for (unsigned c = 0; c < 3; ++c) {
                    jacobian[request.row + i][request.baseColumn() + c] = plan().baseMoves(i, c) ? 1.0 : 0.0;
                }
            }
        }
    }

    const Derived& self() const { return static_cast<const Derived&>(*this); }
};
