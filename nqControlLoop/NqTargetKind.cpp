#include <nqControlLoop/NqTargetKind.h>

#include <nqControlCore/endeffector/NqFilteredEndEffector.h>
#include <nqControlCore/endeffector/NqFrameBasedEndEffector.h>
#include <nqControlCore/endeffector/NqLinearConstraintEndEffector.h>
#include <nqControlCore/endeffector/NqOrientationEndEffector.h>
#include <nqControlCore/endeffector/NqPointDistanceEndEffector.h>
#include <nqControlCore/endeffector/special/NqCoordinatedJointEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// The exponent at which the speed falls with the power 2/3 of the distance, from power 3/2 of the time.
constexpr double kThreeHalvesExponent = 0.5;
constexpr double kEndless = std::numeric_limits<double>::infinity();

using Part = NqTargetKind::Part;

/// Limits of speed, acceleration and approach.
struct Limits {
    double speed = kEndless;
    double acceleration = kEndless;
    double approach = kEndless;
};

Limits scaled(double factor, double speed, double acceleration, double deceleration) {
    return {factor * speed, factor * acceleration, factor * std::min(acceleration, deceleration)};
}

template <typename Filter>
const Filter* filterOf(const NqEndEffector& endEffector) {
    const auto* owner = dynamic_cast<const NqFilteredEndEffector<Filter>*>(&endEffector);
    return owner ? &owner->motionFilter() : nullptr;
}

/// Of the motion filter that the end-effector has, whichever its type.
Limits limitsOf(const NqEndEffector& endEffector, bool isAngular) {
    const auto plain = [](const auto& filter) {
        return scaled(filter.speedFactor(), filter.threshold(), filter.accelerationThreshold(),
                      filter.decelerationThreshold());
    };
    const auto angular = [](const auto& filter) {
        return scaled(filter.speedFactor(), filter.angularVelocityThreshold(),
                      filter.angularAccelerationThreshold(), filter.angularDecelerationThreshold());
    };
    if (const auto* filter = filterOf<NqPointMotionFilter>(endEffector)) {
        return plain(*filter);
    }
    if (const auto* filter = filterOf<NqScalarMotionFilter>(endEffector)) {
        return plain(*filter);
    }
    if (const auto* filter = filterOf<NqRotationMotionFilter>(endEffector)) {
        return angular(*filter);
    }
    if (const auto* filter = filterOf<NqGeneralMotionFilter>(endEffector)) {
        return isAngular
                   ? angular(*filter)
                   : scaled(filter->speedFactor(), filter->linearVelocityThreshold(),
                            filter->linearAccelerationThreshold(), filter->linearDecelerationThreshold());
    }
    const double acceleration = endEffector.accelerationThreshold();
    return acceleration > 0.0 ? Limits{endEffector.motionThreshold(), acceleration, acceleration} : Limits();
}

