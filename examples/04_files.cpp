// End-effectors of any type in a file: write them, read them back, and write the schema of such files.
#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/endeffector/NqPointEndEffector.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <cstdio>
#include <string>

int main(int argc, char** argv) {
    const std::string folder = argc > 1 ? argv[1] : ".";

    NqPointEndEffector tool;
    tool.setLinkIdentifier("flange");
    tool.setPoint(NqVector(0.0, 0.0, 0.12));
    tool.setMotionThreshold(0.25); // m/s
    NqPointEndEffector elbow;
    elbow.setLinkIdentifier("link4");
    elbow.setIsHardConstraint(false);

    // The vector keeps copies, each of its own class.
    NqEndEffectorVector written;
    written.pushBack(tool);
    written.pushBack(elbow);

    const std::string file = folder + "/two.endeffectors.xml";
    const std::string schema = folder + "/endeffectors.xsd";
    NqEndEffectorVector read;
    if (!NqXmlDocument::writeFile(file, written) ||
        !written.createSchema(schema, NqEndEffectorVector::classToken()) ||
        !NqXmlDocument::readFile(file, read)) {
        return 1; // the reason has been printed
    }
    for (const NqEndEffector& endEffector : read) {
        const std::string type(endEffector.token().localName());
        std::printf("%s on %s, %u rows\n", type.c_str(), endEffector.linkIdentifier().c_str(),
                    endEffector.doc());
    }

    // A document that breaks off gives false, and a line that says where; what was read stays.
    std::string text;
    NqXmlDocument::writeString(text, written);
    const bool isWhole = NqXmlDocument::readString(text.substr(0, text.size() / 2), read, "half a file");
    return read == written || isWhole ? 1 : 0;
}
