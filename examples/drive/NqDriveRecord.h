#pragma once

#include "NqArmSketch.h"
#include "NqDriveOptions.h"
#include "NqDriveRecorder.h"

#include <nqControlCore/foundation/manipulator/NqJointDescription.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

/// All that is known of a run when it has ended; what the tables, the report and the trajectory file are made
/// from.
struct NqDriveRecord {
    enum class Outcome {
        Reached,      ///< every target of every way point
        TimeOut,      ///< the time was over
        NoProgress,   ///< the largest error has not shrunk for a while
        JointAtLimit, ///< the same, with a joint at the end of its range in the way
        NoSolution    ///< the solver gave no finite joint rates
    };

    struct EndEffector {
        std::string name;
        double speedLimit = std::numeric_limits<double>::infinity();
        double error = 0.0; ///< at the end
        double peakSpeed = 0.0;
        double pathLength = 0.0;
    };

    struct Joint {
        NqJointDescription description;
        double start = 0.0;
        double end = 0.0;
        double least = 0.0;
        double greatest = 0.0;
        double peakRate = 0.0;
        double slowedByRate = 0.0;  ///< how long this joint's rate limit slowed the arm, s
        double slowedByRange = 0.0; ///< how long the end of its range did, s
    };

    struct WayPoint {
        std::vector<NqVector> targets; ///< for each end-effector, in the system frame
        std::vector<double> positions; ///< joint positions when it was reached
        double time = std::numeric_limits<double>::quiet_NaN(); ///< when it was reached, s
        bool isReached() const { return !std::isnan(time); }
    };

    NqDriveOptions options;
    std::string robot;
    std::vector<std::string> notes; ///< what was remarkable in the files that were read
    std::vector<double> metric;
    std::vector<double> posture;

    Outcome outcome = Outcome::TimeOut;
    std::string verdict; ///< the outcome in one sentence
    double time = 0.0;   ///< simulated, s
    double wallTime = 0.0;
    std::uint64_t steps = 0;
    double slowedTime = 0.0;
    double leastDeterminant = std::numeric_limits<double>::infinity(); ///< by magnitude
    double leastDeterminantTime = 0.0;
    double greatestDeterminant = 0.0; ///< by magnitude
    std::vector<EndEffector> endEffectors;
    std::vector<Joint> joints;
    std::vector<WayPoint> wayPoints;
    NqArmSketch sketch;

    bool isReached() const { return outcome == Outcome::Reached; }
    /// Whether the arm came so near to a singular posture that its rates were hardly determined.
    bool isNearlySingular() const { return leastDeterminant <= 1.0e-3 * greatestDeterminant; }
};

inline const char* nqPositionUnit(const NqJointDescription& joint) {
    return joint.type() == NqJointDescription::Prismatic ? "m" : "rad";
}
inline const char* nqRateUnit(const NqJointDescription& joint) {
    return joint.type() == NqJointDescription::Prismatic ? "m/s" : "rad/s";
}
