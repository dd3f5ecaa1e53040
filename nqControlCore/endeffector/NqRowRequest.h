#pragma once

#include <nqControlCore/endeffector/NqEndEffectorRelativeLinkData.h>
#include <nqControlCore/endeffector/NqLinkLookup.h>
#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>

/// What an end-effector is asked for rows with: the first of the rows, of which manipulator, relative to
/// which link, and whether the manipulator's base is fixed.
struct NqRowRequest {
    /// Columns of a freely moving base: its translation, then its rotation.
    static constexpr unsigned theBaseDof = 6;

    const NqIndividualManipulator& manipulator;
    unsigned row;
    const NqEndEffectorRelativeLinkData& relativeLink;
    bool fixedBase;

    /// The first column of the base, where it has some.
    unsigned baseColumn() const { return manipulator.numberOfJoints(); }

    /// Columns of the Jacobian.
    unsigned width() const { return baseColumn() + (fixedBase ? 0 : theBaseDof); }

    /// Whether the base moves the rows: it is free, and they are not relative to another link of the same
    /// manipulator.
    bool hasBaseColumns() const { return !fixedBase && !NqLinkLookup::isInternal(relativeLink); }
};
