#include "support/NqTestModels.h"

#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

namespace {

using Joint = NqJointDescription;

NqCoordinateSystemTransformation frame(const NqVector& translation, double angle = 0.0,
                                       const NqVector& axis = NqVector::xVector(1.0)) {
    return {translation, NqOrientation(angle, axis)};
}

std::shared_ptr<NqIndividualManipulator> fromFile(const std::string& fileName) {
    auto manipulator = std::make_shared<NqIndividualManipulator>();
    if (!NqUrdfReader::readFile(NQ_MODELS "/" + fileName, *manipulator)) {
        std::abort();
    }
    return manipulator;
}

std::shared_ptr<NqIndividualManipulator> planarArm() {
    auto arm = std::make_shared<NqIndividualManipulator>("planar", "base");
    arm->addLink("base", "upper", Joint(Joint::Revolute), frame({0.0, 0.0, 0.1}));
    arm->addLink("upper", "lower", Joint(Joint::Revolute), frame({0.5, 0.0, 0.0}));
    arm->addLink("lower", "hand", Joint(Joint::Fixed), frame({0.4, 0.0, 0.0}, 0.3));
    return arm;
}

std::shared_ptr<NqIndividualManipulator> gantry() {
    auto gantry = std::make_shared<NqIndividualManipulator>("gantry", "floor");
    gantry->addLink("floor", "bridge", Joint(Joint::Prismatic), frame({0.0, 0.2, 1.0}, 0.4), {1.0, 0.0, 0.0});
    gantry->addLink("bridge", "trolley", Joint(Joint::Prismatic),
                    frame({0.1, 0.0, 0.0}, -0.7, {0.0, 1.0, 1.0}), {0.0, 1.0, 0.2});
    gantry->addLink("trolley", "mast", Joint(Joint::Prismatic), frame({0.0, 0.0, -0.3}), {0.0, 0.0, -1.0});
    gantry->addLink("mast", "wrist", Joint(Joint::Revolute), frame({0.0, 0.05, -0.2}, 1.1), {0.3, -0.5, 0.8});
    gantry->addLink("wrist", "tool", Joint(Joint::Revolute), frame({0.05, 0.0, -0.1}), {1.0, 0.0, 0.0});
    return gantry;
}

std::shared_ptr<NqIndividualManipulator> tree() {
    auto body = std::make_shared<NqIndividualManipulator>("tree", "pelvis");
    body->addLink("pelvis", "torso", Joint(Joint::Revolute), frame({0.0, 0.0, 0.3}, 0.2));
    body->addLink("torso", "chest", Joint(Joint::Revolute), frame({0.0, 0.0, 0.2}), {0.0, 1.0, 0.0});
    for (const auto& [side, y] : {std::pair("left", 0.2), std::pair("right", -0.2)}) {
        const std::string name = side;
        body->addLink("chest", name + "Shoulder", Joint(Joint::Revolute), frame({0.0, y, 0.2}, y),
                      {1.0, 0.2, 0.0});
        body->addLink(name + "Shoulder", name + "Upper", Joint(Joint::Revolute), frame({0.0, y, 0.0}, 0.3),
                      {0.0, 0.0, 1.0});
        body->addLink(name + "Upper", name + "Lower", Joint(Joint::Revolute), frame({0.3, 0.0, 0.05}),
                      {0.0, 1.0, 0.1});
        body->addLink(name + "Lower", name + "Hand", Joint(Joint::Fixed), frame({0.25, 0.0, 0.0}, 0.6));
    }
    return body;
}

} // namespace

const std::vector<NqTestModel>& nqTestModels() {
    static const std::vector<NqTestModel> theModels = [] {
        const auto body = tree();
        const auto arm6 = fromFile("arm6.urdf");
        const auto arm7 = fromFile("arm7.urdf");
        const auto labelOf = [](const NqIndividualManipulator& arm, unsigned joint) {
            return arm.linkByIndex(joint)->linkLabel();
        };
        return std::vector<NqTestModel>{
            {"planar", planarArm(), "hand", "upper", "upper"},
            {"arm6", arm6, labelOf(*arm6, 5), labelOf(*arm6, 2), labelOf(*arm6, 1)},
            {"arm7", arm7, labelOf(*arm7, 6), labelOf(*arm7, 3), labelOf(*arm7, 2)},
            {"gantry", gantry(), "tool", "trolley", "mast"},
            {"tree", body, "leftHand", "rightUpper", "rightHand"},
            {"freeTree", body, "leftHand", "rightUpper", "rightHand", true},
        };
    }();
    return theModels;
}

NqVector nqRandomVector(std::mt19937_64& random) {
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    const double x = uniform(random);
    const double y = uniform(random);
    return {x, y, uniform(random)};
}

NqCoordinateSystemTransformation nqRandomFrame(std::mt19937_64& random) {
    const NqVector translation = nqRandomVector(random);
    return {translation, NqOrientation(2.0 * nqRandomVector(random).x(), nqRandomVector(random))};
}

NqManipulatorActiveState nqRandomState(const NqTestModel& model, std::mt19937_64& random) {
    std::uniform_real_distribution<double> uniform(-1.5, 1.5);
    const unsigned n = model.manipulator->numberOfJoints();
    NqPositionState position(n);
    NqVelocityState velocity(n);
    NqAccelerationState acceleration(n);
    for (unsigned i = 0; i < n; ++i) {
        position.setJointPosition(i, uniform(random));
        velocity.setJointVelocity(i, uniform(random));
        acceleration.setJointAcceleration(i, uniform(random));
    }
    if (model.movesBase) {
        position.setBaseFrame(nqRandomFrame(random));
        velocity.setBaseMotion({nqRandomVector(random), nqRandomVector(random)});
        acceleration.setBaseMotion({nqRandomVector(random), nqRandomVector(random)});
    }
    NqManipulatorActiveState state(*model.manipulator);
    state.setPositionState(position);
    state.setVelocityState(velocity);
    state.setAccelerationState(acceleration);
    return state;
}

NqManipulatorActiveState nqMoved(NqManipulatorActiveState& state, double time) {
    NqPositionState position = state.positionState();
    NqVelocityState velocity = state.velocityState();
    const NqAccelerationState& acceleration = state.accelerationState();
    for (unsigned i = 0; i < position.jointPositions().size(); ++i) {
        const double rate = velocity.jointVelocities()[i];
        const double change = acceleration.jointAccelerations()[i];
        position.jointPositions()[i] += rate * time + 0.5 * change * time * time;
        velocity.jointVelocities()[i] += change * time;
    }
    // The base turns about its own origin: angles from the mean rate of turn, exact to second order.
    const NqGeneralMotion& v = velocity.baseMotion();
    const NqGeneralMotion& a = acceleration.baseMotion();
    const NqVector turn = time * v.angular() + 0.5 * time * time * a.angular();
    const NqCoordinateSystemTransformation& base = position.baseFrame();
    position.setBaseFrame({base.translation() + time * v.linear() + 0.5 * time * time * a.linear(),
                           NqOrientation(turn.mag(), turn) * base.orientation()});
    velocity.setBaseMotion({v.linear() + time * a.linear(), v.angular() + time * a.angular()});

    NqManipulatorActiveState moved = state;
    moved.setPositionState(position);
    moved.setVelocityState(velocity);
    return moved;
}
