#include <nqControlCore/endeffector/special/NqSlideXSpinZEndEffector.h>

double NqSlideXSpinZEndEffector::difference(const NqEndEffectorPlacement& a,
                                            const NqEndEffectorPlacement& b) const {
    return (a.coordSysXForm().inverse() * b.coordSysXForm()).translation().mag();
}
