#pragma once

#include <nqControlCore/foundation/math/NqGeneralMotion.h>
#include <nqControlCore/foundation/xml/NqXmlRealTupleType.h>

/// An XML value of a spatial motion: six numbers, the linear part, then the angular part.
class NqXmlGeneralMotion : public NqXmlRealTupleType<NqXmlGeneralMotion, NqGeneralMotion, 6> {
public:
    using NqXmlRealTupleType::NqXmlRealTupleType;
    NqXmlGeneralMotion() = default;
    NqXmlGeneralMotion& operator=(const NqGeneralMotion& value) {
        m_Value = value;
        return *this;
    }

    static std::array<double, 6> toNumbers(const NqGeneralMotion& value) {
        return {value[0], value[1], value[2], value[3], value[4], value[5]};
    }
    static NqGeneralMotion fromNumbers(const double* numbers) {
        return {{numbers[0], numbers[1], numbers[2]}, {numbers[3], numbers[4], numbers[5]}};
    }
};
