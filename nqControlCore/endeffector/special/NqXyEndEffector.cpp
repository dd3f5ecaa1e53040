#include <nqControlCore/endeffector/special/NqXyEndEffector.h>

double NqXyEndEffector::difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const {
    NqPlanarVector planar;
    planar.setToProjectionOf(way(a, b));
    return planar.mag();
}

void NqXyEndEffector::calculate2DPointPlacement(const NqIndividualManipulator& manipulator,
                                                NqManipulatorActiveState& state,
                                                NqPlanarVector& value) const {
    placeCoordinates(manipulator, state,
                     "NqXyEndEffector::calculate2DPointPlacement(): bad label on point end effector: %s.\n",
                     value);
}
