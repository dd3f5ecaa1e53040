#include <nqControlCore/foundation/xml/NqXmlOrientation.h>

std::array<double, 4> NqXmlOrientation::toNumbers(const NqOrientation& value) {
    std::array<double, 4> q{};
    value.getQuaternion(q[0], q[1], q[2], q[3]);
    return q;
}

NqOrientation NqXmlOrientation::fromNumbers(const double* numbers) {
    NqOrientation orientation;
    orientation.setFromQuaternion(numbers[0], numbers[1], numbers[2], numbers[3]);
    return orientation;
}
