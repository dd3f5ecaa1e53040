#pragma once

#include <cstddef>

/// How many blocks the program has allocated. A program that this is linked into counts at the level of
/// malloc, which sanitizers replace too, so that the two don't go together.
std::size_t nqAllocations();
