#include <nqControlCore/endeffector/NqFrameBasedEndEffector.h>

#include <nqControlCore/endeffector/NqVelocityEntries.h>

#include <algorithm>

void NqFrameBasedEndEffector::filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                                        const NqXmlRealVector& previousVelocity,
                                                        double timeStep, NqXmlRealVector& filtered) const {
    NqGeneralMotion out;
    motionFilter().filterVelocity(generalVelocity(desiredVelocity), generalVelocity(previousVelocity),
                                  timeStep, out);
    convertFromGeneralVelocity(out, filtered);
}

void NqFrameBasedEndEffector::filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                        const NqEndEffectorPlacement& desiredPlacement,
                                                        const NqXmlRealVector& desiredVelocity,
                                                        const NqXmlRealVector& previousVelocity,
                                                        double timeStep, NqManipulatorActiveState& state,
                                                        NqXmlRealVector& filtered) const {
    NqGeneralMotion out;
    filterFrameEndEffectorVelocity(manipulator, desiredPlacement, generalVelocity(desiredVelocity),
                                   generalVelocity(previousVelocity), timeStep, state, out);
    convertFromGeneralVelocity(out, filtered);
}

void NqFrameBasedEndEffector::calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                                        const NqEndEffectorPlacement& desiredPlacement,
                                                        NqManipulatorActiveState& state,
                                                        NqXmlRealVector& error) const {
    constexpr bool matchTimes = true;
    constexpr bool zAxisOnly = false;
    constexpr bool applyProfile = false;
    NqGeneralMotion motion;
    motionFilter().calculateGeneralMotion(presentPlacement(manipulator, state), desiredPlacement, {}, {}, 1.0,
                                          motion, matchTimes, zAxisOnly, applyProfile);
    convertFromGeneralVelocity(motion, error);
}

void NqFrameBasedEndEffector::filterFrameEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                             const NqEndEffectorPlacement& desiredPlacement,
                                                             const NqGeneralMotion& desiredVelocity,
                                                             const NqGeneralMotion& previousVelocity,
                                                             double timeStep, NqManipulatorActiveState& state,
                                                             NqGeneralMotion& filtered) const {
    constexpr bool matchTimes = true;
    constexpr bool zAxisOnly = false;
    constexpr bool applyProfile = true;
    motionFilter().calculateGeneralMotion(presentPlacement(manipulator, state), desiredPlacement,
                                          desiredVelocity, previousVelocity, timeStep, filtered, matchTimes,
                                          zAxisOnly, applyProfile);
}

void NqFrameBasedEndEffector::convertToGeneralVelocity(const NqXmlRealVector& velocity,
                                                       NqGeneralMotion& motion) const {
    motion = NqGeneralMotion(NqVelocityEntries::vectorAt(velocity), NqVelocityEntries::vectorAt(velocity, 3));
}

void NqFrameBasedEndEffector::convertFromGeneralVelocity(const NqGeneralMotion& motion,
                                                         NqXmlRealVector& velocity) const {
    const unsigned count = std::min(doc(), 6U);
    velocity.resize(count);
    for (unsigned i = 0; i < count; ++i) {
        velocity[i] = motion[i];
    }
}

NqGeneralMotion NqFrameBasedEndEffector::generalVelocity(const NqXmlRealVector& velocity) const {
    NqGeneralMotion motion;
    convertToGeneralVelocity(velocity, motion);
    return motion;
}

const NqEditableValueTable<NqFrameBasedEndEffector>& NqFrameBasedEndEffector::editableTable() {
    using F = NqGeneralMotionFilter;
    using Table = NqEditableValueTable<NqFrameBasedEndEffector>;
    constexpr auto frame = [](auto& e) -> auto& {
        return e.m_Frame.value();
    };
    static const Table table = {
        Table::frame("", frame),
        Table::number("Max. Linear Velocity",
                      "The maximum linear velocity the end effector can achieve (m/s)", theFilterPart,
                      &F::linearVelocityThreshold, &F::setLinearVelocityThreshold),
        Table::number("Max. Angular Velocity",
                      "The maximum angular velocity the end effector can achieve (rad/s)", theFilterPart,
                      &F::angularVelocityThreshold, &F::setAngularVelocityThreshold),
        Table::number("Max. Linear Acceleration",
                      "The maximum linear acceleration the end effector can achieve (m/s^2)", theFilterPart,
                      &F::linearAccelerationThreshold, &F::setLinearAccelerationThreshold),
        Table::number("Max. Angular Acceleration",
                      "The maximum angular acceleration the end effector can achieve (rad/s^2)",
                      theFilterPart, &F::angularAccelerationThreshold, &F::setAngularAccelerationThreshold),
        Table::number("Max. Linear Deceleration",
                      "The maximum linear deceleration the end effector can achieve (m/s^2)", theFilterPart,
                      &F::linearDecelerationThreshold, &F::setLinearDecelerationThreshold),
        Table::number("Max. Angular Deceleration",
                      "The maximum angular deceleration the end effector can achieve (rad/s^2)",
                      theFilterPart, &F::angularDecelerationThreshold, &F::setAngularDecelerationThreshold),
        Table::modeWord("The velocity profile type.  Current suppoted values are: trapezoidal, proportional "
                        "and threehalves.",
                        theFilterPart),
        Table::number("Exponent", "Unused", theFilterPart, &F::exponent, &F::setExponent),
        Table::hardConstraint(),
    };
    return table;
}
