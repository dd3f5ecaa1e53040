#include <nqControlCore/core/NqManipulatorEndEffectorForce.h>

const NqToken& NqManipulatorEndEffectorForce::classToken() {
    return NqControlCore::NqManipulatorEndEffectorForceToken;
}

void NqManipulatorEndEffectorForce::getSingleVector(std::vector<double>& result) const {
    NqStackedVectors::stack(m_GeneralEndEffectorForces, result);
}

unsigned int NqManipulatorEndEffectorForce::doc() const {
    return NqStackedVectors::doc(m_GeneralEndEffectorForces);
}
