#include <nqControlCore/endeffector/NqScalarBasedEndEffector.h>

#include <cmath>

namespace {

double firstEntry(const NqXmlRealVector& velocity) {
    return velocity.empty() ? 0.0 : velocity[0];
}

} // namespace

void NqScalarBasedEndEffector::filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                                         const NqXmlRealVector& previousVelocity,
                                                         double timeStep, NqXmlRealVector& filtered) const {
    double out = 0.0;
    motionFilter().filterVelocity(firstEntry(desiredVelocity), firstEntry(previousVelocity), timeStep, out);
    filtered.assign(1, out);
}

void NqScalarBasedEndEffector::filterNumber(double present, double desired,
                                            const NqXmlRealVector& desiredVelocity,
                                            const NqXmlRealVector& previousVelocity, double timeStep,
                                            NqXmlRealVector& filtered) const {
    double out = 0.0;
    motionFilter().calculateVelocity(present, desired, firstEntry(desiredVelocity),
                                     firstEntry(previousVelocity), timeStep, out);
    filtered.assign(1, out);
}

double NqScalarBasedEndEffector::difference(const NqEndEffectorPlacement& a,
                                            const NqEndEffectorPlacement& b) const {
    return std::fabs(number(a) - number(b));
}
