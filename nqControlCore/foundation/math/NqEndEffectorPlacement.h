#pragma once

#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>

/// Where an end-effector is or is to be: a frame, and a list of numbers for the end-effectors whose placement
/// is one.
///
/// Point end-effectors use the translation, orientation end-effectors the orientation, scalar end-effectors
/// the z translation.
class NqEndEffectorPlacement {
public:
    NqEndEffectorPlacement() = default;
    NqEndEffectorPlacement(const NqCoordinateSystemTransformation& coordSysXForm)
        : m_CoordSysXForm(coordSysXForm) {}

    const NqCoordinateSystemTransformation& coordSysXForm() const { return m_CoordSysXForm; }
    NqCoordinateSystemTransformation& coordSysXForm() { return m_CoordSysXForm; }
    void setCoordSysXForm(const NqCoordinateSystemTransformation& coordSysXForm) {
        m_CoordSysXForm = coordSysXForm;
    }
    operator const NqCoordinateSystemTransformation&() const { return m_CoordSysXForm; }

    const NqXmlRealVector& dataVector() const { return m_DataVector; }
    NqXmlRealVector& dataVector() { return m_DataVector; }
    void setDataVector(const NqXmlRealVector& dataVector) { m_DataVector = dataVector; }

    bool operator==(const NqEndEffectorPlacement&) const = default;

private:
    NqCoordinateSystemTransformation m_CoordSysXForm;
    NqXmlRealVector m_DataVector;
};
