#include "NqBenchmarkOptions.h"

#include <cstdio>
#include <map>
#include <sstream>

namespace {

constexpr const char* kHelp = R"(usage: nqBenchmark [parts] [options]
Control steps of this library and of its peers on the same robots, checked against each other and timed.

Parts; all of them if none is named:
  --arm             a frame (a), and a point (b), on a 7-joint arm
  --humanoid        frames on feet and hands of a humanoid (c)
  --chains          a frame on chains of 7 to 200 joints (d)
  --solver          the solver alone, on random Jacobians
  --stages          each stage of our control step alone, motion filters, XML
  --types           stages of one constraint of each type, on the arm and on the humanoid
  --times           how long single steps of ours take
  --model FILE --links A,B,...
                    frames on these links of another robot, given as URDF
Options:
  --quick           fewer and shorter repetitions
  --check           compare results, and stop there
  --models FOLDER   where arm7.urdf and humanoid44.urdf are
  --json FILE       write the results to a file, too
  --count CASE      make steps of case a, b or c and time nothing: for instruction counters
  --steps N         that many; 1000 if not said
  --subject NAME    made by whom; "ours" if not said
)";

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, ',');) {
        parts.push_back(part);
    }
    return parts;
}

} // namespace

bool NqBenchmarkOptions::parse(int argc, const char* const* argv, NqBenchmarkOptions& options) {
    using Options = NqBenchmarkOptions;
    static const std::map<std::string, bool Options::*> parts = {
        {"--arm", &Options::arm},        {"--humanoid", &Options::humanoid}, {"--chains", &Options::chains},
        {"--solver", &Options::solver},  {"--stages", &Options::stages},     {"--types", &Options::types},
        {"--times", &Options::stepTimes}};
    static const std::map<std::string, bool Options::*> switches = {{"--quick", &Options::isQuick},
                                                                    {"--check", &Options::checksOnly}};
    static const std::map<std::string, std::string Options::*> texts = {{"--models", &Options::models},
                                                                        {"--model", &Options::model},
                                                                        {"--json", &Options::json},
                                                                        {"--count", &Options::count},
                                                                        {"--subject", &Options::subject}};
    bool isSelective = false;
    const auto selectOnly = [&] {
        for (const auto& [name, part] : parts) {
            options.*part = options.*part && isSelective;
        }
        isSelective = true;
    };
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (const auto part = parts.find(word); part != parts.end()) {
            selectOnly();
            options.*part->second = true;
            continue;
        }
        if (const auto found = switches.find(word); found != switches.end()) {
            options.*found->second = true;
            continue;
        }
        if (i + 1 == argc) {
            std::fputs(kHelp, word == "--help" ? stdout : stderr);
            return false;
        }
        const std::string value = argv[++i];
        if (const auto text = texts.find(word); text != texts.end()) {
            options.*text->second = value;
            if (word == "--model") {
                selectOnly();
            }
        } else if (word == "--links") {
            options.links = split(value);
        } else if (word == "--steps" && std::sscanf(value.c_str(), "%u", &options.steps) == 1) {
            continue;
        } else {
            std::fprintf(stderr, "nqBenchmark: what is '%s %s'? See nqBenchmark --help\n", word.c_str(),
                         value.c_str());
            return false;
        }
    }
    return true;
}
