#include "NqDriveTarget.h"

#include "NqDriveText.h"

#include <cmath>
#include <numbers>

namespace {

constexpr double kDegree = std::numbers::pi / 180.0;

} // namespace

bool NqDriveTarget::parse(std::string_view text, NqDriveTarget& target) {
    NqDriveTarget parsed;
    if (text != "hold") {
        const auto pieces = NqDriveText::split(text, '@');
        const bool hasPlace = !pieces[0].empty();
        if (pieces.size() > 2 || (pieces.size() == 1 && !hasPlace)) {
            return false;
        }
        if (hasPlace && (!NqDriveText::parseFiniteList(pieces[0], parsed.place) ||
                         (parsed.place.size() != 3 && parsed.place.size() != 1))) {
            return false;
        }
        if (pieces.size() == 2) {
            std::vector<double> rotation;
            if (parsed.place.size() == 1 || !NqDriveText::parseFiniteList(pieces[1], rotation) ||
                rotation.size() != 3) {
                return false;
            }
            const NqVector vector(rotation[0], rotation[1], rotation[2]);
            if (!std::isfinite(vector.mag())) {
                return false;
            }
            parsed.orientation.emplace(vector.mag() * kDegree, vector);
        }
    }
    target = std::move(parsed);
    return true;
}

const char* NqDriveTarget::forms() {
    return "X,Y,Z or X,Y,Z@RX,RY,RZ or @RX,RY,RZ or one number or hold";
}

bool NqDriveWayPoint::parse(std::string_view text, bool isRelative, NqDriveWayPoint& wayPoint) {
    NqDriveWayPoint parsed{isRelative, {}, {}};
    for (const std::string_view target : NqDriveText::split(text, '/')) {
        if (!NqDriveTarget::parse(NqDriveText::trimmed(target), parsed.targets.emplace_back())) {
            return false;
        }
    }
    wayPoint = std::move(parsed);
    return true;
}
