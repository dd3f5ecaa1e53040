#include <nqControlCore/foundation/xml/NqXmlVector.h>

std::array<double, 3> NqXmlVector::toNumbers(const NqVector& value) {
    return {value[0], value[1], value[2]};
}

NqVector NqXmlVector::fromNumbers(const double* numbers) {
    return {numbers[0], numbers[1], numbers[2]};
}
