// Prints checksums over every bit of results: of 1000 control steps, by case, and of what else computes, by
// section. Builds with other compilers or options must print the same; NqStepHash.txt holds what.
#include "NqHashSections.h"
#ifndef NQ_WITHOUT_URDF
#include "NqBenchmarkCases.h"
#include "NqOwnPeer.h"
#endif

#include <nqControlCore/foundation/text/NqPrint.h>

#include <bit>
#include <cstdio>

#ifndef NQ_WITHOUT_URDF
namespace {

constexpr unsigned kSteps = 1000;

/// FNV-1a, by whole numbers.
class StepChecksum {
public:
    void add(const std::vector<double>& values) {
        for (const double value : values) {
            m_Value = (m_Value ^ std::bit_cast<std::uint64_t>(value)) * 0x100000001b3;
        }
    }
    unsigned long long value() const { return m_Value; }

private:
    std::uint64_t m_Value = 0xcbf29ce484222325;
};

bool printControlSteps(const std::string& models) {
    for (const auto& makeCase :
         {NqBenchmarkCases::arm, NqBenchmarkCases::armWithPoint, NqBenchmarkCases::humanoid}) {
        const auto benchmarkCase = makeCase(models, kSteps);
        if (!benchmarkCase) {
            return false;
        }
        for (const auto nullSpace : {NqOwnPeer::NullSpace::Dense, NqOwnPeer::NullSpace::Sparse}) {
            NqOwnPeer own(*benchmarkCase, nullSpace);
            StepChecksum checksum;
            for (unsigned step = 0; step < kSteps; ++step) {
                own.step(step);
                checksum.add(own.velocity());
                checksum.add(own.command());
                checksum.add(own.rates());
                checksum.add(own.nullSpaceRates());
            }
            std::printf("%s, %s: %016llx\n", benchmarkCase->title().c_str(), own.name().c_str(),
                        checksum.value());
        }
    }
    return true;
}

} // namespace
#endif

int main(int argc, char** argv) {
    const std::string project = argc > 1 ? argv[1] : NQ_PROJECT;
    bool isComplete = true;
#ifndef NQ_WITHOUT_URDF
    isComplete = printControlSteps(project + "/models");
#endif
    const auto print = [&](const std::string& name, const NqChecksum& checksum, bool isSectionComplete) {
        std::printf("%s: %016llx\n", name.c_str(), checksum.value());
        isComplete = isComplete && isSectionComplete;
    };
    // Some of what is asked here is out of reach or none of the constraint's, and reported.
    Nq::Print::instance().setSink([](unsigned, const std::string&) {});
    NqHashSections::elementaryFunctions(print);
#ifndef NQ_WITHOUT_URDF
    NqHashSections::constraints(project, print);
    NqHashSections::loops(project, print);
#endif
    NqHashSections::expressions(project, print);
    NqHashSections::filters(print);
    NqHashSections::profileTool(print);
    NqHashSections::limitedSolvers(print);
    if (!isComplete) {
        std::fputs("some of it could not be read\n", stderr);
    }
    return isComplete ? 0 : 1;
}
