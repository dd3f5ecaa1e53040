// A frame: the hand keeps its place and its orientation, six rows. An arm of seven joints has one freedom
// left, the swing of its elbow, and the gradient uses it without moving the hand.
#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

int main() {
    NqIndividualManipulator arm;
    if (!NqUrdfReader::readFile("models/arm7.urdf", arm)) {
        return 1;
    }
    NqFrameEndEffector hand;
    hand.setLinkIdentifier("hand");

    const unsigned n = arm.numberOfJoints();
    const double timeStep = 0.001;                                                 // s
    NqPositionState position(NqXmlRealVector{0.0, 0.8, 0.0, -1.6, 0.0, 2.2, 0.8}); // rad
    NqManipulatorActiveState state(arm);
    state.setPositionState(position);
    const auto elbow = [&] {
        return arm.linkByLabel("link4")->linkFrameInSystem(state.activePositionState()).translation();
    };
    NqEndEffectorPlacement target;
    hand.calculatePlacement(arm, state, target);
    const NqVector elbowAtStart = elbow();

    NqCoreVelocityControlTool tool;
    NqReArray jacobian, metric;
    metric = std::vector<double>(n, 1.0);
    NqXmlRealVector still(6), previous(6), command;
    std::vector<double> gradient(n), rates, nullSpaceRates;
    double determinant = 0.0;
    double farthest = 0.0;
    for (unsigned step = 0; step < 6000; ++step) {
        state.setPositionState(position);
        hand.insertJacobianComponent(arm, 0, hand.relativeLinkData(), true, state, jacobian);
        hand.filterEndEffectorVelocity(arm, target, still, previous, timeStep, state, command);
        // The gradient of half the squared distance of the first joint from 0.6 rad.
        gradient[0] = position.jointPositions()[0] - 0.6;
        tool.calcJointRates(nullptr, jacobian, metric, gradient, 10.0, command.values(), n, rates,
                            nullSpaceRates, determinant);
        for (unsigned j = 0; j < n; ++j) {
            position.jointPositions()[j] += rates[j] * timeStep;
        }
        previous = command;

        NqEndEffectorPlacement present;
        hand.calculatePlacement(arm, state, present);
        farthest = std::max(farthest, hand.difference(present, target));
    }
    const double swing = (elbow() - elbowAtStart).mag();
    const double left = std::abs(position.jointPositions()[0] - 0.6);
    std::printf(
        "the elbow swung by %.3f m, the hand strayed by %.1e at most; joint1 is %.1e rad from its goal\n",
        swing, farthest, left);
    return swing > 0.1 && left < 1e-3 && farthest < 1e-5 ? 0 : 1;
}
