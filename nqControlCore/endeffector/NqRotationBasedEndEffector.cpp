#include <nqControlCore/endeffector/NqRotationBasedEndEffector.h>

#include <nqControlCore/endeffector/NqVelocityEntries.h>

void NqRotationBasedEndEffector::filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                                           const NqXmlRealVector& previousVelocity,
                                                           double timeStep, NqXmlRealVector& filtered) const {
    NqVector out;
    motionFilter().filterVelocity(NqVelocityEntries::vectorAt(desiredVelocity),
                                  NqVelocityEntries::vectorAt(previousVelocity), timeStep, out);
    NqVelocityEntries::put(out, filtered);
}
