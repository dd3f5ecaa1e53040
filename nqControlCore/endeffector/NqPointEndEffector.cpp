#include <nqControlCore/endeffector/NqPointEndEffector.h>

void NqPointEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                            NqManipulatorActiveState& state,
                                            NqEndEffectorPlacement& placement) const {
    NqVector position;
    calculatePointPlacement(manipulator, state, position);
    placement.setCoordSysXForm(position);
}

void NqPointEndEffector::calculatePointPlacement(const NqIndividualManipulator& manipulator,
                                                 NqManipulatorActiveState& state, NqVector& point) const {
    if (const auto* link = linkOrMessage(manipulator, theMotionPlan.badPlacementLabel)) {
        point = pointPosition(*link, pointOffset(), state.activePositionState());
    }
}

NqVector NqPointEndEffector::pointOffset() const {
    return externalOffset() ? point() + externalOffset()->translation() : point();
}

const NqEditableValueTable<NqPointEndEffector>& NqPointEndEffector::editableTable() {
    using E = NqPointEndEffector;
    using F = NqPointMotionFilter;
    using Table = NqEditableValueTable<E>;
    constexpr auto point = [](auto& e) -> auto& {
        return e.m_Point.value();
    };
    static const Table table = {
        Table::vector({{"Frame Offset: X", "The X offset of the end effector frame (meters).  This is "
                                           "measured from the DH-Frame of the link"},
                       {"Frame Offset: Y", "The Y offset of the end effector frame (meters).  This is "
                                           "measured from the DH-Frame of the link"},
                       {"Frame Offset: Z", "The Z offset of the end effector frame (meters).  This is "
                                           "measured from the DH-Frame of the link"}},
                      point),
        limitRows<E>("Linear", {"The maximum linear velocity the end effector can achieve (m/s)",
                                "The maximum linear acceleration the end effector can achieve (m/s^2)",
                                "The maximum linear deceleration the end effector can achieve (m/s^2)"}),
        Table::modeWord(
            "The velocity profile type.  Current supported values are: trapezoidal and proportional",
            theFilterPart),
        Table::number("Exponent", "Unused", theFilterPart, &F::exponent, &F::setExponent),
        Table::hardConstraint(),
        Table::number(
            "Soft Constraint Gain",
            "If this is a soft contraint, gain value (g) such that the soft contraint gain G = g*S (where "
            "S is the overall gain value set in the soft contraint handler)",
            &E::errorWeight, &E::setErrorWeight),
    };
    return table;
}
