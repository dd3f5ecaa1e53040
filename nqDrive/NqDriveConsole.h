#pragma once

#include "NqDriveRun.h"

#include <chrono>
#include <string>

/// Shows a run on the console: how it goes on standard error, what came of it on standard output.
///
/// On a terminal the progress is one line that is kept up to date; elsewhere a line comes at every way point
/// and at every tenth of the time limit.
class NqDriveConsole : public NqDriveRun::Watcher {
public:
    explicit NqDriveConsole(bool isQuiet);

    void stepDone(const NqDriveRun& run) override;
    void wayPointReached(const NqDriveRun& run) override;

    /// The tables at the end.
    void showSummary(const NqDriveRecord& record);

    /// One line that tells what is wrong; shown in quiet mode too.
    static void complain(const std::string& complaint);

private:
    std::string progress(const NqDriveRun& run) const;
    void clearLine();

    bool m_IsQuiet;
    bool m_IsTerminal;
    bool m_HasLine = false;
    int m_Tenths = 0;
    std::chrono::steady_clock::time_point m_LastShown;
};
