#include <nqControlCore/endeffector/special/NqXEndEffector.h>

double NqXEndEffector::difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const {
    return way(a, b).x();
}

void NqXEndEffector::calculate1DPointPlacement(const NqIndividualManipulator& manipulator,
                                               NqManipulatorActiveState& state, double& value) const {
    NqPlanarVector coordinates(value, 0.0);
    placeCoordinates(manipulator, state,
                     "NqXEndEffector::calculate1DPointPlacement(): bad label on point end effector: %s.\n",
                     coordinates);
    value = coordinates.x();
}
