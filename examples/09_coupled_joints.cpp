// Coupled joints: while the point of the hand goes to its target, the third joint is to turn twice as far as
// the fifth, as if a gear joined them. A linear constraint on joint positions is one row under the point's
// three.
#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/endeffector/NqLinearConstraintEndEffector.h>
#include <nqControlCore/endeffector/NqPointEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

int main() {
    NqIndividualManipulator arm;
    if (!NqUrdfReader::readFile("models/arm7.urdf", arm)) {
        return 1;
    }
    NqPointEndEffector hand;
    hand.setLinkIdentifier("hand");
    NqLabelVector joints;
    joints.pushBack(std::string("link3"));
    joints.pushBack(std::string("link5"));
    NqLinearConstraintEndEffector gear; // joint3 - 2 joint5 = weightedSum + the target's number
    gear.setLinkLabels(joints);
    gear.setLinkWeights(NqXmlRealVector{1.0, -2.0});
    gear.setWeightedSum(0.0);

    const unsigned n = arm.numberOfJoints();
    const double timeStep = 0.001; // s
    NqPositionState position(NqXmlRealVector{0.0, 0.2, 0.4, -1.8, 0.2, 2.0, 0.8});
    NqXmlRealVector& q = position.jointPositions();
    NqManipulatorActiveState state(arm);
    const NqEndEffectorPlacement handTarget(NqVector(0.4, 0.35, 0.5));
    const NqEndEffectorPlacement gearTarget;

    NqCoreVelocityControlTool tool;
    NqReArray jacobian, metric;
    metric = std::vector<double>(n, 1.0);
    const NqXmlRealVector still(3);
    NqXmlRealVector handPrevious(3), gearPrevious(1), handCommand, gearCommand;
    const std::vector<double> gradient(n);
    std::vector<double> command(4), rates, nullSpaceRates;
    double determinant = 0.0;
    double worst = 0.0;
    const double start = q[2];
    for (unsigned step = 0; step < 3000; ++step) {
        state.setPositionState(position);
        hand.insertJacobianComponent(arm, 0, hand.relativeLinkData(), true, state, jacobian);
        gear.insertJacobianComponent(arm, 3, gear.relativeLinkData(), true, state, jacobian);
        hand.filterEndEffectorVelocity(arm, handTarget, still, handPrevious, timeStep, state, handCommand);
        gear.filterEndEffectorVelocity(arm, gearTarget, still, gearPrevious, timeStep, state, gearCommand);
        std::copy(handCommand.begin(), handCommand.end(), command.begin());
        command[3] = gearCommand[0];
        tool.calcJointRates(nullptr, jacobian, metric, gradient, 1.0, command, n, rates, nullSpaceRates,
                            determinant);
        for (unsigned j = 0; j < n; ++j) {
            q[j] += rates[j] * timeStep;
        }
        handPrevious = handCommand;
        gearPrevious = gearCommand;
        worst = std::max(worst, std::abs(q[2] - 2.0 * q[4]));
    }
    NqEndEffectorPlacement reached;
    state.setPositionState(position);
    hand.calculatePlacement(arm, state, reached);
    std::printf("joint3 turned by %.3f rad; it was off twice joint5 by %.1e rad at most\n", q[2] - start,
                worst);
    return hand.difference(reached, handTarget) < 1e-6 && worst < 1e-12 && std::abs(q[2] - start) > 0.05 ? 0
                                                                                                         : 1;
}
