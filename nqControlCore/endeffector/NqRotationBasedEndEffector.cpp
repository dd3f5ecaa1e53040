#include <nqControlCore/endeffector/NqRotationBasedEndEffector.h>

#include <nqControlCore/endeffector/NqVelocityEntries.h>

#include <cmath>

void NqRotationBasedEndEffector::filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                                           const NqXmlRealVector& previousVelocity,
                                                           double timeStep, NqXmlRealVector& filtered) const {
    NqVector out;
    motionFilter().filterVelocity(NqVelocityEntries::vectorAt(desiredVelocity),
                                  NqVelocityEntries::vectorAt(previousVelocity), timeStep, out);
    NqVelocityEntries::put(out, filtered);
}

double NqRotationBasedEndEffector::angleBetween(const NqEndEffectorPlacement& a,
                                                const NqEndEffectorPlacement& b) {
    double angle = 0.0;
    NqVector axis;
    (a.coordSysXForm().orientation().inverse() * b.coordSysXForm().orientation()).getAngleAxis(angle, axis);
    return std::fabs(angle);
}
