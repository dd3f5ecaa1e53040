#pragma once

/// Bounds on the rate of one joint in the next control step, such that the joint keeps its limits in this
/// step and can keep them in all that follow.
///
/// A rate x is allowed if it is within the limit of rate, differs from the present one by no more than the
/// limit of acceleration allows, and leaves the joint able to stop within its range at that acceleration:
/// viability in discrete time, Del Prete, "Joint position and velocity bounds in discrete-time
/// acceleration/torque control of robot arms", IEEE Robotics and Automation Letters 3(1), 2018; exact here
/// for a joint that moves by x h in a step of h. Within the range the rate also falls with the room that is
/// left, where the limit of acceleration allows. Where limits exclude each other, those of range and rate
/// hold.
struct NqJointBounds {
    /// What a bound comes from.
    enum class Cause { Rate, Acceleration, Range };

    /// rad or m, s; infinite where there is no limit.
    struct Limits {
        double lower;
        double upper;
        double rate;
        double acceleration;
        double approach; ///< greatest rate for the room that is left, 1/s
    };

    double lower = 0.0;
    double upper = 0.0;
    Cause lowerCause = Cause::Rate;
    Cause upperCause = Cause::Rate;

    NqJointBounds(const Limits& limits, double position, double rate, double timeStep);

    /// The bounds from limits of rate and range alone.
    static double lowerOfPlace(const Limits& limits, double position, double timeStep);
    static double upperOfPlace(const Limits& limits, double position, double timeStep);

    /// The greatest rate at which a joint can still stop within `room`, slowing by `acceleration`.
    static double greatestViable(double room, double acceleration, double timeStep);
};
