#include <nqControlCore/endeffector/NqScalarBasedEndEffector.h>

#include <nqControlCore/endeffector/NqVelocityEntries.h>

#include <cmath>

using NqVelocityEntries::numberAt;

void NqScalarBasedEndEffector::calculateAcceleration(const NqIndividualManipulator&,
                                                     NqManipulatorActiveState&, NqXmlRealVector& acceleration,
                                                     unsigned start) const {
    NqVelocityEntries::putZeros(start, doc(), acceleration);
}

void NqScalarBasedEndEffector::filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                                         const NqXmlRealVector& previousVelocity,
                                                         double timeStep, NqXmlRealVector& filtered) const {
    double out = 0.0;
    motionFilter().filterVelocity(numberAt(desiredVelocity), numberAt(previousVelocity), timeStep, out);
    filtered.assign(1, out);
}

void NqScalarBasedEndEffector::filterNumber(double present, double desired, const NqTargetRequest& request,
                                            NqXmlRealVector& filtered) const {
    double out = 0.0;
    motionFilter().calculateVelocity(present, desired, numberAt(request.desiredVelocity),
                                     numberAt(request.previousVelocity), request.timeStep, out);
    filtered.assign(1, out);
}

double NqScalarBasedEndEffector::difference(const NqEndEffectorPlacement& a,
                                            const NqEndEffectorPlacement& b) const {
    return std::fabs(number(a) - number(b));
}
