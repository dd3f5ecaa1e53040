#pragma once

#include <nqControlCore/foundation/math/NqOrientation.h>
#include <nqControlCore/foundation/xml/NqXmlRealTupleType.h>

/// An XML value of a rotation: its unit quaternion in four numbers, the scalar first.
class NqXmlOrientation : public NqXmlRealTupleType<NqXmlOrientation, NqOrientation, 4> {
public:
    using NqXmlRealTupleType::NqXmlRealTupleType;
    NqXmlOrientation() = default;
    NqXmlOrientation& operator=(const NqOrientation& value) {
        m_Value = value;
        return *this;
    }

    static std::array<double, 4> toNumbers(const NqOrientation& value);
    static NqOrientation fromNumbers(const double* numbers);
};
