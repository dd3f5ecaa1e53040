// Drives every file of end-effectors among the models for many steps, with targets, limits, settings and
// constraints that change on the way, and watches what must hold: see docs/reliability.md.
// usage: nqSoak STEPS [SEED]     so many steps in all
#include "support/NqAllocationCount.h"
#include "support/NqStepCheck.h"

#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>
#include <nqControlLoop/NqPostureSearch.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <unistd.h>

namespace {

const std::vector<double> kNone;
/// Steps between changes, at most.
constexpr unsigned kLongestWay = 1500;

/// Drives the robot of a file of end-effectors from one random way point to the next, changes what can be
/// changed in between, and checks each step.
class NqSoakDrive {
public:
    /// What came of it, over several drives.
    struct Record {
        unsigned long long steps = 0, targets = 0, changes = 0;
        unsigned long long kinds[NqControlLoopStatus::BadInput + 1] = {}; ///< how often each was the status
    };

    NqSoakDrive(const std::string& file, std::uint64_t seed, Record& record)
        : m_File(file), m_Record(record), m_Random(seed),
          m_Robot(nqTestManipulator(file.substr(0, file.find('.')))), m_There(m_Robot) {
        check(m_Robot.numberOfJoints() > 0 &&
                  NqXmlDocument::readFile(nqModelFile("/") + file, m_EndEffectors),
              "it can't be read");
        start();
    }

    /// Of all steps: the fewer the more joints there are, since theirs take longer.
    double share() const { return 1.0 / (1.0 + m_Robot.numberOfJoints()); }

    /// Throws where something doesn't hold.
    void run(std::uint64_t steps) {
        std::uint64_t next = 0;
        for (std::uint64_t i = 0; i < steps; ++i) {
            if (i == next) {
                changeSomething();
                next = i + 1 + m_Random() % kLongestWay;
            }
            step();
        }
    }

private:
    void check(bool holds, std::string_view fault) const {
        if (!holds) {
            throw std::runtime_error(m_File + ": " + std::string(fault) + ", in step " +
                                     std::to_string(m_Record.steps));
        }
    }

    double within(double least, double greatest) { return nqDrawn(m_Random, least, greatest); }

    /// Each joint in its range, at most that share of half of it from the middle.
    std::vector<double> posture(double share) {
        std::vector<double> drawn;
        for (unsigned j = 0; j < m_Robot.numberOfJoints(); ++j) {
            const NqJointDescription& joint = m_Robot.linkByIndex(j)->joint();
            const double lower = std::max(joint.lowerPositionLimit(), -3.0);
            const double upper = std::min(joint.upperPositionLimit(), 3.0);
            drawn.push_back(0.5 * (lower + upper + share * within(lower - upper, upper - lower)));
        }
        return drawn;
    }

    /// A new loop, with some of the end-effectors and at least one.
    void start() {
        changeSettings();
        m_Loop = std::make_unique<NqControlLoop>(m_Robot, m_Settings);
        const std::vector<std::string> names = NqControlLoop::uniqueNames(m_EndEffectors);
        for (unsigned e = 0; e < m_EndEffectors.size(); ++e) {
            if (m_EndEffectors.size() == 1 || m_Random() % 4 != 0 ||
                (m_Loop->endEffectors() == 0 && e + 1 == m_EndEffectors.size())) {
                m_Loop->addEndEffector(names[e], *m_EndEffectors[e]);
            }
        }
        m_Loop->setPositions(posture(0.9));
        m_IsAccelerationKnown = true;
        changeTargets();
    }

    void changeSettings() {
        m_Settings = NqControlLoopSettings();
        m_Settings.setTimeStep(within(0.001, 0.01));
        m_Settings.setAccelerationTime(m_Random() % 4 == 0 ? 0.0 : within(0.05, 0.5));
        m_Settings.setApproach(within(2.0, 40.0));
        m_Settings.setBlocked(m_Random() % 2 == 0 ? NqControlLoopSettings::Hold
                                                  : NqControlLoopSettings::Slide);
        m_Settings.setDamping(within(0.01, 0.2));
        m_Settings.setSingularityThreshold(m_Random() % 4 == 0 ? 0.0 : within(0.01, 0.1));
        if (m_Random() % 2 == 0) {
            m_Settings.setPosture(NqXmlRealVector(posture(0.5)));
            m_Settings.setPostureGain(within(0.1, 3.0));
        }
        if (m_Random() % 4 == 0) {
            NqControlLoopSettings::Labels held;
            held.pushBack(m_Robot.linkByIndex(static_cast<unsigned>(m_Random() % m_Robot.numberOfJoints()))
                              ->linkLabel());
            m_Settings.setHeldJoints(held);
        }
        NqXmlRealVector weights(m_Robot.numberOfJoints());
        std::ranges::generate(weights, [&] { return within(0.2, 5.0); });
        m_Settings.setJointWeights(weights);
    }

    /// Places that some posture reaches; now and then each end-effector's own, which none may reach together.
    void changeTargets() {
        const bool isCommon = m_Random() % 4 != 0;
        NqEndEffectorPlacement target;
        std::vector<double> drawn = posture(1.0);
        for (std::size_t e = 0; e < m_Loop->endEffectors(); ++e) {
            if (!isCommon) {
                drawn = posture(1.0);
            }
            m_There.setPositionState(NqPositionState(NqXmlRealVector(drawn)));
            m_Loop->endEffector(e).calculatePlacement(m_Robot, m_There, target);
            m_Loop->setTarget(e, target, true);
        }
        ++m_Record.targets;
    }

