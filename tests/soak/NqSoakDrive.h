#pragma once

#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlLoop/NqControlLoop.h>

#include <cstdint>
#include <memory>
#include <random>
#include <string>

/// Drives the robot of a file of end-effectors from one random way point to the next, changes what can be
/// changed in between, and checks each step.
class NqSoakDrive {
public:
    /// What came of it, over several drives.
    struct Record {
        unsigned long long steps = 0;
        unsigned long long targets = 0;
        unsigned long long changes = 0;
        unsigned long long kinds[NqControlLoopStatus::BadInput + 1] = {}; ///< how often each was the status
        std::string fault;                                                ///< what didn't hold
    };

    NqSoakDrive(const std::string& endEffectors, std::uint64_t seed, Record& record);

    /// Of all steps: the fewer the more joints there are, since theirs take longer.
    double share() const { return 1.0 / (1.0 + m_Robot.numberOfJoints()); }

    /// False with a fault in the record.
    bool run(std::uint64_t steps);

private:
    bool fail(const std::string& what);
    double within(double least, double greatest);
    std::vector<double> posture(double share);
    void start();
    void changeSettings();
    void changeTargets();
    void changeSomething();
    bool step();

    Record& m_Record;
    std::mt19937_64 m_Random;
    NqIndividualManipulator m_Robot;
    NqEndEffectorVector m_EndEffectors;
    NqControlLoopSettings m_Settings;
    std::unique_ptr<NqControlLoop> m_Loop;
    NqManipulatorActiveState m_There; ///< where targets are taken from
    std::vector<double> m_Before;     ///< positions before the step
    std::vector<double> m_RatesBefore;
    bool m_IsAccelerationKnown = false; ///< whether its limits are those that all steps so far have kept
    unsigned m_Warm = 0;                ///< steps since something that may allocate
    bool m_IsRead = false;
};
