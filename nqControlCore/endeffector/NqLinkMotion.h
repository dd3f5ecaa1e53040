#pragma once

#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/math/NqGeneralMotion.h>

class NqEndEffectorRelativeLinkData;
class NqIndividualManipulator;
class NqManipulatorActivePositionState;
class NqManipulatorActiveState;
class NqManipulatorLink;

/// Where points and frames fixed in a link are, and how they move. They are given in the link's primary
/// frame; results are in the system frame.
namespace NqLinkMotion {

/// A point.
NqVector position(const NqManipulatorLink& link, const NqVector& point,
                  NqManipulatorActivePositionState& state);

/// Velocity of a point, and of the link about it: (v + w x r, w), with (v, w) that of the primary frame and r
/// the way from there.
NqGeneralMotion velocity(const NqManipulatorLink& link, const NqVector& point,
                         NqManipulatorActiveState& state);

/// Classical acceleration of a frame's origin, and its angular acceleration.
NqGeneralMotion acceleration(const NqManipulatorLink& link, const NqCoordinateSystemTransformation& frame,
                             NqManipulatorActiveState& state);

/// Orientation of the link that rows are relative to in internal mode; the identity in the others, and for an
/// unknown label.
NqOrientation referenceOrientation(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorRelativeLinkData& relativeLink,
                                   NqManipulatorActivePositionState& state);

} // namespace NqLinkMotion
