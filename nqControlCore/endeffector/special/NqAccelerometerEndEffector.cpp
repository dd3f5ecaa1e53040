#include <nqControlCore/endeffector/special/NqAccelerometerEndEffector.h>

#include <nqControlCore/endeffector/NqJointList.h>
#include <nqControlCore/endeffector/NqVelocityEntries.h>

#include <algorithm>

using NqVelocityEntries::numberAt;

bool NqAccelerometerEndEffector::read(NqXmlReader& reader) {
    m_SagJointFlags->clear();
    return NqRotationBasedEndEffector::read(reader);
}

void NqAccelerometerEndEffector::setSagLinkLabels(const NqLabelVector& labels) {
    m_SagLinkLabels = labels;
    m_SagJointFlags->clear();
}

void NqAccelerometerEndEffector::setSagJointFlags(const NqIndividualManipulator& manipulator) const {
    if (!m_SagJointFlags->empty()) {
        return;
    }
    m_SagJointFlags->assign(manipulator.numberOfJoints(), false);
    for (const auto& label : m_SagLinkLabels) {
        const NqManipulatorLink* link = manipulator.linkByLabel(label);
        if (NqJointList::hasJoint(link)) {
            (*m_SagJointFlags)[link->jointIndex()] = true;
        }
    }
}

template <typename Visit>
void NqAccelerometerEndEffector::forEachSagJoint(const NqIndividualManipulator& manipulator,
                                                 Visit visit) const {
    setSagJointFlags(manipulator);
    // Those remembered may be another manipulator's.
    const std::size_t joints = std::min<std::size_t>(m_SagJointFlags->size(), manipulator.numberOfJoints());
    unsigned i = 0;
    for (unsigned joint = 0; joint < joints && i < theRows; ++joint) {
        if ((*m_SagJointFlags)[joint]) {
            visit(i++, joint);
        }
    }
}

bool NqAccelerometerEndEffector::isSagJoint(const NqIndividualManipulator& manipulator,
                                            unsigned joint) const {
    setSagJointFlags(manipulator);
    return joint < m_SagJointFlags->size() && (*m_SagJointFlags)[joint];
}

template <typename Visit>
void NqAccelerometerEndEffector::forEachSpring(const NqIndividualManipulator& manipulator,
                                               NqManipulatorActiveState& state, Visit visit) const {
    *m_UnsaggedPositions = state.positionState();
    NqXmlRealVector& positions = m_UnsaggedPositions->jointPositions();
    positions.resize(manipulator.numberOfJoints());
    forEachSagJoint(manipulator, [&](unsigned i, unsigned joint) {
        if (i < m_SagStiffness.size()) {
            positions[joint] = 0.0;
            m_UnsaggedState->setPositionState(*m_UnsaggedPositions);
            const NqManipulatorLink& link = *manipulator.linkByIndex(joint);
            visit(joint, m_SagStiffness[i], link.linkFrameInSystem(*m_UnsaggedState).orientation().zAxis());
        }
    });
}

double NqAccelerometerEndEffector::springSum(const NqIndividualManipulator& manipulator,
                                             NqManipulatorActiveState& state,
                                             const NqXmlRealVector& x) const {
    NqVector sum;
    forEachSpring(manipulator, state, [&](unsigned joint, double stiffness, const NqVector& axis) {
        sum -= numberAt(x, joint) * stiffness * axis;
    });
    return sum.dot(gravityVector());
}

void NqAccelerometerEndEffector::insertRows(const NqRowRequest& request, NqManipulatorActiveState& state,
                                            NqReArray& jacobian) const {
    const NqIndividualManipulator& manipulator = request.manipulator;
    const unsigned row = request.row;
    if (!m_IsOn) {
        forEachSagJoint(manipulator, [&](unsigned i, unsigned joint) { jacobian[row + i][joint] = 1.0; });
        return;
    }
    const auto* link = NqLinkLookup::linkOrMessage(
        manipulator, linkIdentifier(),
        "NqAccelerometerEndEffector::insertJacobianComponent(): bad label on accelerometer end effector: "
        "%s.\n");
    if (!link) {
        return;
    }
    link->forEachUnitRateMotion({}, state.activePositionState(),
                                [&](unsigned joint, const NqGeneralMotion& motion) {
                                    if (isSagJoint(manipulator, joint)) {
                                        jacobian[row][joint] = motion.angular().x();
                                        jacobian[row + 1][joint] = motion.angular().y();
                                    }
                                });
    forEachSpring(manipulator, state, [&](unsigned joint, double stiffness, const NqVector& axis) {
        jacobian[row + 2][joint] = -(stiffness * axis).dot(gravityVector());
    });
}

void NqAccelerometerEndEffector::insertBits(const NqRowRequest& request,
                                            SparsityDescription& sparsity) const {
    const NqIndividualManipulator& manipulator = request.manipulator;
    const unsigned row = request.row;
    const NqManipulatorLink* link = nullptr;
    if (m_IsOn) {
        link = NqLinkLookup::linkOrMessage(
            manipulator, linkIdentifier(),
            "NqAccelerometerEndEffector::insertSparsityComponent(): bad label on accelerometer end effector: "
            "%s.\n");
        if (!link) {
            return;
        }
        link->forEachCarryingJoint([&](unsigned joint) {
            if (isSagJoint(manipulator, joint)) {
                NqSparsityBits::setColumns(joint, joint + 1, row, 2, sparsity);
            }
        });
    }
    forEachSagJoint(manipulator,
                    [&](unsigned i, unsigned joint) { sparsity[row + (m_IsOn ? 2 : i)][joint] = true; });
}

void NqAccelerometerEndEffector::calculatePlacement(const NqIndividualManipulator& manipulator,
                                                    NqManipulatorActiveState& state,
                                                    NqEndEffectorPlacement& placement) const {
    const auto* link = NqLinkLookup::linkOrMessage(
        manipulator, linkIdentifier(),
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
    const auto* link = NqLinkLookup::linkOrMessage(
        manipulator, linkIdentifier(),
        "NqAccelerometerEndEffector::calculateGravityReadingPlacement(): bad label on accelerometer end "
        "effector: %s.\n");
    if (!link) {
        return false;
    }
    const NqOrientation& turn = link->primaryFrameInSystem(state.activePositionState()).orientation();
    placement.coordSysXForm().setOrientation(turn * sensorFrame().orientation() * *m_DesiredOrientation);
    placement.dataVector().assign(1, springSum(manipulator, state, state.positionState().jointPositions()));
    return true;
}

template <typename AngularOf>
auto NqAccelerometerEndEffector::rows(const NqIndividualManipulator& manipulator,
                                      NqManipulatorActiveState& state, const NqXmlRealVector& jointValues,
                                      AngularOf angularOf) const -> Rows {
    Rows rows{};
    if (!m_IsOn) {
        forEachSagJoint(manipulator,
                        [&](unsigned i, unsigned joint) { rows[i] = numberAt(jointValues, joint); });
    } else if (const NqManipulatorLink* link = manipulator.linkByLabel(linkIdentifier())) {
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
    if (!m_IsOn) {
        const NqXmlRealVector& positions = request.state.positionState().jointPositions();
        forEachSagJoint(manipulator, [&](unsigned i, unsigned joint) {
            command[i] = -(gain * numberAt(positions, joint));
        });
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
