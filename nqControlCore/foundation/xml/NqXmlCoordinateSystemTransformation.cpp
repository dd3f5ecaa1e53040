#include <nqControlCore/foundation/xml/NqXmlCoordinateSystemTransformation.h>

#include <nqControlCore/foundation/xml/NqXmlOrientation.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

#include <algorithm>

std::array<double, 7>
NqXmlCoordinateSystemTransformation::toNumbers(const NqCoordinateSystemTransformation& value) {
    std::array<double, 7> numbers{};
    const auto behind = std::ranges::copy(NqXmlVector::toNumbers(value.translation()), numbers.begin()).out;
    std::ranges::copy(NqXmlOrientation::toNumbers(value.orientation()), behind);
    return numbers;
}

NqCoordinateSystemTransformation NqXmlCoordinateSystemTransformation::fromNumbers(const double* numbers) {
    return {NqXmlVector::fromNumbers(numbers), NqXmlOrientation::fromNumbers(numbers + 3)};
}
