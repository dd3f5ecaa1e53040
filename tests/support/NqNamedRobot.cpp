#include "support/NqNamedRobot.h"

#include "support/NqTestFiles.h"

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

const NqIndividualManipulator& nqNamedRobot() {
    static const NqIndividualManipulator theRobot = [] {
        NqIndividualManipulator robot;
        NqUrdfReader::readFile(nqTestModelFile("/named.urdf"), robot);
        return robot;
    }();
    return theRobot;
}

const NqEndEffectorVector& nqNamedEndEffectors() {
    static const NqEndEffectorVector theEndEffectors = [] {
        NqEndEffectorVector all;
        NqEndEffectorTypes::forEach([&]<typename EndEffector>() {
            EndEffector endEffector;
            const std::string file = std::string(EndEffector::classToken().localName()) + ".xml";
            if (NqXmlDocument::readFile(nqGoldenFile("/") + file, endEffector)) {
                endEffector.setUseExternalOffset(false);
                all.pushBack(endEffector);
            }
        });
        return all;
    }();
    return theEndEffectors;
}
