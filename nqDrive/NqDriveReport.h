#pragma once

#include "NqDriveRecord.h"
#include "NqSvgPlot.h"

#include <string>

/// A run on paper: a page that needs no other file, and a picture.
class NqDriveReport {
public:
    NqDriveReport(const NqDriveRecord& record, const NqDriveRecorder& recorder);

    /// The page, as HTML that is well-formed XML too.
    std::string html() const;

    /// The arm, the distances to the targets, the speeds and the joint load in one drawing.
    std::string svg() const;

private:
    NqSvgPlot prepared(double width, double height, const std::string& title, const std::string& unit) const;
    /// A quantity of the parts of a unit, or of all parts where none is given.
    using Quantity = double (NqDriveRecorder::*)(std::size_t row, std::size_t part) const;
    void addCurves(NqSvgPlot& plot, const std::string* unit, Quantity quantity,
                   double NqTargetKind::Part::*fullScale) const;
    NqSvgPlot errorPlot(const std::string* unit, double width, double height) const;
    NqSvgPlot limitedPlot(const std::string& unit, const std::string& title, int power, Quantity quantity,
                          double NqTargetKind::Part::*limit, double width, double height) const;
    NqSvgPlot speedPlot(const std::string& unit, double width, double height) const;
    NqSvgPlot accelerationPlot(const std::string& unit, double width, double height) const;
    NqSvgPlot speedSharePlot(double width, double height) const;
    NqSvgPlot positionPlot(std::size_t joint, double width, double height) const;
    NqSvgPlot ratePlot(std::size_t joint, double width, double height) const;
    NqSvgPlot loadPlot(double width, double height) const;
    NqSvgPlot determinantPlot(double width, double height) const;
    NqSvgPlot slowingPlot(double width, double height) const;
    std::string armFigures() const;

    std::string runTable() const;
    std::string wayPointTable() const;
    std::string endEffectorTable() const;
    std::string endEffectorFigures() const;
    std::string jointTable() const;

    const NqDriveRecord& m_Record;
    const NqDriveRecorder& m_Recorder;
    std::vector<double> m_Times;
};
