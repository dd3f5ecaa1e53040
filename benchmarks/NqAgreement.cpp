#include "NqAgreement.h"

#include "NqOwnPeer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

bool NqAgreement::check(NqControlPeer& peer) {
    NqOwnPeer own(m_Case);
    if (peer.answer() == NqControlPeer::Answer::LeastNorm) {
        own.setAlpha(0.0);
    }
    for (unsigned step = 0; step < m_Case.steps(); ++step) {
        own.step(step);
        peer.step(step);
        if (!agree(peer, "velocity", step, own.velocity(), peer.velocity()) ||
            !agree(peer, "command", step, own.command(), peer.command())) {
            return false;
        }
        if (peer.answer() == NqControlPeer::Answer::Exact) {
            std::vector<double> reached;
            own.jacobian().transform(peer.rates(), reached);
            if (!agree(peer, "velocity that the joint rates give", step, own.command(), reached)) {
                return false;
            }
        } else if (!agree(peer, "joint rates", step, own.rates(), peer.rates())) {
            return false;
        }
        const std::vector<double> nullSpaceRates = peer.nullSpaceRates();
        if (!nullSpaceRates.empty() &&
            !agree(peer, "null-space rates", step, own.nullSpaceRates(), nullSpaceRates)) {
            return false;
        }
    }
    return true;
}

bool NqAgreement::agree(const NqControlPeer& peer, const char* what, unsigned step,
                        const std::vector<double>& ours, const std::vector<double>& theirs) {
    double scale = 1.0;
    double difference = ours.size() == theirs.size() ? 0.0 : HUGE_VAL;
    for (std::size_t i = 0; i < std::min(ours.size(), theirs.size()); ++i) {
        const double distance = std::abs(ours[i] - theirs[i]);
        scale = std::max(scale, std::abs(ours[i]));
        difference = std::max(difference, std::isnan(distance) ? HUGE_VAL : distance);
    }
    difference /= scale;
    m_Largest = std::max(m_Largest, difference);
    if (difference > tolerance()) {
        std::fprintf(stderr, "%s: %s of %s differs from ours by %.1e in step %u\n", m_Case.title().c_str(),
                     what, peer.name().c_str(), difference, step);
        return false;
    }
    return true;
}
