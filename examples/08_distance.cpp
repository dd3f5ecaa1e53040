// The distance between two links: a robot with two arms brings its hands together, wherever they meet. One
// row, and eight of its nine joints stay free. What the row moves shows which joints matter: the waist
// carries both hands.
#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/endeffector/NqPointDistanceEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <cmath>
#include <cstdio>

int main() {
    NqIndividualManipulator robot;
    if (!NqUrdfReader::readFile("models/twin9.urdf", robot)) {
        return 1;
    }
    NqPointDistanceEndEffector grip;
    grip.setLabelOne("left_tip");
    grip.setLabelTwo("right_tip");
    grip.setMotionThreshold(0.3);       // m/s
    grip.setAccelerationThreshold(1.5); // m/s^2

    const unsigned n = robot.numberOfJoints();
    const double timeStep = 0.001; // s
    NqPositionState position(NqXmlRealVector{0.0, 0.3, 0.8, -1.2, 0.2, -0.3, 0.8, -1.2, 0.2});
    NqManipulatorActiveState state(robot);
    // A number stands in the z translation of a placement.
    const double wanted = 0.25; // m
    const NqEndEffectorPlacement target(NqVector(0.0, 0.0, wanted));

    NqCoreVelocityControlTool tool;
    NqReArray jacobian, metric;
    metric = std::vector<double>(n, 1.0);
    NqXmlRealVector still(1), previous(1), command;
    const std::vector<double> gradient(n);
    std::vector<double> rates, nullSpaceRates;
    double determinant = 0.0;
    double waist = 0.0;
    for (unsigned step = 0; step < 4000; ++step) {
        state.setPositionState(position);
        grip.insertJacobianComponent(robot, 0, grip.relativeLinkData(), true, state, jacobian);
        grip.filterEndEffectorVelocity(robot, target, still, previous, timeStep, state, command);
        tool.calcJointRates(nullptr, jacobian, metric, gradient, 1.0, command.values(), n, rates,
                            nullSpaceRates, determinant);
        waist = std::max(waist, std::abs(jacobian[0][0]));
        for (unsigned j = 0; j < n; ++j) {
            position.jointPositions()[j] += rates[j] * timeStep;
        }
        previous = command;
    }
    NqVector left, right;
    state.setPositionState(position);
    grip.calculatePointPlacements(robot, state, left, right);
    const double distance = (right - left).mag();
    std::printf("the hands are %.6f m apart; turning the waist changes that by %.1e m/rad\n", distance,
                waist);
    return std::abs(distance - wanted) < 1e-6 && waist < 1e-12 ? 0 : 1;
}
