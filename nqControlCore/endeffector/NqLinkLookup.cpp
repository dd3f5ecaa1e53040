#include <nqControlCore/endeffector/NqLinkLookup.h>

#include <nqControlCore/endeffector/NqEndEffectorRelativeLinkData.h>
#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/text/NqPrint.h>

const NqManipulatorLink* NqLinkLookup::linkOrMessage(const NqIndividualManipulator& manipulator,
                                                     const std::string& label, const char* message) {
    const NqManipulatorLink* link = manipulator.linkByLabel(label);
    if (!link) {
        Nq::Print::instance().write(Nq::PrintFailure, message, label);
    }
    return link;
}

bool NqLinkLookup::isInternal(const NqEndEffectorRelativeLinkData& relativeLink) {
    return relativeLink.relativeMode() == NqEndEffectorRelativeLinkData::relativeModeInternal;
}

const NqManipulatorLink* NqLinkLookup::internalLink(const NqIndividualManipulator& manipulator,
                                                    const NqEndEffectorRelativeLinkData& relativeLink) {
    return isInternal(relativeLink) ? manipulator.linkByLabel(relativeLink.relativeLinkID()) : nullptr;
}

const NqManipulatorLink*
NqLinkLookup::internalLinkOrMessage(const NqIndividualManipulator& manipulator,
                                    const NqEndEffectorRelativeLinkData& relativeLink, const char* message) {
    return isInternal(relativeLink) ? linkOrMessage(manipulator, relativeLink.relativeLinkID(), message)
                                    : nullptr;
}
