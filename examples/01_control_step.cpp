// A control step from the parts of the core alone, without limits: a point of the hand goes to a target, the
// other joints of the arm stay as free as the three rows of that constraint leave them.
#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/endeffector/NqPointEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <cstdio>

int main() {
    NqIndividualManipulator arm;
    if (!NqUrdfReader::readFile("models/arm7.urdf", arm)) {
        return 1;
    }
    NqPointEndEffector hand; // the constraint: this point of that link follows a target
    hand.setLinkIdentifier("flange");
    hand.setPoint(NqVector(0.0, 0.0, 0.1)); // m, in the link's frame

    const unsigned n = arm.numberOfJoints();
    const double timeStep = 0.001;                                                  // s
    NqPositionState position(NqXmlRealVector{0.0, -0.5, 0.0, -2.2, 0.0, 1.8, 0.8}); // rad
    const NqEndEffectorPlacement target(NqVector(0.45, 0.25, 0.40));
    NqManipulatorActiveState state(arm);
    NqCoreVelocityControlTool tool;
    NqReArray jacobian, metric;
    metric = std::vector<double>(n, 1.0); // all joints weigh the same
    NqXmlRealVector still(3), previous(3), command;
    std::vector<double> gradient(n), rates, nullSpaceRates;
    double determinant;

    for (unsigned step = 0; step < 3000; ++step) {
        state.setPositionState(position);
        hand.insertJacobianComponent(arm, 0, hand.relativeLinkData(), true, state, jacobian);
        hand.filterEndEffectorVelocity(arm, target, still, previous, timeStep, state, command);
        tool.calcJointRates(nullptr, jacobian, metric, gradient, 1.0, command.values(), n, rates,
                            nullSpaceRates, determinant);
        for (unsigned j = 0; j < n; ++j) {
            position.jointPositions()[j] += rates[j] * timeStep;
        }
        previous = command;
    }

    NqEndEffectorPlacement reached;
    state.setPositionState(position);
    hand.calculatePlacement(arm, state, reached);
    const NqVector& point = reached.coordSysXForm().translation();
    const double distance = hand.difference(reached, target);
    std::printf("after 3 s the point is at (%.6f, %.6f, %.6f), %.1e m from its target\n", point.x(),
                point.y(), point.z(), distance);
    return distance < 1e-6 ? 0 : 1;
}
