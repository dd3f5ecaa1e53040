#include <nqControlCore/core/NqControlParameters.h>

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>

const NqToken& NqControlParameters::classToken() {
    return NqControlCore::NqControlParametersToken;
}

void NqControlParameters::createDefaultFromManipulator(const NqIndividualManipulator& manipulator) {
    constexpr double unlimited = 1.0e+300;
    m_AccelerationLimits.resize(manipulator.numberOfJoints(), unlimited);
    m_VelocityLimits.resize(manipulator.numberOfJoints(), 1.0);
}

bool NqControlParameters::sameValue(const NqControlParameters& other) const {
    return NqXmlPersistentBase::sameValue(other) &&
           m_SingularityProximityThreshold == other.m_SingularityProximityThreshold;
}
