#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/endeffector/NqPointEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>
#include <nqControlCore/xml/NqControlCoreInfo.h>
#include <nqControlLoop/NqControlLoop.h>

#include <cstdio>

/// Uses each of the libraries: reads a robot, solves for joint rates, writes a constraint and makes a step of
/// the loop.
int main(int argc, char** argv) {
    NqIndividualManipulator arm;
    if (argc != 2 || !NqUrdfReader::readFile(argv[1], arm)) {
        return 1;
    }
    NqPointEndEffector point;
    point.setLinkIdentifier(arm.link(arm.numberOfLinks() - 1)->linkLabel());

    const unsigned n = arm.numberOfJoints();
    NqManipulatorActiveState state(arm);
    state.setPositionState(NqPositionState(NqXmlRealVector(n, 0.5)));
    NqReArray jacobian;
    point.insertJacobianComponent(arm, 0, point.relativeLinkData(), true, state, jacobian);

    NqCoreVelocityControlTool tool;
    NqReArray metric;
    metric.setToIdentity(n, n);
    const std::vector<double> velocity{0.1, 0.2, 0.3};
    std::vector<double> rates;
    std::vector<double> nullSpaceRates;
    std::vector<double> reached;
    double determinant = 0.0;
    std::string document;
    if (!tool.calcJointRates(nullptr, jacobian, metric, std::vector<double>(n), 1.0, velocity, n, rates,
                             nullSpaceRates, determinant) ||
        !jacobian.transform(rates, reached) || !NqXmlDocument::writeString(document, point)) {
        return 1;
    }
    NqControlLoop loop(arm);
    loop.addEndEffector("tip", point);
    loop.setPositions(std::vector<double>(n, 0.5));
    if (!loop.step() || loop.steps() != 1) {
        return 1;
    }
    std::printf("nqControlCore %s: %u joints, z velocity %.6f m/s\n", Nq::controlCoreInfo::version().c_str(),
                n, reached[2]);
    const bool isExact = reached[2] > 0.3 - 1e-12 && reached[2] < 0.3 + 1e-12;
    return isExact && document.find("pointEndEffector") != std::string::npos ? 0 : 1;
}
