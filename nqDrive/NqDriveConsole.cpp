#include "NqDriveConsole.h"

#include "NqDriveText.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <unistd.h>

using NqDriveText::fixed;
using NqDriveText::padded;
using NqDriveText::significant;

namespace {

constexpr auto kRefresh = std::chrono::milliseconds(50);

void put(std::FILE* stream, const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

/// A table in columns; the first column to the left, the others to the right.
std::string table(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t c = 0; c < row.size(); ++c) {
            widths[c] = std::max(widths[c], row[c].size());
        }
    }
    std::string out;
    for (const auto& row : rows) {
        out += " ";
        for (std::size_t c = 0; c < row.size(); ++c) {
            out += ' ';
            out += padded(row[c], widths[c] + 1, c > 0);
        }
        out.erase(out.find_last_not_of(' ') + 1);
        out += "\n";
    }
    return out;
}

std::string limit(double value) {
    return std::isfinite(value) ? fixed(value, 3) : "none";
}

} // namespace

NqDriveConsole::NqDriveConsole(bool isQuiet) : m_IsQuiet(isQuiet), m_IsTerminal(isatty(STDERR_FILENO) == 1) {}

void NqDriveConsole::complain(const std::string& complaint) {
    put(stderr, "nqDrive: " + complaint + "\n");
}

std::string NqDriveConsole::progress(const NqDriveRun& run) const {
    const NqControlLoop& loop = run.loop();
    const auto& joints = run.record().joints;
    std::size_t busiest = 0;
    double load = 0.0;
    for (std::size_t j = 0; j < joints.size(); ++j) {
        const double share = std::abs(loop.rates()[j]) / joints[j].description.rateLimit();
        if (share > load) {
            busiest = j;
            load = share;
        }
    }
    const std::size_t farthest = run.farthest();
    std::string line = padded(fixed(loop.time(), 3), 9, true) + " s  way point " +
                       std::to_string(run.wayPoint() + 1) + "/" +
                       std::to_string(run.record().wayPoints.size()) + "  error " +
                       padded(significant(loop.errors()[farthest], 3), 8) + " " +
                       padded(run.record().parts[farthest].limits.unit, 3) + "  determinant " +
                       padded(significant(loop.determinant(), 3), 9) + "  fastest " +
                       joints[busiest].description.name() + " " + fixed(100.0 * load, 0) + " %";
    const NqControlLoopStatus& status = loop.status();
    if (loop.slowing() < 0.98 && !status.joints.empty()) {
        line += "  slowed to " + fixed(100.0 * loop.slowing(), 0) + " % by " +
                joints[status.joints[0].joint].description.name() + " (" +
                NqDriveText::limitName(status.joints[0].cause) + ")";
    }
    return line;
}

void NqDriveConsole::clearLine() {
    if (m_HasLine) {
        put(stderr, "\r\x1b[K");
        m_HasLine = false;
    }
}

void NqDriveConsole::stepDone(const NqDriveRun& run) {
    if (m_IsQuiet) {
        return;
    }
    if (m_IsTerminal) {
        const auto now = std::chrono::steady_clock::now();
        if (now - m_LastShown >= kRefresh) {
            put(stderr, progress(run).insert(0, 1, '\r').append("\x1b[K"));
            m_LastShown = now;
            m_HasLine = true;
        }
    } else if (const int tenths = static_cast<int>(10.0 * run.loop().time() / run.task().options().time);
               tenths > m_Tenths) {
        m_Tenths = tenths;
        put(stderr, progress(run) + "\n");
    }
}

void NqDriveConsole::wayPointReached(const NqDriveRun& run) {
    if (!m_IsQuiet) {
        clearLine();
        put(stderr, progress(run) + "  reached\n");
    }
}

void NqDriveConsole::showSummary(const NqDriveRecord& record) {
    if (m_IsQuiet) {
        return;
    }
    clearLine();
    std::string out;
    for (const std::string& note : record.notes) {
        out += "note: " + note + "\n";
    }
    out += record.robot + ": " + record.verdict + "\n\n";

    std::vector<std::vector<std::string>> rows{
        {"end-effector", "unit", "error", "path", "fastest", "limit", "acceleration", "limit"}};
    for (const auto& part : record.parts) {
        rows.push_back({part.name + (record.endEffectors[part.endEffector].isHard ? "" : " (soft)"),
                        part.limits.unit, significant(part.error, 3), fixed(part.pathLength, 3),
                        fixed(part.peakSpeed, 3) + nqOverMark(part.peakSpeed, part.limits.speedLimit),
                        limit(part.limits.speedLimit),
                        fixed(part.peakAcceleration, 3) +
                            nqOverMark(part.peakAcceleration, part.limits.accelerationLimit),
                        limit(part.limits.accelerationLimit)});
    }
    out += table(rows) + "\n";

    rows = {{"joint", "start", "end", "from", "to", "lower", "upper", "fastest", "limit", "slowed s"}};
    for (const auto& joint : record.joints) {
        rows.push_back(
            {joint.description.name(), fixed(joint.start, 3), fixed(joint.end, 3), fixed(joint.least, 3),
             fixed(joint.greatest, 3), limit(joint.description.lowerPositionLimit()),
             limit(joint.description.upperPositionLimit()),
             fixed(joint.peakRate, 3) + nqOverMark(joint.peakRate, joint.description.rateLimit()),
             limit(joint.description.rateLimit()), fixed(joint.slowedByRate + joint.slowedByRange, 3)});
    }
    out += table(rows) + "\n";
    out += "  " + std::to_string(record.steps) + " steps in " + fixed(1000.0 * record.wallTime, 1) + " ms";
    if (record.steps > 0) {
        out += " (" + fixed(1.0e6 * record.wallTime / static_cast<double>(record.steps), 1) + " us a step)";
    }
    out += "; slowed for " + fixed(record.slowedTime, 3) + " s; least determinant " +
           significant(record.leastDeterminant, 3) + " at " + fixed(record.leastDeterminantTime, 3) + " s" +
           (record.isNearlySingular() ? ": close to a singular posture" : "") + "\n";
    put(stdout, out);
}
