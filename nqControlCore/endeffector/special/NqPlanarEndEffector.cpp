#include <nqControlCore/endeffector/special/NqPlanarEndEffector.h>

#include <cmath>

double NqPlanarEndEffector::difference(const NqEndEffectorPlacement& a,
                                       const NqEndEffectorPlacement& b) const {
    return std::fabs(a.coordSysXForm().translation().z() - b.coordSysXForm().translation().z());
}
