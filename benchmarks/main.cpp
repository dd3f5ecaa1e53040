#include "NqBenchmark.h"

int main(int argc, char** argv) {
    NqBenchmarkOptions options;
    if (!NqBenchmarkOptions::parse(argc, argv, options)) {
        return 2;
    }
    return NqBenchmark(options).execute(argv[0]);
}
