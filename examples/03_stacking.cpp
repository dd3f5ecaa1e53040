// Several end-effectors under one another: a torso that turns carries two arms, and both hands have a
// velocity to keep. The arms don't touch each other's columns; the solver is told so, and passes over these
// zeros.
#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/endeffector/NqPointEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqJacobianState.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

int main() {
    const NqJointDescription revolute(NqJointDescription::Revolute);
    NqIndividualManipulator robot("twoArms", "base");
    robot.addLink("base", "torso", revolute, NqVector(0.0, 0.0, 1.0));
    std::vector<NqPointEndEffector> hands(2);
    for (unsigned a = 0; a < 2; ++a) {
        const std::string arm = a == 0 ? "left" : "right";
        const double side = a == 0 ? 0.2 : -0.2;
        robot.addLink("torso", arm + "Shoulder", revolute, NqVector(0.0, side, 0.4), NqVector::xVector(1.0));
        robot.addLink(arm + "Shoulder", arm + "Upper", revolute, NqVector(), NqVector::yVector(1.0));
        robot.addLink(arm + "Upper", arm + "Lower", revolute, NqVector(0.3, 0.0, 0.0),
                      NqVector::yVector(1.0));
        hands[a].setLinkIdentifier(arm + "Lower");
        hands[a].setPoint(NqVector(0.3, 0.0, 0.0));
    }
    const unsigned n = robot.numberOfJoints();
    NqManipulatorActiveState state(robot);
    state.setPositionState(NqPositionState(NqXmlRealVector{0.1, 0.3, 0.2, 0.9, -0.3, 0.4, 1.1}));

    // Stack: each end-effector writes its rows from a running row on.
    NqReArray jacobian;
    NqEndEffector::SparsityDescription sparsity;
    unsigned m = 0;
    for (const NqPointEndEffector& hand : hands) {
        hand.insertJacobianComponent(robot, m, hand.relativeLinkData(), true, state, jacobian);
        hand.insertSparsityComponent(robot, m, hand.relativeLinkData(), true, sparsity);
        m += hand.doc();
    }
    const std::vector<double> velocity{0.1, 0.0, 0.2, 0.1, 0.0, -0.2}; // m/s, left hand then right
    const std::vector<double> gradient{1.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
    NqReArray metric;
    metric = std::vector<double>{10.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0}; // turning the torso is dear

    NqJacobianState jacobianState;
    jacobianState.setUseSparseNullSpace(true);
    if (!jacobianState.setSparsity(sparsity) || !jacobianState.setJacobian(jacobian)) {
        return 1;
    }
    NqCoreVelocityControlTool tool;
    std::vector<double> rates, nullSpaceRates;
    double determinant = 0.0;
    tool.calcJointRates(&jacobianState, jacobian, metric, gradient, 0.5, velocity, n, rates, nullSpaceRates,
                        determinant);

    // The same system row by row, from what the Jacobian state has already: B = (W N)^T and b = N^T g.
    NqReArray rowsB;
    std::vector<double> nullGradient, sameRates;
    tool.weightedNullSpace().transpose(rowsB);
    jacobianState.nullSpaceArray().leftTransposeTransform(gradient, nullGradient);
    tool.calcJointRatesAB(&jacobianState, rowsB, nullGradient, 0.5, velocity, n, sameRates, nullSpaceRates,
                          determinant);

    std::vector<double> reached;
    jacobian.transform(rates, reached);
    double difference = 0.0;
    for (unsigned j = 0; j < n; ++j) {
        std::printf("joint %u: %7.4f rad/s, of which %7.4f in the null space\n", j, rates[j],
                    nullSpaceRates[j]);
        difference = std::max(difference, std::abs(rates[j] - sameRates[j]));
    }
    for (unsigned i = 0; i < m; ++i) {
        difference = std::max(difference, std::abs(reached[i] - velocity[i]));
    }
    return difference < 1e-12 ? 0 : 1;
}
