#pragma once

#include <string>

class NqEndEffectorRelativeLinkData;
class NqIndividualManipulator;
class NqManipulatorLink;

/// Finding the links that an end-effector names.
namespace NqLinkLookup {

/// The link of that label. Null, after printing the message with the label in it, where there is none.
const NqManipulatorLink* linkOrMessage(const NqIndividualManipulator& manipulator, const std::string& label,
                                       const char* message);

/// Whether rows are relative to a link of the same manipulator.
bool isInternal(const NqEndEffectorRelativeLinkData& relativeLink);

/// The link that rows are relative to in internal mode; null in the others, and for an unknown label.
const NqManipulatorLink* internalLink(const NqIndividualManipulator& manipulator,
                                      const NqEndEffectorRelativeLinkData& relativeLink);

/// The same, with the message for an unknown label.
const NqManipulatorLink* internalLinkOrMessage(const NqIndividualManipulator& manipulator,
                                               const NqEndEffectorRelativeLinkData& relativeLink,
                                               const char* message);

} // namespace NqLinkLookup
