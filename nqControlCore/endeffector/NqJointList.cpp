#include <nqControlCore/endeffector/NqJointList.h>

#include <nqControlCore/endeffector/NqLinkLookup.h>
#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/text/NqPrint.h>

bool NqJointList::hasJoint(const NqManipulatorLink* link) {
    return link && link->parentLink();
}

void NqJointList::append(const NqManipulatorLink* link) {
    const bool isValid = hasJoint(link);
    m_Joints.push_back({isValid ? link->jointIndex() : 0, isValid});
}

void NqJointList::append(const NqIndividualManipulator& manipulator, const std::string& label) {
    append(manipulator.linkByLabel(label));
}

void NqJointList::append(const NqIndividualManipulator& manipulator, const std::string& label,
                         const char* unknownMessage, const char* noJointMessage) {
    const NqManipulatorLink* link = NqLinkLookup::linkOrMessage(manipulator, label, unknownMessage);
    if (link && !hasJoint(link)) {
        Nq::Print::instance().write(Nq::PrintFailure, noJointMessage);
    }
    append(link);
}

bool NqJointList::appendFound(const NqIndividualManipulator& manipulator, const std::string& label) {
    const NqManipulatorLink* link = manipulator.linkByLabel(label);
    if (!hasJoint(link)) {
        return false;
    }
    append(link);
    return true;
}
