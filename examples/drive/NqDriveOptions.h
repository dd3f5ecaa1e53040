#pragma once

#include <nqControlCore/foundation/math/NqVector.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What the user asks of a run, as the command line says it: nothing is checked against a model yet.
struct NqDriveOptions {
    /// A target for each end-effector; an empty one keeps the target that the end-effector has.
    struct WayPoint {
        bool isRelative = false; ///< targets are offsets from the placement at the start
        std::vector<std::optional<NqVector>> targets;
    };
    enum class Posture { Middle, Start, None, Given };
    enum class Request { Run, Help, Version, Refused };

    std::string model;
    std::string endEffectors;
    std::vector<WayPoint> wayPoints;
    double rate = 1000.0;      ///< control steps per second
    double time = 30.0;        ///< s
    double tolerance = 1.0e-4; ///< m
    double gain = 1.0;         ///< of the gradient towards the posture, 1/s
    Posture posture = Posture::Middle;
    std::vector<double> givenPosture;
    std::vector<double> start;  ///< empty: the middle of the joint ranges
    std::vector<double> metric; ///< empty: ones
    std::vector<std::pair<std::string, double>> metricByLabel;
    std::string output = "nqDrive-out";
    std::string svg;
    bool isQuiet = false;

    /// Reads a command line; when it is refused, `complaint` says why in one line.
    static Request parse(int argc, const char* const* argv, NqDriveOptions& options, std::string& complaint);

    static std::string help();

    std::string postureText() const;
};
