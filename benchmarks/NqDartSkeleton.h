#pragma once

#include <dart/dynamics/Skeleton.hpp>

#include <string>

/// A robot described in URDF as DART has it, on a base that is fixed or moves freely. Links without inertial
/// data have no mass. Null if DART can't read it.
dart::dynamics::SkeletonPtr nqDartSkeleton(const std::string& urdf, bool movesBase);
