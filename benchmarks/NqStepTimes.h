#pragma once

#include "NqControlPeer.h"

/// Times of single control steps, one after the other, by the wall clock. What else the machine does falls on
/// some of them: of several runs the one counts that was least interrupted by other processes.
class NqStepTimes {
public:
    /// Before each step so many bytes of other memory are written, which takes the step's own from the
    /// caches.
    NqStepTimes(NqControlPeer& peer, unsigned steps, unsigned runs, std::size_t spoiledBytes = 0);

    /// The time, in ns, that a share of the steps doesn't exceed.
    double quantile(double share) const;

    std::string text(const std::string& title) const;
    /// As an object of JSON.
    std::string json(const std::string& title) const;

private:
    std::vector<double> m_Sorted; ///< ns
    long m_Interruptions = 0;     ///< how often another process had the core meanwhile
};
