#pragma once

#include <nqControlLoop/NqJointBounds.h>

#include <nqControlCore/foundation/math/NqVector.h>

#include <cstddef>
#include <limits>
#include <vector>

/// How a control step went, and why it went no better. Everything is a number: no text has to be taken apart.
struct NqControlLoopStatus {
    enum Kind {
        Running,       ///< on the way as commanded
        Reached,       ///< all hard end-effectors, or all where none is hard, are within the tolerance; on
                       ///< the way to a posture: all joints
        Slowed,        ///< on the way, by less than commanded or beside it: `joints` say why, unless it is
                       ///< damping, or a bend or stop ahead
        Held,          ///< limits of `joints` keep `endEffector` from going on along its way; near a
                       ///< singularity: without them it would go on; on the way to a posture: `joints`
                       ///< can't move any more and are elsewhere
        Singular,      ///< the arm can't move `endEffector` along `direction`, and stands still
        OutOfReach,    ///< the same, and no way leads nearer from this posture: `distance` is the least
                       ///< here, another posture may come nearer (NqPostureSearch); or soft end-effectors
                       ///< alone stand where they come no nearer, `endEffector` farthest off
        Contradictory, ///< the targets of `endEffector` and `other` exclude each other
        BadInput       ///< there was no step: something isn't finite, or validate() objects
    };

    /// A joint at a limit.
    struct Joint {
        unsigned joint = 0;
        NqJointBounds::Cause cause = NqJointBounds::Cause::Rate;
        bool isUpper = false;
        double multiplier = 0.0; ///< what it would be worth to pass the limit
    };

    Kind kind = Running;
    std::vector<Joint> joints;
    std::size_t endEffector = 0;
    std::size_t other = 0;
    NqVector direction; ///< in the system frame, or of the first rows of the end-effector
    bool isAngular = false;
    double leastSingularValue =
        std::numeric_limits<double>::infinity(); ///< of the hard rows; known where it is small
    double distance = 0.0;                       ///< largest error, m or rad
    bool isCapped = false;                       ///< whether an active set took too many steps
    bool isAtRest = false;                       ///< whether the joints have stood still for 0.05 s

    /// Whether the arm stands still and is kept from its targets.
    bool isStuck() const { return kind >= Held && (isAtRest || kind == BadInput); }
};
