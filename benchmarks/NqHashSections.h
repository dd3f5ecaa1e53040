#pragma once

#include "NqChecksum.h"

#include <functional>
#include <string>

/// What nqStepHash goes through beside its control steps: each section has a name and a checksum of its own,
/// so that a difference between two builds can be found. `project` is the project's folder.
namespace NqHashSections {

/// Takes a section. `isComplete` false says that its files couldn't be read.
using Taker = std::function<void(const std::string& name, const NqChecksum& checksum, bool isComplete)>;

/// Those of the C library that the rest uses. Where they differ, other differences follow.
void elementaryFunctions(const Taker& take);
/// All that is asked of constraints in a control step, by type: in every relative mode, with fixed and free
/// base.
void constraints(const std::string& project, const Taker& take);
void expressions(const std::string& project, const Taker& take);
void filters(const Taker& take);
void profileTool(const Taker& take);
/// The two solvers under bounds.
void limitedSolvers(const Taker& take);
/// Runs of the loop, by each file of end-effectors among the models.
void loops(const std::string& project, const Taker& take);

} // namespace NqHashSections