/// The unit that all joints of a sum, or the joint of a link, have in common.
std::string unitOfJoints(const NqEndEffector& endEffector, const NqIndividualManipulator& manipulator) {
    std::vector<std::string> labels{endEffector.linkIdentifier()};
    if (const auto* sum = dynamic_cast<const NqLinearConstraintEndEffector*>(&endEffector)) {
        labels.clear();
        for (const auto& label : sum->linkLabels()) {
            labels.push_back(label.value());
        }
    }
    std::string unit;
    for (const std::string& label : labels) {
        const NqManipulatorLink* link = manipulator.linkByLabel(label);
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

/// Of a frame in the system: the frame in a link.
NqCoordinateSystemTransformation inLink(const std::string& label,
                                        const NqCoordinateSystemTransformation& frame,
                                        const NqIndividualManipulator& manipulator,
                                        NqManipulatorActiveState& state) {
    const NqManipulatorLink* link = manipulator.linkByLabel(label);
    return link ? link->primaryFrameInSystem(state.activePositionState()).inverse() * frame : frame;
}

double angleBetween(const NqOrientation& a, const NqOrientation& b) {
    double angle = 0.0;
    NqVector axis;
    (a.inverse() * b).getAngleAxis(angle, axis);
    return angle;
}

template <typename Filter>
void shape(NqEndEffector& endEffector, unsigned int filteringMode) {
    if (auto* owner = dynamic_cast<NqFilteredEndEffector<Filter>*>(&endEffector)) {
        Filter filter = owner->motionFilter();
        filter.setFilteringMode(filteringMode);
        if (filteringMode == NqBaseMotionFilter::ThreeHalves && filter.exponent() == 0.0) {
            filter.setExponent(kThreeHalvesExponent);
        }
        owner->setMotionFilter(filter);
    }
}

} // namespace

double NqTargetKind::Part::size(const double* values) const {
    double result = 0.0;
    for (const double* value = values + row; value != values + row + rows; ++value) {
        result = isLargest ? std::max(result, std::abs(*value)) : result + *value * *value;
    }
    return isLargest ? result : std::sqrt(result);
}

NqTargetKind::NqTargetKind(const NqEndEffector& endEffector, const NqIndividualManipulator& manipulator)
    : m_Type(NqTargetType::of(endEffector)) {
    m_Form = &NqTargetForm::of(m_Type.content);
    NqManipulatorActiveState state(manipulator);
    NqEndEffectorPlacement placement;
    endEffector.calculatePlacement(manipulator, state, placement);
    m_Values = placement.dataVector().size();
    if (const auto* joints = dynamic_cast<const NqCoordinatedJointEndEffector*>(&endEffector)) {
        for (const auto& label : joints->linkLabels()) {
            m_Listed.appendFound(manipulator, label.value());
        }
    }

    const auto addPart = [&](bool isAngular, bool isLargest, std::string unit, unsigned rows) {
        if (rows > 0) {
            const Limits limits = limitsOf(endEffector, isAngular);
            const unsigned row = m_Parts.empty() ? 0 : m_Parts.back().row + m_Parts.back().rows;
            m_Parts.push_back({isAngular, isLargest, std::move(unit), row, rows, limits.speed,
                               limits.acceleration, limits.approach});
        }
    };
    switch (m_Type.content) {
    case NqTargetForm::Number:
        addPart(false, false,
                m_Type.unit.empty() ? unitOfJoints(endEffector, manipulator) : std::string(m_Type.unit), 1);
        break;
    case NqTargetForm::Values:
        addPart(false, true, unitOfJoints(endEffector, manipulator), endEffector.doc());
        break;
    case NqTargetForm::Nothing:
        addPart(false, true, "", endEffector.doc());
        break;
    default:
        addPart(false, false, "m", m_Type.linearRows);
        addPart(true, false, "rad", m_Type.angularRows);
        break;
    }

    const std::string& label = endEffector.linkIdentifier();
    if (const auto* distance = dynamic_cast<const NqPointDistanceEndEffector*>(&endEffector)) {
        m_Ties = {{distance->labelOne(), distance->pointOne()}, {distance->labelTwo(), distance->pointTwo()}};
    } else if (const auto* orientation = dynamic_cast<const NqOrientationEndEffector*>(&endEffector)) {
        m_Ties = {{label, orientation->orientation()}};
    } else if (hasPlace()) {
        m_Ties = {{label, inLink(label, placement, manipulator, state)}};
    } else if (!label.empty()) {
        m_Ties = {{label, NqVector()}};
    }

    if (m_Type.measure == NqTargetType::ByRows) {
        m_Unfiltered.reset(dynamic_cast<NqEndEffector*>(endEffector.clone()));
        m_Unfiltered->setFilteringActive(false);
        m_Still.assign(endEffector.doc(), 0.0);
        m_Way = m_Still;
    }
}

void NqTargetKind::setProfile(NqEndEffector& endEffector, unsigned int filteringMode) {
    shape<NqPointMotionFilter>(endEffector, filteringMode);
    shape<NqGeneralMotionFilter>(endEffector, filteringMode);
    shape<NqRotationMotionFilter>(endEffector, filteringMode);
    shape<NqScalarMotionFilter>(endEffector, filteringMode);
}

void NqTargetKind::toRelative(const NqEndEffector& endEffector, const NqIndividualManipulator& manipulator,
                              const NqEndEffectorPlacement& placement, NqManipulatorActiveState& state,
                              NqEndEffectorPlacement& relative) const {
    if (hasPlace() || hasOrientation()) {
        endEffector.convertPlacementFromSystemToRelative(manipulator, placement, state.activePositionState(),
                                                         relative);
    } else {
        relative = placement;
    }
}

void NqTargetKind::toSystem(const NqEndEffector& endEffector, const NqIndividualManipulator& manipulator,
                            const NqEndEffectorPlacement& relative, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const {
    if (hasPlace() || hasOrientation()) {
        endEffector.convertPlacementFromRelativeToSystem(manipulator, relative, state.activePositionState(),
                                                         placement);
    } else {
        placement = relative;
    }
}

void NqTargetKind::measure(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           const NqEndEffectorPlacement& present, const NqEndEffectorPlacement& target,
                           double* errors) const {
    if (m_Type.measure == NqTargetType::ByRows) {
        m_Unfiltered->filterEndEffectorVelocity(manipulator, target, m_Still, m_Still, 1.0, state, m_Way);
    } else if (m_Type.measure == NqTargetType::ByResidual) {
        m_Way = present.dataVector();
    }
    for (std::size_t p = 0; p < m_Parts.size(); ++p) {
        if (m_Type.measure == NqTargetType::ByPlacement) {
            errors[p] = partDistance(m_Parts[p], present, target);
        } else {
            errors[p] = m_Way.size() < m_Parts[p].row + m_Parts[p].rows
                            ? 0.0
                            : m_Parts[p].size(m_Way.values().data());
        }
    }
}

double NqTargetKind::partDistance(const Part& part, const NqEndEffectorPlacement& present,
                                  const NqEndEffectorPlacement& target) const {
    const NqCoordinateSystemTransformation& a = present;
    const NqCoordinateSystemTransformation& b = target;
    switch (m_Type.content) {
    case NqTargetForm::Number:
        return std::abs(b.translation().z() - a.translation().z());
    case NqTargetForm::Values: {
        double largest = 0.0;
        const bool isOfAll = target.dataVector().size() > present.dataVector().size();
        for (std::size_t i = 0; i < std::min(present.dataVector().size(), target.dataVector().size()); ++i) {
            const std::size_t desired = isOfAll && i < m_Listed.size() ? m_Listed[i].index : i;
            if (desired < target.dataVector().size()) {
                largest = std::max(largest, std::abs(target.dataVector()[desired] - present.dataVector()[i]));
            }
        }
        return largest;
    }
    case NqTargetForm::Nothing:
        return 0.0;
    default:
        return part.isAngular ? angleBetween(a.orientation(), b.orientation())
                              : (b.translation() - a.translation()).mag();
    }
}

std::vector<std::string_view> NqTargetKind::columns() const {
    std::vector<std::string_view> names;
    if (m_Form->content == NqTargetForm::Number) {
        names = {"value"};
    }
    if (hasPlace()) {
        names.insert(names.end(), {"x", "y", "z"});
    }
    if (hasOrientation()) {
        names.insert(names.end(), {"qw", "qx", "qy", "qz"});
    }
    return names;
}

std::vector<double> NqTargetKind::numbers(const NqCoordinateSystemTransformation& placement) const {
    const NqVector& place = placement.translation();
    std::vector<double> numbers;
    if (m_Form->content == NqTargetForm::Number) {
        numbers = {place.z()};
    }
    if (hasPlace()) {
        numbers = {place.x(), place.y(), place.z()};
    }
    if (hasOrientation()) {
        double q[4];
        placement.orientation().getQuaternion(q[0], q[1], q[2], q[3]);
        numbers.insert(numbers.end(), q, q + 4);
    }
    return numbers;
}
