#include <nqControlCore/endeffector/NqFrameEndEffector.h>

#include <cmath>

double NqFrameEndEffector::difference(const NqEndEffectorPlacement& a,
                                      const NqEndEffectorPlacement& b) const {
    const NqCoordinateSystemTransformation relative = a.coordSysXForm().inverse() * b.coordSysXForm();
    double angle = 0.0;
    NqVector axis;
    relative.orientation().getAngleAxis(angle, axis);
    return relative.translation().mag() * linearErrorWeight() + std::fabs(angle) * angularErrorWeight();
}
