// Prints a checksum over every bit of the results of 1000 control steps, by case: what builds with other
// compilers or options must print, too.
#include "NqBenchmarkCases.h"
#include "NqOwnPeer.h"

#include <bit>
#include <cstdio>

namespace {

constexpr unsigned kSteps = 1000;

/// FNV-1a, by whole numbers.
class Checksum {
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

} // namespace

int main(int argc, char** argv) {
    const std::string models = argc > 1 ? argv[1] : NQ_MODELS;
    for (const auto& makeCase :
         {NqBenchmarkCases::arm, NqBenchmarkCases::armWithPoint, NqBenchmarkCases::humanoid}) {
        const auto benchmarkCase = makeCase(models, kSteps);
        if (!benchmarkCase) {
            return 1;
        }
        for (const auto nullSpace : {NqOwnPeer::NullSpace::Dense, NqOwnPeer::NullSpace::Sparse}) {
            NqOwnPeer own(*benchmarkCase, nullSpace);
            Checksum checksum;
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
    return 0;
}
