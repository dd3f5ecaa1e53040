#include "support/NqTestModels.h"

#include "support/NqTestFiles.h"

#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

namespace {

std::shared_ptr<NqIndividualManipulator> planarArm() {
    const NqJointDescription revolute(NqJointDescription::Revolute);
    auto arm = std::make_shared<NqIndividualManipulator>("planar", "base");
    arm->addLink("base", "upper", revolute, NqVector(0.0, 0.0, 0.1));
    arm->addLink("upper", "lower", revolute, NqVector(0.5, 0.0, 0.0));
    arm->addLink("lower", "hand", NqJointDescription(),
                 {NqVector(0.4, 0.0, 0.0), NqOrientation(0.3, NqVector::xVector(1.0))});
    return arm;
}

NqRigidBodyMassProperties solid(double mass, const NqVector& centerOfMass) {
    return NqRigidBodyMassProperties::fromCentral(
        mass, {centerOfMass, NqOrientation(0.6, {1.0, 0.4, -0.7})},
        NqSecondMoment(0.02 * mass, 0.003 * mass, 0.0, 0.03 * mass, -0.001 * mass, 0.04 * mass));
}

/// base - post (fixed) - upper - bracket (fixed) - lower - wrist - tool (fixed)
std::shared_ptr<NqIndividualManipulator> bracketArm() {
    const NqJointDescription revolute(NqJointDescription::Revolute), fixed;
    auto arm = std::make_shared<NqIndividualManipulator>("bracket arm", "base", solid(5.0, {0.1, 0.0, 0.2}));
    arm->addLink("base", "post", fixed, {NqVector(0.2, 0.1, 0.6), NqOrientation(0.5, {0.0, 1.0, 0.3})}, {},
                 solid(3.0, {0.0, 0.0, -0.2}));
    arm->addLink("post", "upper", revolute, NqVector(0.0, 0.1, 0.2), NqVector(0.2, -0.3, 1.0),
                 solid(2.0, {0.2, 0.0, 0.1}));
    arm->addLink("upper", "bracket", fixed, {NqVector(0.4, 0.0, 0.1), NqOrientation(-1.1, {1.0, 0.5, 0.2})},
                 {}, solid(0.7, {0.0, 0.06, 0.02}));
    arm->addLink("bracket", "lower", revolute, NqVector(0.05, 0.1, 0.0), NqVector(0.0, -1.0, 0.4),
                 solid(1.5, {0.1, -0.1, 0.15}));
    arm->addLink("lower", "wrist", revolute, {NqVector(0.1, 0.0, 0.35), NqOrientation(0.8, {0.0, 0.0, 1.0})},
                 NqVector(1.0, 0.1, 0.0), solid(0.6, {0.0, 0.0, 0.05}));
    arm->addLink("wrist", "tool", fixed, {NqVector(0.0, 0.1, 0.15), NqOrientation(0.9, {0.3, 1.0, -0.2})}, {},
                 solid(0.4, {0.01, 0.0, 0.08}));
    return arm;
}

} // namespace

NqIndividualManipulator nqTestManipulator(const std::string& name) {
    NqIndividualManipulator manipulator;
    const std::string file = "/" + name + ".urdf";
    const bool isOurs = std::filesystem::exists(nqTestModelFile(file));
    EXPECT_TRUE(NqUrdfReader::readFile(isOurs ? nqTestModelFile(file) : nqModelFile(file), manipulator));
    return manipulator;
}

const std::vector<NqTestModel>& nqTestModels() {
    static const std::vector<NqTestModel> theModels = [] {
        const auto shared = [](const char* name) {
            return std::make_shared<NqIndividualManipulator>(nqTestManipulator(name));
        };
        const auto arm6 = shared("arm6"), arm7 = shared("arm7"), tree = shared("branched");
        const auto labelOf = [](const NqIndividualManipulator& arm, unsigned joint) {
            return arm.linkByIndex(joint)->linkLabel();
        };
        const NqCoordinateSystemTransformation hung(NqVector(0.3, -0.8, 1.2),
                                                    NqOrientation(2.1, {1.0, -2.0, 0.5}));
        return std::vector<NqTestModel>{
            {"planar", planarArm(), "hand", "upper", "upper"},
            {"arm6", arm6, labelOf(*arm6, 5), labelOf(*arm6, 2), labelOf(*arm6, 1)},
            {"arm7", arm7, labelOf(*arm7, 6), labelOf(*arm7, 3), labelOf(*arm7, 2)},
            {"tree", tree, "left_slide", "right_tip", "right"},
            {"freeTree", tree, "left_slide", "right_tip", "right", true},
            {"bracket", bracketArm(), "tool", "bracket", "bracket"},
            {"hungArm", arm7, labelOf(*arm7, 6), labelOf(*arm7, 3), labelOf(*arm7, 2), false, hung},
        };
    }();
    return theModels;
}

double nqDrawn(std::mt19937_64& random, double least, double greatest) {
    return least + (greatest - least) * std::ldexp(static_cast<double>(random() >> 11), -53);
}

NqVector nqRandomVector(std::mt19937_64& random) {
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    const double x = uniform(random), y = uniform(random);
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
    position.setBaseFrame(model.baseFrame);
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
        const double rate = velocity.jointVelocities()[i], change = acceleration.jointAccelerations()[i];
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
