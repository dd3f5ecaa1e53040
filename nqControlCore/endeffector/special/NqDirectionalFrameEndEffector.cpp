#include <nqControlCore/endeffector/special/NqDirectionalFrameEndEffector.h>

#include <nqControlCore/filter/NqRotationError.h>

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/lexical_cast/try_lexical_convert.hpp>

#include <algorithm>
#include <cassert>

NqDirectionalFrameEndEffector::NqDirectionalFrameEndEffector() {
    static const auto theDescription = editableTable().description(theTooltip);
    describe(theDescription);
    setThresholdsFromMaps();
}

bool NqDirectionalFrameEndEffector::read(NqXmlReader& reader) {
    const bool isRead = NqFrameEndEffector::read(reader);
    setThresholdsFromMaps();
    return isRead;
}

void NqDirectionalFrameEndEffector::registerComponents() {
    using Filtered = NqFilteredEndEffector<NqGeneralMotionFilter>;
    const auto registerField = [this](const auto& component) {
        assert(component.kind == NqXmlComponentKind::Element);
        registerComponent(component.token, &(this->*component.member));
    };
    NqEndEffector::registerComponents();
    NqXmlComponentAccess::forEach<NqFrameBasedEndEffector, Filtered>(registerField);
    NqXmlComponentAccess::forEach<NqDirectionalFrameEndEffector, NqFrameEndEffector>(registerField);
    NqXmlComponentAccess::forEach<Filtered, NqEndEffector>(registerField);
}

void NqDirectionalFrameEndEffector::filterFrameEndEffectorVelocity(
    const NqIndividualManipulator& manipulator, const NqEndEffectorPlacement& desiredPlacement,
    const NqGeneralMotion& desiredVelocity, const NqGeneralMotion& previousVelocity, double timeStep,
    NqManipulatorActiveState& state, NqGeneralMotion& filtered) const {
    const NqCoordinateSystemTransformation& present = presentPlacement(manipulator, state);
    const NqCoordinateSystemTransformation& desired = desiredPlacement;
    const NqOrientation toReference = referenceOrientation(manipulator, state).inverse();

    const NqVector way = desired.translation() - present.translation();
    const NqVector u = toReference * way.unitVector();
    const NqVector turn = present.orientation() *
                          NqRotationError::shortWay(present.orientation().inverse() * desired.orientation());
    const NqVector w = toReference * turn.unitVector();

    NqGeneralMotionFilter& filter = adjustableFilter();
    filter.setLinearVelocityThreshold(scale(u, LinearVelocity));
    filter.setAngularVelocityThreshold(scale(w, AngularVelocity));
    filter.setLinearAccelerationThreshold(scale(u, LinearAcceleration));
    filter.setAngularAccelerationThreshold(scale(w, AngularAcceleration));
    filter.setLinearDecelerationThreshold(scale(u, LinearDeceleration));
    filter.setAngularDecelerationThreshold(scale(w, AngularDeceleration));
    constexpr bool matchTimes = true;
    constexpr bool zAxisOnly = false;
    constexpr bool applyProfile = true;
    filter.calculateGeneralMotion(present, desired, desiredVelocity, previousVelocity, timeStep, filtered,
                                  matchTimes, zAxisOnly, applyProfile);
}

double NqDirectionalFrameEndEffector::minimumTime(const NqEndEffectorPlacement& from,
                                                  const NqEndEffectorPlacement& to) const {
    return difference(from, to) / NqMath::nonZeroPos(defaultThreshold(LinearVelocity));
}

void NqDirectionalFrameEndEffector::setDirectionalThresholdMap(ThresholdType type, const ThresholdMap& map) {
    m_ThresholdMaps[type] = map;
    setThresholdsFromMap(type);
}

void NqDirectionalFrameEndEffector::setThresholdsFromMaps() {
    if (m_DefaultThresholds.size() < m_theNumberOfThresholdTypes) {
        m_DefaultThresholds.resize(m_theNumberOfThresholdTypes, 1.0);
    }
    m_ThresholdMaps.resizeToAtLeast(m_theNumberOfThresholdTypes);
    for (unsigned type = 0; type < m_theNumberOfThresholdTypes; ++type) {
        setThresholdsFromMap(static_cast<ThresholdType>(type));
    }
}

