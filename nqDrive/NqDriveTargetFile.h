#pragma once

#include "NqDriveTarget.h"

#include <string>
#include <vector>

/// Reads way points from a text file: one a line, written as on the command line, with "relative" before
/// offsets. What follows a '#' is a comment.
class NqDriveTargetFile {
public:
    /// Appends the file's way points. False, with nothing appended and the reason in one line, when the file
    /// can't be read, a line is none, or there is no line or far too many.
    static bool read(const std::string& file, std::vector<NqDriveWayPoint>& wayPoints,
                     std::string& complaint);
};
