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
        const bool hasNumbers = !pieces[0].empty();
        if (pieces.size() > 2 || (pieces.size() == 1 && !hasNumbers)) {
            return false;
        }
        if (hasNumbers && !NqDriveText::parseFiniteList(pieces[0], parsed.numbers)) {
            return false;
        }
        if (pieces.size() == 2) {
            std::vector<double> rotation;
            if ((hasNumbers && parsed.numbers.size() != 3) ||
                !NqDriveText::parseFiniteList(pieces[1], rotation) || rotation.size() != 3) {
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

std::string NqDriveTarget::forms() {
    std::string forms;
    for (const NqTargetForm& form : NqTargetForm::all()) {
        forms.append(forms.empty() ? "" : " or ").append(form.syntax);
    }
    return forms;
}

std::string NqDriveTarget::objection(const NqTargetKind& kind) const {
    const NqTargetForm& form = kind.form();
    bool suits = !orientation || form.hasOrientation();
    switch (numbers.size()) {
    case 0:
        break;
    case 1:
        suits = suits && (form.content == NqTargetForm::Number || kind.values() == 1);
        break;
    default:
        suits = suits && ((form.hasPlace() && numbers.size() == 3) ||
                          (form.content == NqTargetForm::Values && kind.values() == numbers.size()));
        break;
    }
    if (isHold() || suits) {
        return {};
    }
    const std::string needed = form.content == NqTargetForm::Nothing  ? ""
                               : form.content == NqTargetForm::Number ? "one number or "
                               : form.content == NqTargetForm::Values
                                   ? std::to_string(kind.values()) + " numbers or "
                                   : std::string(form.syntax) + " or ";
    return "needs " + needed + "hold";
}

NqEndEffectorPlacement NqDriveTarget::placement(const NqTargetKind& kind, bool isRelative,
                                                const NqEndEffectorPlacement& start) const {
    NqEndEffectorPlacement placement = start;
    NqCoordinateSystemTransformation& frame = placement.coordSysXForm();
    if (kind.form().content == NqTargetForm::Values) {
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            placement.dataVector()[i] = numbers[i] + (isRelative ? start.dataVector()[i] : 0.0);
        }
    } else if (numbers.size() == 1) {
        frame.setTranslationZ(numbers[0] + (isRelative ? frame.translation().z() : 0.0));
    } else if (!numbers.empty()) {
        const NqVector place(numbers[0], numbers[1], numbers[2]);
        frame.setTranslation(isRelative ? frame.translation() + place : place);
    }
    if (orientation) {
        frame.setOrientation(isRelative ? *orientation * frame.orientation() : *orientation);
    }
    return placement;
}

std::string NqDriveTarget::rangeObjection(const NqTargetKind& kind, const NqEndEffectorPlacement& target) {
    const double number = target.coordSysXForm().translation().z();
    if (kind.form().content != NqTargetForm::Number ||
        (number >= kind.leastNumber() && number <= kind.greatestNumber())) {
        return {};
    }
    return "cannot be " + NqDriveText::significant(number, 6) + ": it lies between " +
           NqDriveText::significant(kind.leastNumber(), 6) + " and " +
           NqDriveText::significant(kind.greatestNumber(), 6);
}

std::string NqDriveTarget::text(const NqTargetKind& kind, const NqEndEffectorPlacement& placement) {
    const NqCoordinateSystemTransformation& frame = placement;
    const NqVector& place = frame.translation();
    std::string text;
    switch (kind.form().content) {
    case NqTargetForm::Number:
        return NqDriveText::fixed(place.z(), 3);
    case NqTargetForm::Values:
        for (const double value : placement.dataVector()) {
            text += (text.empty() ? "" : ", ") + NqDriveText::fixed(value, 3);
        }
        return text;
    default:
        text = kind.hasPlace() ? NqDriveText::triple(place.x(), place.y(), place.z()) : "";
        break;
    }
    if (kind.hasOrientation()) {
        double angle = 0.0;
        NqVector axis;
        frame.orientation().getAngleAxis(angle, axis);
        const NqVector degrees = angle / kDegree * axis;
        text += (text.empty() ? "@ " : " @ ") + NqDriveText::fixed(degrees.x(), 1) + ", " +
                NqDriveText::fixed(degrees.y(), 1) + ", " + NqDriveText::fixed(degrees.z(), 1);
    }
    return text;
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