void NqDirectionalFrameEndEffector::setThresholdsFromMap(ThresholdType type) {
    Directional& thresholds = m_DirectionalThresholds[type];
    thresholds.fill(m_DefaultThresholds[type]);
    for (const auto& [direction, threshold] : m_ThresholdMaps[type]) {
        if (direction.value() < m_theNumberOfDirections) {
            thresholds[direction] = threshold;
        }
    }
}

double NqDirectionalFrameEndEffector::scale(const NqVector& direction, ThresholdType type) const {
    const Directional& thresholds = m_DirectionalThresholds[type];
    NqVector scaled;
    for (unsigned i = 0; i < 3; ++i) {
        scaled[i] = direction[i] * thresholds[direction[i] >= 0.0 ? 2 * i : 2 * i + 1];
    }
    return scaled.mag();
}

NqOrientation NqDirectionalFrameEndEffector::referenceOrientation(const NqIndividualManipulator& manipulator,
                                                                  NqManipulatorActiveState& state) const {
    const NqManipulatorLink* link = manipulator.linkByLabel(m_ReferenceLinkLabel);
    return link ? link->primaryFrameInSystem(state.activePositionState()).orientation() * referenceOffset()
                : referenceOffset();
}

std::string NqDirectionalFrameEndEffector::mapText(ThresholdType type) const {
    const ThresholdMap& map = directionalThresholdMap(type);
    NqLabelVector texts(map.empty() ? 0U : m_theNumberOfDirections);
    for (const auto& [direction, threshold] : map) {
        if (direction.value() < m_theNumberOfDirections) {
            texts[direction] = NqDOUBLE2STRING(threshold);
        }
    }
    return NqEditableLists::join(texts);
}

void NqDirectionalFrameEndEffector::setMapText(ThresholdType type, const std::string& text) {
    std::vector<std::string> parts;
    boost::split(parts, text, boost::is_any_of(","));
    parts.resize(std::min<std::size_t>(parts.size(), m_theNumberOfDirections));
    ThresholdMap map;
    for (unsigned short direction = 0; direction < parts.size(); ++direction) {
        double threshold = 0.0;
        if (boost::conversion::try_lexical_convert(parts[direction], threshold)) {
            map.add(direction, threshold);
        }
    }
    setDirectionalThresholdMap(type, map);
}