    void changeSomething() {
        m_Warm = 0;
        ++m_Record.changes;
        switch (m_Random() % 16) {
        case 0:
            start();
            break;
        case 1: {
            changeSettings();
            m_Loop->setSettings(m_Settings);
            m_IsAccelerationKnown = false;
            break;
        }
        case 2:
            m_Loop->goTo(posture(1.0));
            break;
        case 3: { // a measured state that isn't quite the loop's
            std::vector<double> positions = m_Loop->positions();
            for (unsigned j = 0; j < positions.size(); ++j) {
                const NqJointDescription& joint = m_Robot.linkByIndex(j)->joint();
                positions[j] = std::clamp(positions[j] + within(-1.0e-3, 1.0e-3), joint.lowerPositionLimit(),
                                          joint.upperPositionLimit());
            }
            std::vector<double> rates = m_Loop->rates();
            rates.resize(m_Loop->joints());
            m_Loop->setState(NqPositionState(NqXmlRealVector(positions)),
                             NqVelocityState(NqXmlRealVector(rates)));
            m_IsAccelerationKnown = false;
            break;
        }
        case 4: {
            std::vector<double> found;
            if (m_Robot.numberOfJoints() < 10 && m_Random() % 8 == 0 &&
                NqPostureSearch(*m_Loop).find(found)) {
                m_Loop->goTo(found);
            }
            break;
        }
        default:
            m_Loop->follow();
            changeTargets();
        }
    }

    void step() {
        NqControlLoop& loop = *m_Loop;
        m_Positions = loop.positions();
        m_Rates = loop.rates();
        const std::size_t allocations = nqAllocations();
        const bool isMade = loop.step(), hasAllocated = nqAllocations() != allocations;
        ++m_Record.steps;
        ++m_Record.kinds[loop.status().kind];
        check(!hasAllocated || m_Warm < 2, "a step allocates");
        ++m_Warm;
        const std::string fault =
            nqFaultOf(loop, isMade, m_Positions, m_IsAccelerationKnown ? m_Rates : kNone, 1.0e-9);
        check(fault.empty(), fault);
        const auto& causes = loop.status().joints;
        for (const NqControlLoopStatus::Joint& cause : causes) {
            check(!isMade || (cause.joint < loop.joints() && cause.multiplier >= 0.0),
                  "a cause names no joint");
        }
        check(loop.status().kind != NqControlLoopStatus::Held || !causes.empty(), "it is held by nothing");
    }

    const std::string m_File;
    Record& m_Record;
    std::mt19937_64 m_Random;
    NqIndividualManipulator m_Robot;
    NqEndEffectorVector m_EndEffectors;
    NqControlLoopSettings m_Settings;
    std::unique_ptr<NqControlLoop> m_Loop;
    NqManipulatorActiveState m_There;         ///< where targets are taken from
    std::vector<double> m_Positions, m_Rates; ///< before the step
    bool m_IsAccelerationKnown = false; ///< whether its limits are those that all steps so far have kept
    unsigned m_Warm = 0;                ///< steps since something that may allocate
};

/// kB.
long residentMemory() {
    long pages = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

} // namespace

int main(int argc, char** argv) try {
    const std::vector<std::string> files = nqFilesIn(nqModelFile(), ".endeffectors.xml");
    const auto steps = static_cast<std::uint64_t>(argc > 1 ? std::atof(argv[1]) : 1.0e6);
    const auto seed = static_cast<std::uint64_t>(argc > 2 ? std::atol(argv[2]) : 1);
    constexpr std::uint64_t rounds = 8;
    constexpr long mostGrowth = 4096; // kB, after the first two rounds
    Nq::Print::instance().setSink([](unsigned, const std::string&) {});

    std::vector<NqSoakDrive::Record> records(files.size());
    double shares = 0.0;
    for (std::size_t i = 0; i < files.size(); ++i) {
        shares += NqSoakDrive(files[i], seed, records[i]).share();
    }
    const double each = static_cast<double>(steps) / rounds;
    long warm = 0;
    for (std::uint64_t round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < files.size(); ++i) {
            NqSoakDrive drive(files[i], seed * rounds + round, records[i]);
            drive.run(static_cast<std::uint64_t>(drive.share() / shares * each) + 1);
        }
        warm = round < 2 ? residentMemory() : warm;
        std::fprintf(stderr, "soak: round %d of %d, %ld kB\n", static_cast<int>(round + 1),
                     static_cast<int>(rounds), residentMemory());
    }
    std::uint64_t all = 0;
    std::printf("%-40s %11s %9s %9s %9s %9s %9s %9s %9s\n", "file", "steps", "targets", "changes", "reached",
                "slowed", "held", "singular", "refused");
    for (std::size_t i = 0; i < files.size(); ++i) {
        const NqSoakDrive::Record& r = records[i];
        using Status = NqControlLoopStatus;
        std::printf("%-40s %11llu %9llu %9llu %9llu %9llu %9llu %9llu %9llu\n", files[i].c_str(), r.steps,
                    r.targets, r.changes, r.kinds[Status::Reached], r.kinds[Status::Slowed],
                    r.kinds[Status::Held],
                    r.kinds[Status::Singular] + r.kinds[Status::OutOfReach] + r.kinds[Status::Contradictory],
                    r.kinds[Status::BadInput]);
        all += r.steps;
    }
    const long growth = residentMemory() - warm;
    std::printf("%llu steps; memory grew by %ld kB\n", static_cast<unsigned long long>(all), growth);
    return growth > mostGrowth ? throw std::runtime_error("memory grows") : 0;
} catch (const std::exception& fault) {
    std::fprintf(stderr, "soak: %s\n", fault.what());
    return 1;
}
