#include <nqControlCore/endeffector/special/NqAccelerometerEndEffector.h>

#include <nqControlCore/endeffector/NqVelocityEntries.h>

#include <algorithm>

using NqVelocityEntries::numberAt;

bool NqAccelerometerEndEffector::read(NqXmlReader& reader) {
    m_SagJoints->clear();
    return NqRotationBasedEndEffector::read(reader);
}

void NqAccelerometerEndEffector::setSagLinkLabels(const NqLabelVector& labels) {
    m_SagLinkLabels = labels;
    m_SagJoints->clear();
}

double NqAccelerometerEndEffector::springSum(const NqIndividualManipulator& manipulator,
                                             NqManipulatorActiveState& state,
                                             const NqXmlRealVector& x) const {
    NqVector sum;
    for (const auto& [joint, stiffness, axis] : m_SagJoints->springs(manipulator, state, m_SagStiffness)) {
        sum -= numberAt(x, joint) * stiffness * axis;
    }
    return sum.dot(gravityVector());
}

void NqAccelerometerEndEffector::insertRows(const NqRowRequest& request, NqManipulatorActiveState& state,
                                            NqReArray& jacobian) const {
    const NqIndividualManipulator& manipulator = request.manipulator;
    unsigned row = request.row;
    setSagJointFlags(manipulator);
    if (!m_IsOn) {
        for (const unsigned joint : m_SagJoints->first(manipulator)) {
            jacobian[row++][joint] = 1.0;
        }
        return;
    }
    const auto* link = linkOrMessage(
        manipulator,
        "NqAccelerometerEndEffector::insertJacobianComponent(): bad label on accelerometer end effector: "
        "%s.\n");
    if (!link) {
        return;
    }
    link->forEachUnitRateMotion({}, state.activePositionState(),
                                [&](unsigned joint, const NqGeneralMotion& motion) {
                                    if (m_SagJoints->contains(joint)) {
                                        jacobian[row][joint] = motion.angular().x();
                                        jacobian[row + 1][joint] = motion.angular().y();
                                    }
                                });
    for (const auto& [joint, stiffness, axis] : m_SagJoints->springs(manipulator, state, m_SagStiffness)) {
        jacobian[row + 2][joint] = -(stiffness * axis).dot(gravityVector());
    }
}

void NqAccelerometerEndEffector::insertBits(const NqRowRequest& request,
                                            SparsityDescription& sparsity) const {
    const NqIndividualManipulator& manipulator = request.manipulator;
    unsigned row = request.row;
    setSagJointFlags(manipulator);
    if (!m_IsOn) {
        for (const unsigned joint : m_SagJoints->first(manipulator)) {
            sparsity[row++][joint] = true;
        }
        return;
    }
    const auto* link = linkOrMessage(
        manipulator,
        "NqAccelerometerEndEffector::insertSparsityComponent(): bad label on accelerometer end effector: "
        "%s.\n");
    if (!link) {
        return;
    }
    link->forEachCarryingJoint([&](unsigned joint) {
        if (m_SagJoints->contains(joint)) {
            NqSparsityBits::setColumns(joint, joint + 1, row, 2, sparsity);
        }
    });
    for (const unsigned joint : m_SagJoints->first(manipulator)) {
        sparsity[row + 2][joint] = true;
    }
}

void NqAccelerometerEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                                    NqManipulatorActiveState& state,
                                                    NqEndEffectorPlacement& placement) const {
    const auto* link = linkOrMessage(
        manipulator,
        "NqAccelerometerEndEffector::calculatePlacement(): bad label on accelerometer end effector: %s.\n");
    if (link) {
        const NqOrientation& turn = link->primaryFrameInSystem(state.activePositionState()).orientation();
        placement.coordSysXForm().setOrientation(sensorFrame().orientation().inverse() * turn.inverse() *
                                                 gravityOrientation());
    }
}

bool NqAccelerometerEndEffector::calculateGravityReadingPlacement(const NqIndividualManipulator& manipulator,
                                                                  NqManipulatorActiveState& state,
                                                                  NqEndEffectorPlacement& placement) const {
    const auto* link = linkOrMessage(
        manipulator,
        "NqAccelerometerEndEffector::calculateGravityReadingPlacement(): bad label on accelerometer end "
        "effector: %s.\n");
    if (!link) {
        return false;
    }
    setSagJointFlags(manipulator);
    const NqOrientation& turn = link->primaryFrameInSystem(state.activePositionState()).orientation();
    placement.coordSysXForm().setOrientation(turn * sensorFrame().orientation() * *m_DesiredOrientation);
    placement.dataVector().assign(1, springSum(manipulator, state, state.positionState().jointPositions()));
    return true;
}