const NqEditableValueTable<NqDirectionalFrameEndEffector>& NqDirectionalFrameEndEffector::editableTable() {
    using E = NqDirectionalFrameEndEffector;
    using Table = NqEditableValueTable<E>;

    const auto translation = [](const char* label, const char* tooltip, unsigned i) {
        return Table::number(
            label, tooltip, [i](const E& e) { return e.frame().translation()[i]; },
            [i](E& e, double value) {
                NqVector offset = e.frame().translation();
                offset[i] = value;
                e.setFrame({offset, e.frame().orientation()});
            });
    };
    const auto defaultLimit = [](const char* label, const char* tooltip, ThresholdType type) {
        return Table::number(
            label, tooltip, [type](const E& e) { return e.defaultThreshold(type); },
            [type](E& e, double threshold) { e.setDefaultThreshold(type, threshold); });
    };
    const auto directionalLimits = [](const char* label, const char* tooltip, ThresholdType type) {
        return Table::text(
            label, tooltip, [type](const E& e) { return e.mapText(type); },
            [type](E& e, const std::string& text) { e.setMapText(type, text); });
    };
    static const Table table = {
        translation("Frame Offset: X",
                    "The X offset of the end effector frame.  This is measured from the primary frame of the "
                    "link",
                    0),
        translation("Frame Offset: Y",
                    "The Y offset of the end effector frame.  This is measured from the primary frame of the "
                    "link",
                    1),
        translation("Frame Offset: Z",
                    "The Z offset of the end effector frame.  This is measured from the primary frame of the "
                    "link",
                    2),
        Table::orientation(
            {"Frame Angle", "Angle.  Used for angle-axis orientation offset of the end effector frame. This "
                            "is measured from the primary frame of the link"},
            {{"Frame Axis: X",
              "X component of the angle axis vector.  Used for angle-axis orientation offset of the end "
              "effector frame. This is measured from the primary frame of the link"},
             {"Frame Axis: Y",
              "Y component of the angle axis vector.  Used for angle-axis orientation offset of the end "
              "effector frame. This is measured from the primary frame of the link"},
             {"Frame Axis: Z",
              "Z component of the angle axis vector.  Used for angle-axis orientation offset of the end "
              "effector frame. This is measured from the primary frame of the link"}},
            [](const E& e) { return e.frame().orientation(); },
            [](E& e, const NqOrientation& orientation) {
                e.setFrame({e.frame().translation(), orientation});
            }),
        Table::text("Reference Link",
                    "Label of the link whose primary frame is used as the reference frame to which the "
                    "reference offset is relative. Set it to invalid link label or empty to use the system "
                    "frame as the reference frame",
                    &E::referenceLinkLabel, &E::setReferenceLinkLabel),
        Table::orientation(
            {"Reference Angle", "Angle. Used for angle-axis orientation offset from the reference frame"},
            {{"Reference Axis: X", "X component of the angle axis vector.  Used for angle-axis orientation "
                                   "offset from the reference frame"},
             {"Reference Axis: Y", "Y component of the angle axis vector.  Used for angle-axis orientation "
                                   "offset from the reference frame"},
             {"Reference Axis: Z", "Z component of the angle axis vector.  Used for angle-axis orientation "
                                   "offset from the reference frame"}},
            &E::referenceOffset, &E::setReferenceOffset),
        defaultLimit("Default Max. Linear Velocity",
                     "The default maximum linear velocity the end effector can achieve", LinearVelocity),
        defaultLimit("Default Max. Angular Velocity",
                     "The default maximum angular velocity the end effector can achieve", AngularVelocity),
        defaultLimit("Default Max. Linear Acceleration",
                     "The default maximum linear acceleration the end effector can achieve",
                     LinearAcceleration),
        defaultLimit("Default Max. Angular Acceleration",
                     "The default maximum angular acceleration the end effector can achieve",
                     AngularAcceleration),
        defaultLimit("Default Max. Linear Deceleration",
                     "The default maximum linear deceleration the end effector can achieve",
                     LinearDeceleration),
        defaultLimit("Default Max. Angular Deceleration",
                     "The default maximum angular deceleration the end effector can achieve",
                     AngularDeceleration),
        directionalLimits("Max. Directional Linear Velocities",
                          "The maximum linear velocities in +X, -X, +Y, -Y, +Z, and -Z directions (m/s) "
                          "separated by comman(,) and left blank if not specified",
                          LinearVelocity),
        directionalLimits("Max. Directional Angular Velocities",
                          "The maximum angular velocities in +X, -X, +Y, -Y, +Z, and -Z directions(rad/s) "
                          "separated by comma(,) and left blank if not specified",
                          AngularVelocity),
        directionalLimits("Max. Directional Linear Accelerations",
                          "The maximum linear accelerations in +X, -X, +Y, -Y, +Z, and -Z "
                          "directions(m/s^2) separated by comma(,) and left blank if not specified",
                          LinearAcceleration),
        directionalLimits("Max. Directional Angular Accelerations",
                          "The maximum angular accelerations in +X, -X, +Y, -Y, +Z, and -Z "
                          "directions(rad/s^2) separated by comma(,) and left blank if not specified",
                          AngularAcceleration),
        directionalLimits("Max. Directional Linear Decelerations",
                          "The maximum linear decelerations in +X, -X, +Y, -Y, +Z, and -Z "
                          "directions(m/s^2) separated by comma(,) and left blank if not specified",
                          LinearDeceleration),
        directionalLimits("Max. Directional Angular Decelerations",
                          "The maximum angular decelerations in +X, -X, +Y, -Y, +Z, and -Z "
                          "directions(rad/s^2) separated by comma(,) and left blank if not specified",
                          AngularDeceleration),
        Table::modeWord("The velocity profile type.  Current suppoted values are: trapezoidal, proportional "
                        "and threehalves.",
                        theFilterPart),
        Table::hardConstraint(),
    };
    return table;
}
