#pragma once

#include "NqDriveTarget.h"

#include <string>
#include <utility>
#include <vector>

/// What the user asks of a run, as the command line says it: nothing is checked against a model yet.
struct NqDriveOptions {
    enum class Posture { Middle, Start, None, Given };
    enum class Request { Run, Help, Version, Refused };

    std::string model;
    std::string endEffectors;
    std::vector<NqDriveWayPoint> wayPoints;
    double rate = 1000.0;                ///< control steps per second
    double time = 30.0;                  ///< s
    double wall = 600.0;                 ///< s that the run itself may take
    double tolerance = 1.0e-4;           ///< m, and rad
    double gain = 1.0;                   ///< of the gradient towards the posture, 1/s
    double softGain = 1000.0;            ///< times the error weights of soft constraints
    std::optional<unsigned int> profile; ///< filtering mode; none: as in the file
    Posture posture = Posture::Middle;
    std::vector<double> givenPosture;
    std::vector<double> start; ///< empty: the middle of the joint ranges
    std::vector<std::pair<std::string, double>> startByLabel;
    std::vector<double> metric; ///< empty: ones
    std::vector<std::pair<std::string, double>> metricByLabel;
    std::string output = "nqDrive-out";
    std::string svg;
    bool mayDetour = true;
    bool isBaseFree = false;
    std::vector<double> baseMetric; ///< of its motion along and about x, y, z; empty: ones
    bool keepsEveryStep = false;
    bool isQuiet = false;

    /// Reads a command line; when it is refused, `complaint` says why in one line.
    static Request parse(int argc, const char* const* argv, NqDriveOptions& options, std::string& complaint);

    static std::string help();

    std::string postureText() const;
    std::string profileText() const;
};
