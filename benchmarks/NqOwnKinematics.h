#pragma once

#include "NqOwnPeer.h"
#include "NqPeerKinematics.h"

/// The kinematics of this library, handed to Eigen.
class NqOwnKinematics : public NqPeerKinematics {
public:
    explicit NqOwnKinematics(const NqBenchmarkCase& benchmarkCase);

    const char* name() const override { return "our kinematics"; }
    bool isOurs() const override { return true; }
    void compute(unsigned step) override;

private:
    const NqBenchmarkCase& m_Case;
    NqOwnPeer m_Own;
    NqEndEffectorPlacement m_Placement;
};
