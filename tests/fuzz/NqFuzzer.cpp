// The program of libFuzzer: fuzzes the target that --target=NAME names. See scripts/fuzz.
#include "NqFuzzTarget.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

const NqFuzzTarget* theTarget = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    constexpr std::string_view option = "--target=";
    for (const std::string_view argument : std::span(*argv, static_cast<std::size_t>(*argc))) {
        if (argument.starts_with(option)) {
            const auto targets = NqFuzzTarget::all();
            const auto found =
                std::ranges::find(targets, argument.substr(option.size()),
                                  [](const NqFuzzTarget& target) { return std::string_view(target.name); });
            theTarget = found == targets.end() ? nullptr : &*found;
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
