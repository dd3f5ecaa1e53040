// The program of libFuzzer: fuzzes the target that --target=NAME names. See scripts/fuzz.
#include "NqFuzzTarget.h"

#include <cstdio>
#include <cstdlib>

namespace {

const NqFuzzTarget* theTarget = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    const std::string option = "--target=";
    for (const std::string_view argument : std::span(*argv, static_cast<std::size_t>(*argc))) {
        for (const NqFuzzTarget& target : NqFuzzTarget::all()) {
            if (argument == option + target.name) {
                theTarget = &target;
            }
        }
    }
    if (!theTarget) {
        for (const NqFuzzTarget& target : NqFuzzTarget::all()) {
            std::printf("%s\n", target.name);
        }
        std::exit(0);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    (*theTarget)({reinterpret_cast<const char*>(data), size}, "this input");
    return 0;
}
