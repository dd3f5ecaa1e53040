#include "NqFuzzTarget.h"

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

/// A robot description: what is read is one tree of links with finite numbers, and what isn't leaves the
/// manipulator as it was.
void nqFuzzUrdf(NqFuzzInput& input) {
    NqIndividualManipulator robot("before", "base");
    if (!NqUrdfReader::readString(std::string(input.rest()), robot)) {
        nqHolds(nqLinesPrinted() > 0, "a description that isn't read is reported");
        nqHolds(robot.manipulatorLabel() == "before" && robot.linkLabel() == "base" &&
                    robot.numberOfLinks() == NqIndividualManipulator("before", "base").numberOfLinks(),
                "the manipulator stays as it was");
        return;
    }
    const unsigned joints = robot.numberOfJoints();
    for (unsigned j = 0; j < joints; ++j) {
        const NqManipulatorLink* link = robot.linkByIndex(j);
        nqHolds(link && link->parentLink() && robot.linkByLabel(link->linkLabel()) == link,
                "each joint has its link");
        const NqJointDescription& joint = link->joint();
        nqHolds(joint.rateLimit() >= 0.0 && joint.effortLimit() >= 0.0 &&
                    joint.lowerPositionLimit() <= joint.upperPositionLimit(),
                "limits are ones");
    }
    nqHolds(!robot.linkByIndex(joints), "there are no more");
    const NqManipulatorActiveState state(robot);
    nqHolds(state.positionState().jointPositions().size() == joints, "a state has all joints");
    NqIndividualManipulator again;
    nqHolds(NqUrdfReader::readString(std::string(input.rest()), again) &&
                again.numberOfLinks() == robot.numberOfLinks() && again.numberOfJoints() == joints,
            "it reads the same again");
}
