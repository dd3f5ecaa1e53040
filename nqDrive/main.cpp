#include "NqDriveConsole.h"
#include "NqDriveCsv.h"
#include "NqDriveOptions.h"
#include "NqDriveReport.h"
#include "NqDriveRun.h"
#include "NqDriveTask.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <utility>

namespace {

constexpr int kReached = 0;
constexpr int kNotReached = 1;
constexpr int kRefused = 2;

bool isWritten(std::ofstream stream, const std::filesystem::path& file) {
    stream.close();
    if (!stream) {
        NqDriveConsole::complain("cannot write '" + file.string() + "'");
    }
    return static_cast<bool>(stream);
}

/// Whether a file can be written, asked before the run; what stands in it stays.
bool isWritable(const std::filesystem::path& file) {
    return isWritten(std::ofstream(file, std::ios::app), file);
}

bool writeFile(const std::filesystem::path& file, const std::string& content) {
    std::ofstream stream(file, std::ios::binary);
    stream << content;
    return isWritten(std::move(stream), file);
}

/// Trajectory, report and picture.
bool writeFiles(const NqDriveRun& run, bool isQuiet) {
    const NqDriveOptions& options = run.record().options;
    const std::filesystem::path folder = options.output;
    const NqDriveReport report(run.record(), run.recorder());
    if (!writeFile(folder / "trajectory.csv", NqDriveCsv(run.record(), run.recorder()).text()) ||
        !writeFile(folder / "report.html", report.html()) ||
        (!options.svg.empty() && !writeFile(options.svg, report.svg()))) {
        return false;
    }
    if (!isQuiet) {
        std::printf("  written: %s, %s%s%s\n", (folder / "trajectory.csv").c_str(),
                    (folder / "report.html").c_str(), options.svg.empty() ? "" : ", ", options.svg.c_str());
    }
    return true;
}

int drive(const NqDriveOptions& options) {
    NqDriveTask task;
    if (!task.load(options)) {
        NqDriveConsole::complain(task.complaint());
        return kRefused;
    }
    if (const std::string unreachable = task.unreachableTarget(); !unreachable.empty()) {
        NqDriveConsole::complain(unreachable);
        return kNotReached;
    }
    std::error_code error;
    std::filesystem::create_directories(options.output, error);
    if (error) {
        NqDriveConsole::complain("cannot make the folder '" + options.output + "': " + error.message());
        return kRefused;
    }
    if (!isWritable(std::filesystem::path(options.output) / "trajectory.csv") ||
        (!options.svg.empty() && !isWritable(options.svg))) {
        return kRefused;
    }
    NqDriveRun run(task);
    NqDriveConsole console(options.isQuiet);
    run.execute(console);
    console.showSummary(run.record());
    if (!writeFiles(run, options.isQuiet)) {
        return kRefused;
    }
    if (!run.record().isReached()) {
        NqDriveConsole::complain("not reached: " + run.record().verdict);
        return kNotReached;
    }
    return kReached;
}

} // namespace

int main(int argc, char** argv) {
    NqDriveOptions options;
    std::string complaint;
    switch (NqDriveOptions::parse(argc, argv, options, complaint)) {
    case NqDriveOptions::Request::Help:
        std::fputs(NqDriveOptions::help().c_str(), stdout);
        return kReached;
    case NqDriveOptions::Request::Version:
        std::puts("nqDrive " NQ_VERSION_STRING);
        return kReached;
    case NqDriveOptions::Request::Refused:
        NqDriveConsole::complain(complaint);
        return kRefused;
    case NqDriveOptions::Request::Run:
        break;
    }
    return drive(options);
}
