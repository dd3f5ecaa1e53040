#include <nqControlCore/core/NqVelocityControlData.h>

#include <nqControlCore/xml/NqFoundCommonCollections.h>

const NqVelocityControlData& NqVelocityControlData::referenceObject() {
    static const NqVelocityControlData theReference;
    return theReference;
}

NqVelocityControlData& NqVelocityControlData::operator=(const NqXmlVectorType<NqXmlRealVector>& rows) {
    NqFoundCommon::toReArray(rows, *this);
    return *this;
}

NqVelocityControlData& NqVelocityControlData::operator=(const std::vector<double>& column) {
    NqReArray::operator=(column);
    return *this;
}

NqVelocityControlData& NqVelocityControlData::operator=(const NqReArray& array) {
    NqReArray::operator=(array);
    return *this;
}

bool NqVelocityControlData::operator==(const NqVelocityControlData& other) const {
    return NqReArray::operator==(other) && m_PrimaryDeterminant == other.m_PrimaryDeterminant &&
           m_PrimaryDeterminantIsSet == other.m_PrimaryDeterminantIsSet;
}

void NqVelocityControlData::setPrimaryDeterminant(const double& determinant) {
    m_PrimaryDeterminant = determinant;
    m_PrimaryDeterminantIsSet = true;
}

double NqVelocityControlData::primaryDeterminant() const {
    return m_PrimaryDeterminantIsSet ? m_PrimaryDeterminant.value() : -1.0;
}
