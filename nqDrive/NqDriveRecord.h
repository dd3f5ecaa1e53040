#pragma once

#include "NqArmSketch.h"
#include "NqDriveOptions.h"
#include "NqDriveRecorder.h"

#include <nqControlLoop/NqControlLoopStatus.h>
#include <nqControlLoop/NqTargetKind.h>

#include <nqControlCore/foundation/manipulator/NqJointDescription.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

/// All that is known of a run when it has ended; what the tables, the report and the trajectory file are made
/// from.
struct NqDriveRecord {
    enum class Outcome {
        Reached,     ///< every target of every way point
        TimeOut,     ///< the time was over
        WallTimeOut, ///< the time that the run itself may take was over
        NoProgress,  ///< the largest error has not shrunk for a while: `status` says why
        NoStep       ///< no step could be made
    };

    struct EndEffector {
        std::string name;
        NqTargetKind kind;
        bool isHard = true;
    };

    /// A part of an end-effector's motion.
    struct Part {
        std::size_t endEffector = 0;
        NqTargetKind::Part limits;
        std::string name;   ///< of the end-effector and, if it has several, the part
        double error = 0.0; ///< at the end
        double peakSpeed = 0.0;
        double peakAcceleration = 0.0; ///< above creeping speed (see isCreeping)
        double pathLength = 0.0;
    };

    struct Joint {
        NqJointDescription description;
        double start = 0.0;
        double end = 0.0;
        double least = 0.0;
        double greatest = 0.0;
        double peakRate = 0.0;
        double lastRate = 0.0;
        unsigned flips = 0; ///< how often its rate changed sign from one step to the next
        double slowedByRate =
            0.0; ///< how long this joint's limits of rate and acceleration slowed the arm, s
        double slowedByRange = 0.0; ///< how long the end of its range did, s
    };

    struct WayPoint {
        std::vector<std::string> targets;                       ///< for each end-effector, as it is written
        std::vector<double> positions;                          ///< joint positions when it was reached
        NqCoordinateSystemTransformation base;                  ///< the base then
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
    NqControlLoopStatus status; ///< at the end
    unsigned detours = 0;       ///< how often the arm went through another posture
    bool hasSearched = false;   ///< whether another posture was looked for in vain
    double leastDeterminant = std::numeric_limits<double>::infinity(); ///< by magnitude
    double leastDeterminantTime = 0.0;
    double greatestDeterminant = 0.0; ///< by magnitude
    std::vector<EndEffector> endEffectors;
    std::vector<Part> parts; ///< of all end-effectors, in the order of NqControlLoop::parts
    std::vector<Joint> joints;
    std::vector<WayPoint> wayPoints;
    NqArmSketch sketch;

    bool isReached() const { return outcome == Outcome::Reached; }
    bool hasSoftEndEffectors() const {
        return std::any_of(endEffectors.begin(), endEffectors.end(),
                           [](const EndEffector& endEffector) { return !endEffector.isHard; });
    }
    /// The units of the parts, each once.
    std::vector<std::string> units() const {
        std::vector<std::string> units;
        for (const Part& part : parts) {
            if (std::find(units.begin(), units.end(), part.limits.unit) == units.end()) {
                units.push_back(part.limits.unit);
            }
        }
        return units;
    }
    /// Whether the arm came so near to a singular posture that its rates were hardly determined. Soft
    /// end-effectors make the determinant vary with the posture in other ways too, so it tells nothing then.
    bool isNearlySingular() const {
        return !hasSoftEndEffectors() && leastDeterminant <= 1.0e-3 * greatestDeterminant;
    }
};

/// A mark behind a value that is over its limit.
inline const char* nqOverMark(double value, double limit) {
    return value > limit * (1.0 + 1.0e-6) ? " !" : "";
}

inline const char* nqPositionUnit(const NqJointDescription& joint) {
    return joint.type() == NqJointDescription::Prismatic ? "m" : "rad";
}
inline const char* nqRateUnit(const NqJointDescription& joint) {
    return joint.type() == NqJointDescription::Prismatic ? "m/s" : "rad/s";
}

/// A unit over time: "m/s", "rad/s²".
inline std::string nqPerSecond(const std::string& unit, int power = 1) {
    return (unit.empty() ? "1" : unit) + (power == 1 ? "/s" : "/s²");
}
