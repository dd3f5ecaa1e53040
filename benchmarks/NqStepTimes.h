#pragma once

#include "NqControlPeer.h"

/// Times of single control steps, one after the other, by the wall clock.
class NqStepTimes {
public:
    /// Measures after some steps that don't count.
    NqStepTimes(NqControlPeer& peer, unsigned steps);

    /// The time, in ns, that a share of the steps doesn't exceed.
    double quantile(double share) const;

    std::string text(const std::string& title) const;
    /// As an object of JSON.
    std::string json(const std::string& title) const;

private:
    std::vector<double> m_Sorted; ///< ns
};
