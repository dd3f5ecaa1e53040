// Orientation only: the hand turns until its z axis lies level, and its place is nobody's concern. Three rows
// of angular velocity; of seven joints four stay free.
#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/endeffector/NqOrientationEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

int main() {
    NqIndividualManipulator arm;
    if (!NqUrdfReader::readFile("models/arm7.urdf", arm)) {
        return 1;
    }
    NqOrientationEndEffector hand;
    hand.setLinkIdentifier("hand");
    NqRotationMotionFilter filter;
    filter.setAngularVelocityThreshold(0.8);     // rad/s
    filter.setAngularAccelerationThreshold(2.5); // rad/s^2
    filter.setAngularDecelerationThreshold(2.0);
    hand.setMotionFilter(filter);

    const unsigned n = arm.numberOfJoints();
    const double timeStep = 0.001; // s
    NqPositionState position(NqXmlRealVector{0.0, 0.2, 0.0, -1.8, 0.0, 2.0, 0.8});
    NqManipulatorActiveState state(arm);
    // The hand's z axis along x of the system: a quarter turn about y. The translation of the target is not
    // used.
    const NqEndEffectorPlacement target(NqOrientation(std::acos(0.0), NqVector::yVector(1.0)));

    NqCoreVelocityControlTool tool;
    NqReArray jacobian, metric;
    metric = std::vector<double>(n, 1.0);
    NqXmlRealVector still(3), previous(3), command;
    const std::vector<double> gradient(n);
    std::vector<double> rates, nullSpaceRates;
    double determinant = 0.0;
    double fastest = 0.0;
    for (unsigned step = 0; step < 6000; ++step) {
        state.setPositionState(position);
        hand.insertJacobianComponent(arm, 0, hand.relativeLinkData(), true, state, jacobian);
        hand.filterEndEffectorVelocity(arm, target, still, previous, timeStep, state, command);
        tool.calcJointRates(nullptr, jacobian, metric, gradient, 1.0, command.values(), n, rates,
                            nullSpaceRates, determinant);
        for (unsigned j = 0; j < n; ++j) {
            position.jointPositions()[j] += rates[j] * timeStep;
        }
        fastest = std::max(fastest, NqVector(command[0], command[1], command[2]).mag());
        previous = command;
    }
    NqEndEffectorPlacement reached;
    state.setPositionState(position);
    hand.calculatePlacement(arm, state, reached);
    const NqVector z = reached.coordSysXForm().orientation().zAxis();
    std::printf("the hand's z axis is (%.6f, %.6f, %.6f); it turned at %.3f rad/s at most\n", z.x(), z.y(),
                z.z(), fastest);
    return hand.difference(reached, target) < 1e-6 && fastest < 0.8 + 1e-9 ? 0 : 1;
}
