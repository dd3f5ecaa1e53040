#include "NqDriveTargetKind.h"

#include "NqDriveText.h"

#include <nqControlCore/endeffector/NqAxisRotateEndEffector.h>
#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/endeffector/NqLinearConstraintEndEffector.h>
#include <nqControlCore/endeffector/NqOrientationEndEffector.h>
#include <nqControlCore/endeffector/NqPointDistanceEndEffector.h>
#include <nqControlCore/endeffector/NqPointEndEffector.h>

#include <algorithm>
#include <cmath>
#include <numbers>

using NqDriveText::significant;

namespace {

constexpr double kDegree = std::numbers::pi / 180.0;
/// The exponent at which the speed falls with the power 2/3 of the distance, from power 3/2 of the time.
constexpr double kThreeHalvesExponent = 0.5;

using Part = NqDriveTargetKind::Part;

Part linearPart(const NqGeneralMotionFilter& filter) {
    const double factor = filter.speedFactor();
    return {false,
            "m",
            0,
            3,
            factor * filter.linearVelocityThreshold(),
            factor * filter.linearAccelerationThreshold(),
            factor * std::min(filter.linearAccelerationThreshold(), filter.linearDecelerationThreshold())};
}

/// Of a filter of frames, or of rotations alone.
template <typename Filter>
Part angularPart(const Filter& filter, unsigned row) {
    const double factor = filter.speedFactor();
    return {true,
            "rad",
            row,
            3,
            factor * filter.angularVelocityThreshold(),
            factor * filter.angularAccelerationThreshold(),
            factor * std::min(filter.angularAccelerationThreshold(), filter.angularDecelerationThreshold())};
}

/// Of a filter of points, or of numbers.
template <typename Filter>
Part plainPart(const Filter& filter, const std::string& unit, unsigned rows) {
    const double factor = filter.speedFactor();
    return {false,
            unit,
            0,
            rows,
            factor * filter.threshold(),
            factor * filter.accelerationThreshold(),
            factor * std::min(filter.accelerationThreshold(), filter.decelerationThreshold())};
}

/// The unit that all joints of a sum have in common.
std::string unitOfSum(const NqLinearConstraintEndEffector& sum, const NqIndividualManipulator& manipulator) {
    std::string unit;
    for (const auto& label : sum.linkLabels()) {
        const NqManipulatorLink* link = manipulator.linkByLabel(label.value());
        if (link && link->parentLink()) {
            const std::string own = link->joint().type() == NqJointDescription::Prismatic ? "m" : "rad";
            if (!unit.empty() && unit != own) {
                return {};
            }
            unit = own;
        }
    }
    return unit;
}

template <typename Filter>
void shape(Filter& filter, unsigned int filteringMode) {
    filter.setFilteringMode(filteringMode);
    if (filteringMode == NqBaseMotionFilter::ThreeHalves && filter.exponent() == 0.0) {
        filter.setExponent(kThreeHalvesExponent);
    }
}

} // namespace

std::optional<NqDriveTargetKind> NqDriveTargetKind::of(const NqEndEffector& endEffector,
                                                       const NqIndividualManipulator& manipulator) {
    NqDriveTargetKind kind;
    const std::string& link = endEffector.linkIdentifier();
    if (const auto* point = dynamic_cast<const NqPointEndEffector*>(&endEffector)) {
        kind.m_HasPlace = true;
        kind.m_Parts = {plainPart(point->pointMotionFilter(), "m", 3)};
        kind.m_Ties = {{link, point->point()}};
    } else if (const auto* frame = dynamic_cast<const NqFrameEndEffector*>(&endEffector)) {
        kind.m_HasPlace = kind.m_HasOrientation = true;
        kind.m_Parts = {linearPart(frame->motionFilter()), angularPart(frame->motionFilter(), 3)};
        kind.m_Ties = {{link, frame->frame()}};
    } else if (const auto* orientation = dynamic_cast<const NqOrientationEndEffector*>(&endEffector)) {
        kind.m_HasOrientation = true;
        kind.m_Parts = {angularPart(orientation->motionFilter(), 0)};
        kind.m_Ties = {{link, orientation->orientation()}};
    } else if (const auto* distance = dynamic_cast<const NqPointDistanceEndEffector*>(&endEffector)) {
        kind.m_LeastNumber = NqPointDistanceEndEffector::m_theMinimumDistance;
        kind.m_Parts = {plainPart(distance->motionFilter(), "m", 1)};
        kind.m_Ties = {{distance->labelOne(), distance->pointOne()},
                       {distance->labelTwo(), distance->pointTwo()}};
    } else if (const auto* angle = dynamic_cast<const NqAxisRotateEndEffector*>(&endEffector)) {
        kind.m_LeastNumber = -0.5 * std::numbers::pi;
        kind.m_GreatestNumber = 0.5 * std::numbers::pi;
        kind.m_Parts = {plainPart(angle->motionFilter(), "rad", 1)};
        kind.m_Ties = {{link, NqVector()}};
    } else if (const auto* sum = dynamic_cast<const NqLinearConstraintEndEffector*>(&endEffector)) {
        kind.m_Parts = {plainPart(sum->motionFilter(), unitOfSum(*sum, manipulator), 1)};
    } else {
        return std::nullopt;
    }
    return kind;
}

