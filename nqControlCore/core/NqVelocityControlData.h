#pragma once

#include <nqControlCore/foundation/matrix/NqReArray.h>
#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>
#include <nqControlCore/xml/NqXmlVectorType.h>

#include <vector>

/// A matrix of control data together with the determinant of the primary matrix it came from, if that was
/// ever set.
class NqVelocityControlData : public NqReArray {
public:
    NqVelocityControlData() = default;
    NqVelocityControlData(const NqVelocityControlData&) = default;
    NqVelocityControlData& operator=(const NqVelocityControlData&) = default;

    /// Replace the matrix, and leave the determinant as it was: by rows, by one column, by a matrix.
    NqVelocityControlData& operator=(const NqXmlVectorType<NqXmlRealVector>& rows);
    NqVelocityControlData& operator=(const std::vector<double>& column);
    NqVelocityControlData& operator=(const NqReArray& array);

    bool operator==(const NqVelocityControlData& other) const;

    static NqVelocityControlData nullObject() { return referenceObject(); }

    /// The one default-constructed object that nullObject() copies.
    static const NqVelocityControlData& referenceObject();

    virtual void setPrimaryDeterminant(const double& determinant);

    /// The determinant; -1 as long as none was set.
    virtual double primaryDeterminant() const;

private:
    NqXmlBasicType<double> m_PrimaryDeterminant = 0.0;
    NqXmlBasicType<bool> m_PrimaryDeterminantIsSet = false;
};
