#pragma once

#include <nqControlCore/foundation/math/NqOrientation.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Where the user wants an end-effector, as it is written: "X,Y,Z", "X,Y,Z@RX,RY,RZ", "@RX,RY,RZ", one
/// number, or "hold". Whether it suits the end-effector is another matter (see NqDriveTargetKind).
struct NqDriveTarget {
    std::vector<double> place;                ///< three coordinates in m, or one number; empty if left out
    std::optional<NqOrientation> orientation; ///< given as a rotation vector: axis times angle in degrees

    /// Neither: the end-effector keeps the target that it has.
    bool isHold() const { return place.empty() && !orientation; }

    /// False, and `target` untouched, for a text that isn't of these forms.
    static bool parse(std::string_view text, NqDriveTarget& target);

    /// The forms, in words.
    static const char* forms();
};

/// A target for each end-effector, to be reached together.
struct NqDriveWayPoint {
    bool isRelative = false; ///< targets are offsets from the placement at the start
    std::vector<NqDriveTarget> targets;
    std::string source; ///< file and line, where it comes from a file

    /// Targets separated by "/"; blanks around them don't matter.
    static bool parse(std::string_view text, bool isRelative, NqDriveWayPoint& wayPoint);
};
