#include <nqControlCore/endeffector/NqLinkMotion.h>

#include <nqControlCore/endeffector/NqLinkLookup.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorLink.h>

NqVector NqLinkMotion::position(const NqManipulatorLink& link, const NqVector& point,
                                NqManipulatorActivePositionState& state) {
    return link.primaryFrameInSystem(state) * point;
}

NqGeneralMotion NqLinkMotion::velocity(const NqManipulatorLink& link, const NqVector& point,
                                       NqManipulatorActiveState& state) {
    const NqVector r = link.primaryFrameInSystem(state.activePositionState()).orientation() * point;
    NqGeneralMotion motion = link.primaryFrameVelocity(state);
    return motion.transformBy(r);
}

NqGeneralMotion NqLinkMotion::acceleration(const NqManipulatorLink& link,
                                           const NqCoordinateSystemTransformation& frame,
                                           NqManipulatorActiveState& state) {
    const NqCoordinateSystemTransformation inLink = link.primaryFrameOffset() * frame;
    const NqCoordinateSystemTransformation inSystem =
        link.linkFrameInSystem(state.activePositionState()) * inLink;
    const NqVector w = link.localVelocity(state).angular();
    const NqVector centripetal = w.cross(w.cross(inLink.translation()));

    NqGeneralMotion acceleration = inLink.inverse() * link.localAcceleration(state);
    acceleration.setLinear(acceleration.linear() + inLink.orientation().inverse() * centripetal);
    return inSystem.orientation() * acceleration;
}

NqOrientation NqLinkMotion::referenceOrientation(const NqIndividualManipulator& manipulator,
                                                 const NqEndEffectorRelativeLinkData& relativeLink,
                                                 NqManipulatorActivePositionState& state) {
    const auto* link = NqLinkLookup::internalLink(manipulator, relativeLink);
    return link ? link->primaryFrameInSystem(state).orientation() : NqOrientation();
}
