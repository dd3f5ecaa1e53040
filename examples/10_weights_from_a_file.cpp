// Weights from a file: how dear the motion of each joint is stands in a file, as a formula. It is evaluated
// in every step into the metric of the solver. With another joint spared by an edit of the file, the same
// program moves the arm in another way.
#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/endeffector/NqPointEndEffector.h>
#include <nqControlCore/expression/NqExpressionContainer.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace {

/// Drives the hand to its target under these weights. Returns the way of each joint in rad; none where the
/// target isn't reached.
std::vector<double> drive(const NqIndividualManipulator& arm, const NqExpressionContainer& weights) {
    NqPointEndEffector hand;
    hand.setLinkIdentifier("hand");
    const unsigned n = arm.numberOfJoints();
    const double timeStep = 0.001; // s
    NqPositionState position(NqXmlRealVector{0.0, -0.3, 0.2, -2.0, 0.3, 1.8, 0.8});
    const NqEndEffectorPlacement target(NqVector(0.35, 0.3, 0.6));
    NqManipulatorActiveState state(arm);
    NqCoreVelocityControlTool tool;
    NqReArray jacobian;
    const NqXmlRealVector still(3);
    NqXmlRealVector previous(3), command;
    const std::vector<double> gradient(n);
    std::vector<double> rates, nullSpaceRates, ways(n);
    double determinant = 0.0;
    for (unsigned step = 0; step < 2000; ++step) {
        state.setPositionState(position);
        hand.insertJacobianComponent(arm, 0, hand.relativeLinkData(), true, state, jacobian);
        hand.filterEndEffectorVelocity(arm, target, still, previous, timeStep, state, command);
        const NqReArray& metric = weights.value(); // a column: the diagonal of the metric
        if (!tool.calcJointRates(nullptr, jacobian, metric, gradient, 1.0, command.values(), n, rates,
                                 nullSpaceRates, determinant)) {
            return {};
        }
        for (unsigned j = 0; j < n; ++j) {
            position.jointPositions()[j] += rates[j] * timeStep;
            ways[j] += std::abs(rates[j]) * timeStep;
        }
        previous = command;
    }
    NqEndEffectorPlacement reached;
    state.setPositionState(position);
    hand.calculatePlacement(arm, state, reached);
    return hand.difference(reached, target) < 1e-6 ? ways : std::vector<double>();
}

/// Spares joint 0 in place of joint 3, as a hand with an editor would.
void edit(const std::string& from, const std::string& to) {
    std::ifstream in(from);
    std::string text{std::istreambuf_iterator<char>(in), {}};
    const std::string position = "<position>3<";
    if (const auto at = text.find(position); at != std::string::npos) {
        text.replace(at, position.size(), "<position>0<");
    }
    std::ofstream(to) << text;
}

} // namespace

int main(int argc, char** argv) {
    const std::string file = "models/arm7.weights.xml";
    const std::string edited = std::string(argc > 1 ? argv[1] : ".") + "/edited.weights.xml";
    NqIndividualManipulator arm;
    NqExpressionContainer weights;
    if (!NqUrdfReader::readFile("models/arm7.urdf", arm) || !NqXmlDocument::readFile(file, weights)) {
        return 1; // the reason has been printed
    }
    const std::vector<double> before = drive(arm, weights);
    edit(file, edited);
    if (!NqXmlDocument::readFile(edited, weights)) {
        return 1;
    }
    const std::vector<double> after = drive(arm, weights);
    for (std::size_t j = 0; j < before.size() && j < after.size(); ++j) {
        std::printf("joint%zu went %.3f rad, and %.3f rad by the edited file\n", j + 1, before[j], after[j]);
    }
    const bool isSpared = before.size() == after.size() && before.size() == 7 && before[3] < 0.1 * after[3] &&
                          after[0] < 0.1 * before[0];
    return isSpared ? 0 : 1;
}
