#pragma once

#include <nqControlCore/foundation/math/NqVector.h>
#include <nqControlCore/foundation/xml/NqXmlRealTupleType.h>

/// An XML value of a vector: three numbers x, y, z.
class NqXmlVector : public NqXmlRealTupleType<NqXmlVector, NqVector, 3> {
public:
    using NqXmlRealTupleType::NqXmlRealTupleType;
    NqXmlVector() = default;
    NqXmlVector& operator=(const NqVector& value) {
        m_Value = value;
        return *this;
    }

    static std::array<double, 3> toNumbers(const NqVector& value);
    static NqVector fromNumbers(const double* numbers);
};
