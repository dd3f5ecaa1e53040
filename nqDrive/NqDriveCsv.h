#pragma once

#include "NqDriveRecord.h"

#include <string>

/// The recorded steps as a table of comma-separated values, one line for each, under a line of column names
/// and one of their units, which starts as a comment does.
class NqDriveCsv {
public:
    NqDriveCsv(const NqDriveRecord& record, const NqDriveRecorder& recorder)
        : m_Record(record), m_Recorder(recorder) {}

    std::string text() const;

private:
    const NqDriveRecord& m_Record;
    const NqDriveRecorder& m_Recorder;
};
