#include "NqThroughput.h"

/// Steps a second once more, in a program whose objects have whole cache lines.
int main(int argc, char** argv) {
    constexpr unsigned kRuns = 41;
    NqThroughput::print("the same, linked with nq::wholeCacheLines", argc > 1 ? argv[1] : NQ_MODELS, kRuns);
    return 0;
}
