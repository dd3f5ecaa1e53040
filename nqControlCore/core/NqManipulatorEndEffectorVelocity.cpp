#include <nqControlCore/core/NqManipulatorEndEffectorVelocity.h>

const NqToken& NqManipulatorEndEffectorVelocity::classToken() {
    return NqControlCore::NqManipulatorEndEffectorVelocityToken;
}

bool NqManipulatorEndEffectorVelocity::setGeneralEndEffectorVelocity(unsigned int index,
                                                                     const NqXmlRealVector& velocity) {
    if (index >= m_GeneralEndEffectorVelocities.size()) {
        return false;
    }
    m_GeneralEndEffectorVelocities[index] = velocity;
    return true;
}

void NqManipulatorEndEffectorVelocity::getSingleVector(const std::vector<unsigned int>& indices,
                                                       std::vector<double>& result) const {
    NqStackedVectors::stack(m_GeneralEndEffectorVelocities, indices, result);
}

void NqManipulatorEndEffectorVelocity::getSingleVector(std::vector<double>& result) const {
    NqStackedVectors::stack(m_GeneralEndEffectorVelocities, result);
}

unsigned int NqManipulatorEndEffectorVelocity::doc(const std::vector<unsigned int>& indices) const {
    return NqStackedVectors::doc(m_GeneralEndEffectorVelocities, indices);
}

unsigned int NqManipulatorEndEffectorVelocity::doc() const {
    return NqStackedVectors::doc(m_GeneralEndEffectorVelocities);
}
