#pragma once

#include <nqControlCore/endeffector/NqFrameBasedEndEffector.h>

/// Constrains a whole frame fixed in a link: six rows, the linear velocity of the frame's origin and the
/// angular velocity, in the system frame.
///
/// The column of a joint is (w x d + v, w), with (v, w) the motion of its link's frame for unit rate and d
/// the way from that frame to the end-effector's, all in the system frame.
class NqFrameEndEffector : public NqXmlPersistent<NqFrameEndEffector, NqFrameBasedEndEffector> {
public:
    static const NqToken& classToken();

    NqFrameEndEffector();

    unsigned doc() const override { return 6; }

    void insertJacobianComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                 const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                 NqManipulatorActiveState& state, NqReArray& jacobian) const override;
    void insertSparsityComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                 const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                 SparsityDescription& sparsity) const override;
    void insertErrorWeightComponent(unsigned row, NqReArray& weights) const override;

    /// A link that is not found leaves the placement.
    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;

    /// A link that is not found gives zeros, without a message; so with the acceleration.
    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override;

    /// A vector longer than `start + 6` keeps its length.
    void calculateAcceleration(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                               NqXmlRealVector& acceleration, unsigned start) const override;

    /// The difference over the filter's `threshold`, which no file written here sets: 1 by default.
    double minimumTime(const NqEndEffectorPlacement& from, const NqEndEffectorPlacement& to) const override;

    /// The distance times the linear error weight plus the angle times the angular one.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;
};
