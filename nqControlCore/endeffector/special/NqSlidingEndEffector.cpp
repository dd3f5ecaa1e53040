#include <nqControlCore/endeffector/special/NqSlidingEndEffector.h>

double NqSlidingEndEffector::difference(const NqEndEffectorPlacement& a,
                                        const NqEndEffectorPlacement& b) const {
    return (a.coordSysXForm().inverse() * b.coordSysXForm()).translation().mag();
}

double NqSlidingEndEffector::minimumTime(const NqEndEffectorPlacement& from,
                                         const NqEndEffectorPlacement& to) const {
    return difference(from, to) / NqMath::nonZeroPos(motionFilter().threshold());
}
