#include <nqControlCore/endeffector/NqPointEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>
#include <nqControlCore/xml/NqControlCoreInfo.h>
#include <nqControlLoop/NqControlLoop.h>

#include <cstdio>

/// Uses each of the libraries: reads a robot, writes a constraint, and makes steps of the loop towards a
/// place.
int main(int argc, char** argv) {
    NqIndividualManipulator arm;
    if (argc != 2 || !NqUrdfReader::readFile(argv[1], arm)) {
        return 1;
    }
    NqPointEndEffector point;
    point.setLinkIdentifier(arm.link(arm.numberOfLinks() - 1)->linkLabel());
    std::string document;
    if (!NqXmlDocument::writeString(document, point)) {
        return 1;
    }
    NqControlLoop loop(arm);
    loop.addEndEffector("tip", point);
    loop.setPositions(std::vector<double>(arm.numberOfJoints(), 0.5));
    const NqVector target = loop.placements()[0].translation() + NqVector(0.0, 0.1, -0.1);
    loop.setTarget("tip", NqControlTarget::place(target));
    for (unsigned i = 0; i < 5000 && loop.step(); ++i) {
    }
    const double left = (loop.placements()[0].translation() - target).mag();
    std::printf("nqControlCore %s: %u joints, %.6f m left\n", Nq::controlCoreInfo::version().c_str(),
                arm.numberOfJoints(), left);
    return left < 1e-3 && document.find("pointEndEffector") != std::string::npos ? 0 : 1;
}
