#pragma once

#include <nqControlLoop/NqTargetKind.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Where the user wants an end-effector, as it is written: in one of the forms of NqTargetForm, or "hold".
struct NqDriveTarget {
    std::vector<double> numbers;              ///< three coordinates in m, or other numbers; empty if left out
    std::optional<NqOrientation> orientation; ///< given as a rotation vector: axis times angle in degrees

    /// Neither: the end-effector keeps the target that it has.
    bool isHold() const { return numbers.empty() && !orientation; }

    /// False, and `target` untouched, for a text that isn't of these forms.
    static bool parse(std::string_view text, NqDriveTarget& target);

    /// The forms, in words.
    static std::string forms();

    /// Empty if the target suits this kind of end-effector, else what is wrong with it.
    std::string objection(const NqTargetKind& kind) const;

    /// The placement that the target means; what it leaves out is as it is at the start. Offsets and
    /// rotations of a relative target are along and about the axes of the frame that the placement is in.
    NqEndEffectorPlacement placement(const NqTargetKind& kind, bool isRelative,
                                     const NqEndEffectorPlacement& start) const;

    /// Empty unless a target's number is one that the constraint can't have.
    static std::string rangeObjection(const NqTargetKind& kind, const NqEndEffectorPlacement& target);

    /// A placement as the user would write it.
    static std::string text(const NqTargetKind& kind, const NqEndEffectorPlacement& placement);
};

/// A target for each end-effector, to be reached together.
struct NqDriveWayPoint {
    bool isRelative = false; ///< targets are offsets from the placement at the start
    std::vector<NqDriveTarget> targets;
    std::string source; ///< file and line, where it comes from a file

    /// Targets separated by "/"; blanks around them don't matter.
    static bool parse(std::string_view text, bool isRelative, NqDriveWayPoint& wayPoint);
};
