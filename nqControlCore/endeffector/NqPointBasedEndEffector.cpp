#include <nqControlCore/endeffector/NqPointBasedEndEffector.h>

#include <algorithm>

void NqPointBasedEndEffector::filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                                        const NqXmlRealVector& previousVelocity,
                                                        double timeStep, NqXmlRealVector& filtered) const {
    NqVector out;
    pointMotionFilter().filter3DVelocity(pointVelocity(desiredVelocity), pointVelocity(previousVelocity),
                                         timeStep, out);
    convertFromPointVelocity(out, filtered);
}

void NqPointBasedEndEffector::filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                        const NqEndEffectorPlacement& desiredPlacement,
                                                        const NqXmlRealVector& desiredVelocity,
                                                        const NqXmlRealVector& previousVelocity,
                                                        double timeStep, NqManipulatorActiveState& state,
                                                        NqXmlRealVector& filtered) const {
    NqVector out;
    filterPointEndEffectorVelocity(manipulator, desiredPlacement, pointVelocity(desiredVelocity),
                                   pointVelocity(previousVelocity), timeStep, state, out);
    convertFromPointVelocity(out, filtered);
}

void NqPointBasedEndEffector::calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                                        const NqEndEffectorPlacement& desiredPlacement,
                                                        NqManipulatorActiveState& state,
                                                        NqXmlRealVector& error) const {
    const NqVector present = presentPlacement(manipulator, state).coordSysXForm().translation();
    error.resize(3);
    convertFromPointVelocity(desiredPlacement.coordSysXForm().translation() - present, error);
}

double NqPointBasedEndEffector::difference(const NqEndEffectorPlacement& a,
                                           const NqEndEffectorPlacement& b) const {
    return (a.coordSysXForm().inverse() * b.coordSysXForm()).translation().mag();
}

void NqPointBasedEndEffector::filterPointEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                             const NqEndEffectorPlacement& desiredPlacement,
                                                             const NqVector& desiredVelocity,
                                                             const NqVector& previousVelocity,
                                                             double timeStep, NqManipulatorActiveState& state,
                                                             NqVector& filtered) const {
    pointMotionFilter().calculate3DVelocity(
        presentPlacement(manipulator, state).coordSysXForm().translation(),
        desiredPlacement.coordSysXForm().translation(), desiredVelocity, previousVelocity, timeStep,
        filtered);
}

void NqPointBasedEndEffector::convertToPointVelocity(const NqXmlRealVector& velocity, NqVector& point) const {
    const auto count = static_cast<unsigned>(std::min<std::size_t>(velocity.size(), 3));
    for (unsigned i = 0; i < count; ++i) {
        point[i] = velocity[i];
    }
}

void NqPointBasedEndEffector::convertFromPointVelocity(const NqVector& point,
                                                       NqXmlRealVector& velocity) const {
    const unsigned count = std::min(doc(), 3U);
    velocity.resize(count);
    for (unsigned i = 0; i < count; ++i) {
        velocity[i] = point[i];
    }
}

NqVector NqPointBasedEndEffector::pointVelocity(const NqXmlRealVector& velocity) const {
    NqVector point;
    convertToPointVelocity(velocity, point);
    return point;
}
