#pragma once

#include <nqControlCore/foundation/math/NqVector.h>

#include <string>
#include <vector>

/// The stick figure of an arm: which joints hang on which, and where they are in a few postures. All points
/// in the system frame, metres.
struct NqArmSketch {
    static constexpr int kBase = -1;

    struct Posture {
        std::string label; ///< short name, written beside the arm; may be empty
        std::vector<NqVector> joints;
        std::vector<NqVector> endEffectors;
    };

    NqVector base;
    std::vector<int> inboard;   ///< for each joint the joint inboard of it, or kBase
    std::vector<bool> isLinear; ///< for each joint
    std::vector<int> carrier;   ///< for each end-effector the joint whose link carries it, or kBase

    Posture start;
    std::vector<Posture> wayPoints; ///< postures at the way points that were reached, but the last posture
    Posture last;                   ///< at the end of the run
    std::vector<Posture> between;   ///< drawn faintly
    std::vector<std::vector<NqVector>> paths; ///< for each end-effector
    std::vector<NqVector> targets;            ///< all targets of all end-effectors
};
