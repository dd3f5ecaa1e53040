#pragma once

#include "NqBenchmarkCase.h"
#include "NqControlPeer.h"

/// All who can make control steps of a case, as far as their libraries were there when this program was
/// built; we first.
std::vector<std::unique_ptr<NqControlPeer>> nqPeers(const NqBenchmarkCase& benchmarkCase);
