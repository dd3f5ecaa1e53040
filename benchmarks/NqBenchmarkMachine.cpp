#include "NqBenchmarkMachine.h"

#include "NqBenchmarkText.h"

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <thread>

namespace {

#ifdef __clang__
constexpr const char* kCompiler = __VERSION__;
#else
constexpr const char* kCompiler = "GCC " __VERSION__;
#endif

std::string processor() {
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("model name")) {
            return line.substr(line.find(':') + 2);
        }
    }
    return "unknown processor";
}

/// Processes that wanted to run in the last minute, on average.
double load() {
    double average = 0.0;
    return getloadavg(&average, 1) == 1 ? average : -1.0;
}

std::string date() {
    const std::time_t now = std::time(nullptr);
    char text[32] = "";
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M UTC", std::gmtime(&now));
    return text;
}

} // namespace

std::string NqBenchmarkMachine::text() {
    return NqBenchmarkText::formatted("%s, %u cores, load %.1f, %s, %s", processor().c_str(),
                                      std::thread::hardware_concurrency(), load(), kCompiler, date().c_str());
}

std::string NqBenchmarkMachine::json() {
    using NqBenchmarkText::quoted;
    return NqBenchmarkText::formatted(
        "{\"processor\": %s, \"cores\": %u, \"load\": %.2f, \"compiler\": %s, \"date\": %s}",
        quoted(processor()).c_str(), std::thread::hardware_concurrency(), load(), quoted(kCompiler).c_str(),
        quoted(date()).c_str());
}
