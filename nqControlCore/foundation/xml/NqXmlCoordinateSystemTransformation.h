#pragma once

#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/xml/NqXmlRealTupleType.h>

/// An XML value of a rigid transformation: its translation in three numbers, then its unit quaternion in
/// four, scalar first.
class NqXmlCoordinateSystemTransformation
    : public NqXmlRealTupleType<NqXmlCoordinateSystemTransformation, NqCoordinateSystemTransformation, 7> {
public:
    using NqXmlRealTupleType::NqXmlRealTupleType;
    NqXmlCoordinateSystemTransformation() = default;
    NqXmlCoordinateSystemTransformation& operator=(const NqCoordinateSystemTransformation& value) {
        m_Value = value;
        return *this;
    }

    static std::array<double, 7> toNumbers(const NqCoordinateSystemTransformation& value);
    static NqCoordinateSystemTransformation fromNumbers(const double* numbers);
};
