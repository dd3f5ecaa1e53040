#include <nqControlCore/core/NqManipulatorEndEffectorAcceleration.h>

const NqToken& NqManipulatorEndEffectorAcceleration::classToken() {
    return NqControlCore::NqManipulatorEndEffectorAccelerationToken;
}

void NqManipulatorEndEffectorAcceleration::setGeneralEndEffectorAccelerations(const Vectors& accelerations) {
    m_GeneralEndEffectorAccelerations = accelerations;
    m_OffsetTransformations.resize(accelerations.size());
}

void NqManipulatorEndEffectorAcceleration::getSingleVector(std::vector<double>& result) const {
    NqStackedVectors::stack(m_GeneralEndEffectorAccelerations, result);
}

unsigned int NqManipulatorEndEffectorAcceleration::doc() const {
    return NqStackedVectors::doc(m_GeneralEndEffectorAccelerations);
}
