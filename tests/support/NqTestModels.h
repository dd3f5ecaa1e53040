#pragma once

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

/// A manipulator to try constraints on, with the links that they sit on.
struct NqTestModel {
    std::string name;
    std::shared_ptr<const NqIndividualManipulator> manipulator;
    std::string link;         ///< for the end-effector
    std::string secondLink;   ///< for end-effectors between two links, inboard of `link` or on another branch
    std::string relativeLink; ///< to be relative to
    bool movesBase = false;   ///< whether the base has a pose at random and moves
    NqCoordinateSystemTransformation baseFrame{}; ///< where the base rests unless it moves
};

/// The manipulator of a description: one of the tests' own, such as "branched", or of the project's models.
NqIndividualManipulator nqTestManipulator(const std::string& name);

/// A planar arm of 2 joints, arms of 6 and of 7 joints, the tree "branched" with its oblique and prismatic
/// axes, the same tree with a free base, an arm of 3 joints whose base, middle and end have bodies with mass
/// fixed to them, and the arm of 7 joints hung up obliquely.
const std::vector<NqTestModel>& nqTestModels();

/// A state with everything drawn at random: joints, rates, accelerations and, for a model that moves its
/// base, the base's pose and motion.
NqManipulatorActiveState nqRandomState(const NqTestModel& model, std::mt19937_64& random);

/// The same on every platform, unlike the distributions of the standard library.
double nqDrawn(std::mt19937_64& random, double least, double greatest);
NqVector nqRandomVector(std::mt19937_64& random);
NqCoordinateSystemTransformation nqRandomFrame(std::mt19937_64& random);

/// The state a time later (or earlier) in which joints and base go on at constant acceleration: positions to
/// second order in time, velocities to first.
NqManipulatorActiveState nqMoved(NqManipulatorActiveState& state, double time);
