#pragma once

#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>

#include <string>
#include <vector>

/// The stick figure of an arm: which joints hang on which, and where they are in a few postures. All points
/// in the system frame, metres.
struct NqArmSketch {
    static constexpr int kBase = -1;

    struct Posture {
        std::string label; ///< short name, written beside the arm; may be empty
        NqVector base;
        std::vector<NqVector> joints;
        std::vector<NqVector> endEffectors;                   ///< the points that the end-effectors tie
        std::vector<NqCoordinateSystemTransformation> frames; ///< where an orientation counts
    };

    std::vector<int> inboard;       ///< for each joint the joint inboard of it, or kBase
    std::vector<bool> isLinear;     ///< for each joint
    std::vector<int> carrier;       ///< for each of these points the joint whose link carries it, or kBase
    std::vector<std::size_t> spans; ///< the first of two points that an end-effector ties together

    Posture start;
    std::vector<Posture> wayPoints; ///< postures at the way points that were reached, but the last posture
    Posture last;                   ///< at the end of the run
    std::vector<Posture> between;   ///< drawn faintly
    std::vector<std::vector<NqVector>> paths; ///< of the end-effectors that are points or frames
    std::vector<NqVector> targets;            ///< all targets of the hard ones
    std::vector<NqVector> softTargets;        ///< and of the soft ones, which need not be met
};
