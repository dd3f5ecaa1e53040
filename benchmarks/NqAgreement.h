#pragma once

#include "NqBenchmarkCase.h"
#include "NqControlPeer.h"

/// Whether peers come to our results, which must be so before anything is timed.
class NqAgreement {
public:
    static constexpr double tolerance() { return 1.0e-9; }

    explicit NqAgreement(const NqBenchmarkCase& benchmarkCase) : m_Case(benchmarkCase) {}

    /// Makes all steps of the motion with us and with the peer. Velocities and commands must be the same; so
    /// must the joint rates where they are the only ones of their kind, and otherwise they must give the
    /// command. False, with a line on where it is not so within the tolerance (relative to the largest entry,
    /// if that is above 1).
    bool check(NqControlPeer& peer);

    /// The largest difference met so far.
    double largest() const { return m_Largest; }

private:
    bool agree(const NqControlPeer& peer, const char* what, unsigned step, const std::vector<double>& ours,
               const std::vector<double>& theirs);

    const NqBenchmarkCase& m_Case;
    double m_Largest = 0.0;
};
