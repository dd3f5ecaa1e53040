#include "NqDriveTargetFile.h"

#include "NqDriveText.h"

#include <filesystem>
#include <fstream>

namespace {

constexpr std::size_t kMostWayPoints = 10000;
constexpr std::size_t kLongestLine = 4096;
/// What of a bad line is repeated in the complaint.
constexpr std::size_t kShownCharacters = 60;

} // namespace

bool NqDriveTargetFile::read(const std::string& file, std::vector<NqDriveWayPoint>& wayPoints,
                             std::string& complaint) {
    const auto refuse = [&](std::size_t number, const std::string& reason) {
        complaint = file + ":" + std::to_string(number) + ": " + reason;
        return false;
    };
    std::error_code error;
    std::ifstream stream(file, std::ios::binary);
    if (!std::filesystem::is_regular_file(file, error) || !stream) {
        complaint = "cannot read the file " + NqDriveText::inQuotes(file);
        return false;
    }
    std::vector<NqDriveWayPoint> read;
    std::string line;
    for (std::size_t number = 1; std::getline(stream, line); ++number) {
        if (line.size() > kLongestLine) {
            return refuse(number, "the line is too long");
        }
        const std::string_view text = NqDriveText::trimmed(std::string_view(line).substr(0, line.find('#')));
        if (text.empty()) {
            continue;
        }
        if (read.size() == kMostWayPoints) {
            return refuse(number, "more than " + std::to_string(kMostWayPoints) + " way points");
        }
        constexpr std::string_view kRelative = "relative ";
        const bool isRelative = text.starts_with(kRelative);
        NqDriveWayPoint& wayPoint = read.emplace_back();
        if (!NqDriveWayPoint::parse(isRelative ? text.substr(kRelative.size()) : text, isRelative,
                                    wayPoint)) {
            return refuse(number, std::string("needs ") + NqDriveTarget::forms() +
                                      " for each end-effector, separated by '/', not " +
                                      NqDriveText::inQuotes(NqDriveText::printable(text, kShownCharacters)));
        }
        wayPoint.source = file + ":" + std::to_string(number);
    }
    if (read.empty()) {
        complaint = "no way point in the file " + NqDriveText::inQuotes(file);
        return false;
    }
    wayPoints.insert(wayPoints.end(), read.begin(), read.end());
    return true;
}