template <typename AngularOf>
auto NqAccelerometerEndEffector::rows(const NqIndividualManipulator& manipulator,
                                      NqManipulatorActiveState& state, const NqXmlRealVector& jointValues,
                                      AngularOf angularOf) const -> Rows {
    setSagJointFlags(manipulator);
    Rows rows{};
    if (!m_IsOn) {
        const auto joints = m_SagJoints->first(manipulator);
        std::transform(joints.begin(), joints.end(), rows.begin(),
                       [&](unsigned joint) { return numberAt(jointValues, joint); });
    } else if (const NqManipulatorLink* link = ownLink(manipulator)) {
        const NqVector angular = angularOf(*link);
        rows = {angular.x(), angular.y(), springSum(manipulator, state, jointValues)};
    }
    return rows;
}

void NqAccelerometerEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                                   NqManipulatorActiveState& state, NqXmlRealVector& velocity,
                                                   unsigned start) const {
    const auto angularOf = [&](const NqManipulatorLink& link) {
        return link.primaryFrameVelocity(state).angular();
    };
    NqVelocityEntries::put(rows(manipulator, state, state.velocityState().jointVelocities(), angularOf),
                           start, NqVelocityEntries::Tail::Cut, velocity);
}

void NqAccelerometerEndEffector::calculateAcceleration(const NqIndividualManipulator& manipulator,
                                                       NqManipulatorActiveState& state,
                                                       NqXmlRealVector& acceleration, unsigned start) const {
    const auto angularOf = [&](const NqManipulatorLink& link) {
        const NqVector inSensor =
            sensorFrame().orientation().inverse() * link.localAcceleration(state).angular();
        return link.linkFrameInSystem(state.activePositionState()).orientation() * inSensor;
    };
    NqVelocityEntries::put(
        rows(manipulator, state, state.accelerationState().jointAccelerations(), angularOf), start,
        NqVelocityEntries::Tail::Kept, acceleration);
}

void NqAccelerometerEndEffector::insertCommand(const NqTargetRequest& request,
                                               NqXmlRealVector& filtered) const {
    constexpr bool zAxisOnly = true; // no more can be told of gravity
    constexpr bool applyProfile = true;
    const NqIndividualManipulator& manipulator = request.manipulator;
    const double gain = motionFilter().angularGain();
    Rows command{};
    setSagJointFlags(manipulator);
    if (!m_IsOn) {
        const NqXmlRealVector& positions = request.state.positionState().jointPositions();
        const auto joints = m_SagJoints->first(manipulator);
        std::transform(joints.begin(), joints.end(), command.begin(),
                       [&](unsigned joint) { return -(gain * numberAt(positions, joint)); });
    } else {
        *m_DesiredOrientation = request.desiredPlacement.coordSysXForm().orientation();
        if (calculateGravityReadingPlacement(manipulator, request.state, *m_ActualPlacement)) {
            const NqVector previous(numberAt(request.previousVelocity, 0),
                                    numberAt(request.previousVelocity, 1), 0.0);
            NqVector out;
            motionFilter().calculateRotationMotion(m_ActualPlacement->coordSysXForm().orientation(),
                                                   gravityOrientation(),
                                                   NqVelocityEntries::vectorAt(request.desiredVelocity),
                                                   previous, request.timeStep, out, zAxisOnly, applyProfile);
            command = {out.x(), out.y(), -(gain * m_ActualPlacement->dataVector()[0])};
        }
    }
    NqVelocityEntries::put(command, 0, NqVelocityEntries::Tail::Cut, filtered);
}

double NqAccelerometerEndEffector::difference(const NqEndEffectorPlacement& a,
                                              const NqEndEffectorPlacement& b) const {
    return angleBetween(a, b) * errorWeight();
}

const NqEditableValueTable<NqAccelerometerEndEffector>& NqAccelerometerEndEffector::editableTable() {
    using E = NqAccelerometerEndEffector;
    using F = NqRotationMotionFilter;
    using Table = NqEditableValueTable<E>;
    constexpr auto gravity = [](auto& e) -> auto& {
        return e.m_GravityVector.value();
    };
    constexpr auto sensor = [](auto& e) -> auto& {
        return e.m_SensorFrame.value();
    };
    static const Table table = {
        Table::list("Sag Joints",
                    "List of Link/Joint names for sag model separated by commas. You can use one instance of "
                    "this EE per sag link too.",
                    &E::sagLinkLabels, &E::setSagLinkLabels),
        Table::list("Sag Joint Stiffness", "Sag joint stiffness.", &E::sagStiffness, &E::setSagStiffness),
        Table::vectorText("Gravity", "Gravity Vector in system frame", gravity),
        Table::frame("Sensor ", sensor),
        limitRows<E>("Angular", {"The maximum angular velocity the end effector can achieve (rad/s)",
                                 "The maximum angular acceleration the end effector can achieve (rad/s^2)",
                                 "The maximum angular deceleration the end effector can achieve (rad/s^2)"}),
        Table::modeWord("The velocity profile type.  Current supported values are: trapezoidal, proportional "
                        "and threehalves.",
                        theFilterPart),
        Table::number("Angular Gain", "The angular gain for proportional velocity profile.", theFilterPart,
                      &F::angularGain, &F::setAngularGain),
        Table::number("Error weight", "Error weight for velocity calculation and soft constraint gain",
                      &E::errorWeight, &E::setErrorWeight),
        Table::hardConstraint(),
    };
    return table;
}
