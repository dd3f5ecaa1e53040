// Drives every file of end-effectors among the models for many steps, with targets, limits, settings and
// constraints that change on the way, and watches what must hold: see docs/reliability.md.
// usage: nqSoak STEPS [SEED]     so many steps in all
#include "NqSoakDrive.h"

#include "support/NqTestFiles.h"

#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

/// kB.
long residentMemory() {
    long pages = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

std::vector<std::string> filesOfEndEffectors() {
    std::vector<std::string> names;
    for (const auto& file : std::filesystem::directory_iterator(nqModelFile())) {
        const std::string name = file.path().filename();
        if (name.ends_with(".endeffectors.xml")) {
            names.push_back(name);
        }
    }
    std::ranges::sort(names);
    return names;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> names = filesOfEndEffectors();
    const auto steps = static_cast<std::uint64_t>(argc > 1 ? std::atof(argv[1]) : 1.0e6);
    const auto seed = static_cast<std::uint64_t>(argc > 2 ? std::atol(argv[2]) : 1);
    constexpr std::uint64_t rounds = 8;
    constexpr long mostGrowth = 4096; // kB, after the first two rounds
    Nq::Print::instance().setSink([](unsigned, const std::string&) {});

    std::vector<NqSoakDrive::Record> records(names.size());
    double shares = 0.0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        shares += NqSoakDrive(names[i], seed, records[i]).share();
    }
    const double each = static_cast<double>(steps) / rounds;
    long warm = 0;
    for (std::uint64_t round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < names.size(); ++i) {
            NqSoakDrive drive(names[i], seed * rounds + round, records[i]);
            if (!drive.run(static_cast<std::uint64_t>(drive.share() / shares * each) + 1)) {
                std::fprintf(stderr, "soak: %s: %s\n", names[i].c_str(), records[i].fault.c_str());
                return 1;
            }
        }
        warm = round < 2 ? residentMemory() : warm;
        std::fprintf(stderr, "soak: round %d of %d, %ld kB\n", static_cast<int>(round + 1),
                     static_cast<int>(rounds), residentMemory());
    }
    std::uint64_t all = 0;
    std::printf("%-40s %11s %9s %9s %9s %9s %9s %9s %9s\n", "file", "steps", "targets", "changes", "reached",
                "slowed", "held", "singular", "refused");
    for (std::size_t i = 0; i < names.size(); ++i) {
        const NqSoakDrive::Record& r = records[i];
        using Status = NqControlLoopStatus;
        std::printf("%-40s %11llu %9llu %9llu %9llu %9llu %9llu %9llu %9llu\n", names[i].c_str(), r.steps,
                    r.targets, r.changes, r.kinds[Status::Reached], r.kinds[Status::Slowed],
                    r.kinds[Status::Held],
                    r.kinds[Status::Singular] + r.kinds[Status::OutOfReach] + r.kinds[Status::Contradictory],
                    r.kinds[Status::BadInput]);
        all += r.steps;
    }
    const long growth = residentMemory() - warm;
    std::printf("%llu steps; memory grew by %ld kB\n", static_cast<unsigned long long>(all), growth);
    if (growth > mostGrowth) {
        std::fprintf(stderr, "soak: memory grows\n");
        return 1;
    }
    return 0;
}
