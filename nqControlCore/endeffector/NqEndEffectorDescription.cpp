#include <nqControlCore/endeffector/NqEndEffectorDescription.h>

const NqEndEffectorDescription& NqEndEffectorDescription::none() {
    static const NqEndEffectorDescription theDescription;
    return theDescription;
}