void NqDriveTargetKind::setProfile(NqEndEffector& endEffector, unsigned int filteringMode) {
    const auto reshape = [&](auto* owner) {
        if (owner) {
            auto filter = owner->motionFilter();
            shape(filter, filteringMode);
            owner->setMotionFilter(filter);
        }
    };
    if (auto* point = dynamic_cast<NqPointBasedEndEffector*>(&endEffector)) {
        NqPointMotionFilter filter = point->pointMotionFilter();
        shape(filter, filteringMode);
        point->setPointMotionFilter(filter);
    }
    reshape(dynamic_cast<NqFrameBasedEndEffector*>(&endEffector));
    reshape(dynamic_cast<NqRotationBasedEndEffector*>(&endEffector));
    reshape(dynamic_cast<NqScalarBasedEndEffector*>(&endEffector));
}

const char* NqDriveTargetKind::form() const {
    if (isNumber()) {
        return "one number";
    }
    return !m_HasOrientation ? "X,Y,Z" : !m_HasPlace ? "@RX,RY,RZ" : "X,Y,Z@RX,RY,RZ";
}

std::string NqDriveTargetKind::objection(const NqDriveTarget& target) const {
    const bool suits =
        target.isHold() || (target.place.size() == 1 ? isNumber()
                                                     : (target.place.empty() || m_HasPlace) &&
                                                           (!target.orientation || m_HasOrientation));
    return suits ? "" : std::string("needs ") + form() + " or hold";
}

NqEndEffectorPlacement NqDriveTargetKind::placement(const NqDriveTarget& target, bool isRelative,
                                                    const NqEndEffectorPlacement& start) const {
    NqCoordinateSystemTransformation frame = start.coordSysXForm();
    if (isNumber()) {
        frame.setTranslationZ(target.place[0] + (isRelative ? frame.translation().z() : 0.0));
    } else if (!target.place.empty()) {
        const NqVector place(target.place[0], target.place[1], target.place[2]);
        frame.setTranslation(isRelative ? frame.translation() + place : place);
    }
    if (target.orientation) {
        frame.setOrientation(isRelative ? *target.orientation * frame.orientation() : *target.orientation);
    }
    return frame;
}

std::string NqDriveTargetKind::rangeObjection(const NqEndEffectorPlacement& target) const {
    const double number = target.coordSysXForm().translation().z();
    if (!isNumber() || (number >= m_LeastNumber && number <= m_GreatestNumber)) {
        return {};
    }
    return "cannot be " + significant(number, 6) + ": it lies between " + significant(m_LeastNumber, 6) +
           " and " + significant(m_GreatestNumber, 6);
}

NqEndEffectorPlacement NqDriveTargetKind::presentInRelative(const NqEndEffector& endEffector,
                                                            const NqIndividualManipulator& manipulator,
                                                            NqManipulatorActiveState& state) const {
    NqEndEffectorPlacement placement;
    if (isNumber()) {
        endEffector.calculatePlacement(manipulator, state, placement);
    } else {
        endEffector.calculatePlacementInRelative(manipulator, state, placement);
    }
    return placement;
}

void NqDriveTargetKind::toSystem(const NqEndEffector& endEffector, const NqIndividualManipulator& manipulator,
                                 const NqEndEffectorPlacement& target, NqManipulatorActiveState& state,
                                 NqEndEffectorPlacement& systemTarget) const {
    if (isNumber()) {
        systemTarget = target;
    } else {
        endEffector.convertPlacementFromRelativeToSystem(manipulator, target, state.activePositionState(),
                                                         systemTarget);
    }
}

double NqDriveTargetKind::distance(const Part& part, const NqEndEffectorPlacement& present,
                                   const NqEndEffectorPlacement& target) const {
    const NqCoordinateSystemTransformation& a = present;
    const NqCoordinateSystemTransformation& b = target;
    if (part.isAngular) {
        double angle = 0.0;
        NqVector axis;
        (a.orientation().inverse() * b.orientation()).getAngleAxis(angle, axis);
        return angle;
    }
    return isNumber() ? std::abs(b.translation().z() - a.translation().z())
                      : (b.translation() - a.translation()).mag();
}

std::string NqDriveTargetKind::text(const NqEndEffectorPlacement& placement) const {
    const NqCoordinateSystemTransformation& frame = placement;
    const NqVector& place = frame.translation();
    if (isNumber()) {
        return NqDriveText::fixed(place.z(), 3);
    }
    std::string text = m_HasPlace ? NqDriveText::triple(place.x(), place.y(), place.z()) : "";
    if (m_HasOrientation) {
        double angle = 0.0;
        NqVector axis;
        frame.orientation().getAngleAxis(angle, axis);
        const NqVector degrees = angle / kDegree * axis;
        text += (text.empty() ? "@ " : " @ ") + NqDriveText::fixed(degrees.x(), 1) + ", " +
                NqDriveText::fixed(degrees.y(), 1) + ", " + NqDriveText::fixed(degrees.z(), 1);
    }
    return text;
}

std::vector<std::string_view> NqDriveTargetKind::columns() const {
    if (isNumber()) {
        return {"value"};
    }
    std::vector<std::string_view> names;
    if (m_HasPlace) {
        names.insert(names.end(), {"x", "y", "z"});
    }
    if (m_HasOrientation) {
        names.insert(names.end(), {"qw", "qx", "qy", "qz"});
    }
    return names;
}

std::vector<double> NqDriveTargetKind::numbers(const NqCoordinateSystemTransformation& placement) const {
    const NqVector& place = placement.translation();
    if (isNumber()) {
        return {place.z()};
    }
    std::vector<double> numbers;
    if (m_HasPlace) {
        numbers = {place.x(), place.y(), place.z()};
    }
    if (m_HasOrientation) {
        double q[4];
        placement.orientation().getQuaternion(q[0], q[1], q[2], q[3]);
        numbers.insert(numbers.end(), q, q + 4);
    }
    return numbers;
}
