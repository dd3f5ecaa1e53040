#include "NqDriveOptions.h"

#include "NqDriveTargetFile.h"
#include "NqDriveText.h"

#include <algorithm>
#include <string_view>

namespace {

using Options = NqDriveOptions;

/// In the order of NqBaseMotionFilter::FilteringMode.
constexpr std::string_view kProfiles[] = {"proportional", "trapezoidal", "threehalves"};

/// Reads a number within bounds; `lowest` itself is left out when it is 0.
bool readNumber(std::string_view text, double lowest, double highest, double& value, std::string& complaint) {
    double parsed = 0.0;
    if (!NqDriveText::parseFinite(text, parsed) || parsed < lowest || parsed > highest || parsed == 0.0) {
        complaint = "needs a number " +
                    (lowest == 0.0 ? "above 0" : "from " + NqDriveText::significant(lowest, 6)) + " up to " +
                    NqDriveText::significant(highest, 6) + ", not '" + std::string(text) + "'";
        return false;
    }
    value = parsed;
    return true;
}

bool readWayPoint(std::string_view text, bool isRelative, Options& options, std::string& complaint) {
    if (!NqDriveWayPoint::parse(text, isRelative, options.wayPoints.emplace_back())) {
        complaint = "needs " + NqDriveTarget::forms() + " for each end-effector, separated by '/', not '" +
                    std::string(text) + "'";
        return false;
    }
    return true;
}

bool readProfile(std::string_view text, Options& options, std::string& complaint) {
    const auto* word = std::find(std::begin(kProfiles), std::end(kProfiles), text);
    if (word == std::end(kProfiles)) {
        complaint = "needs trapezoidal, proportional or threehalves, not '" + std::string(text) + "'";
        return false;
    }
    options.profile = static_cast<unsigned>(word - kProfiles);
    return true;
}

bool readPosture(std::string_view text, Options& options, std::string& complaint) {
    if (text == "middle") {
        options.posture = Options::Posture::Middle;
    } else if (text == "start") {
        options.posture = Options::Posture::Start;
    } else if (text == "none") {
        options.posture = Options::Posture::None;
    } else if (NqDriveText::parseFiniteList(text, options.givenPosture)) {
        options.posture = Options::Posture::Given;
    } else {
        complaint = "needs middle, start, none or joint positions separated by commas, not '" +
                    std::string(text) + "'";
        return false;
    }
    return true;
}

using Labelled = std::vector<std::pair<std::string, double>>;

/// Reads a number for each joint, or some by the names of joints: JOINT=NUMBER.
bool readByJoint(std::string_view text, double above, const char* what, std::vector<double>& all,
                 Labelled& byLabel, std::string& complaint) {
    std::vector<double> numbers;
    if (NqDriveText::parseFiniteList(text, numbers) &&
        *std::min_element(numbers.begin(), numbers.end()) > above) {
        all = std::move(numbers);
        return true;
    }
    for (const std::string_view piece : NqDriveText::split(text, ',')) {
        const std::size_t equals = piece.rfind('=');
        double number = 0.0;
        if (equals == std::string_view::npos || equals == 0 ||
            !NqDriveText::parseFinite(piece.substr(equals + 1), number) || !(number > above)) {
            complaint =
                "needs " + std::string(what) + ", separated by commas, not '" + std::string(text) + "'";
            return false;
        }
        byLabel.emplace_back(piece.substr(0, equals), number);
    }
    return true;
}

bool readMetric(std::string_view text, Options& options, std::string& complaint) {
    return readByJoint(text, 0.0, "weights above 0 for all joints, or JOINT=WEIGHT", options.metric,
                       options.metricByLabel, complaint);
}

bool readBaseMetric(std::string_view text, Options& options, std::string& complaint) {
    const bool isGood = NqDriveText::parseFiniteList(text, options.baseMetric) &&
                        options.baseMetric.size() == NqEndEffector::m_theBaseDof &&
                        *std::min_element(options.baseMetric.begin(), options.baseMetric.end()) > 0.0;
    options.isBaseFree = true;
    complaint =
        isGood ? "" : "needs six weights above 0, separated by commas, not '" + std::string(text) + "'";
    return isGood;
}

bool readStart(std::string_view text, Options& options, std::string& complaint) {
    return readByJoint(text, -std::numeric_limits<double>::infinity(),
                       "positions of all joints, or JOINT=POSITION", options.start, options.startByLabel,
                       complaint);
}

bool readName(std::string_view text, std::string& name, std::string& complaint) {
    name = text;
    if (text.empty()) {
        complaint = "needs a name";
    }
    return !text.empty();
}

/// One option of the command line; without `value` it stands alone.
struct Option {
    std::string_view name;
    std::string_view value;
    std::string_view help;
    bool (*apply)(std::string_view text, Options& options, std::string& complaint);
};

constexpr Option kOptions[] = {
    {"--target", "TARGETS", "next way point: a target for each end-effector",
     [](std::string_view t, Options& o, std::string& c) { return readWayPoint(t, false, o, c); }},
    {"--relative", "TARGETS", "next way point, as offsets from where the run starts",
     [](std::string_view t, Options& o, std::string& c) { return readWayPoint(t, true, o, c); }},
    {"--targets", "FILE", "next way points, one a line of a text file",
     [](std::string_view t, Options& o, std::string& c) {
         return NqDriveTargetFile::read(std::string(t), o.wayPoints, c);
     }},
    {"--start", "POSITIONS",
     "Q1,Q2,... or JOINT=Q,...: positions at the start (default: middle of the ranges)", readStart},
    {"--posture", "POSTURE", "what free joints drift to: middle (default), start, none, or Q1,Q2,...",
     readPosture},
    {"--gain", "A", "how fast they drift there, in 1/s (default 1)",
     [](std::string_view t, Options& o, std::string& c) { return readNumber(t, 0.0, 1000.0, o.gain, c); }},
    {"--metric", "WEIGHTS", "W1,W2,... or JOINT=W,...: joints with more weight move less (default 1)",
     readMetric},
    {"--soft-gain", "G", "how much soft end-effectors weigh against the joints (default 1000)",
     [](std::string_view t, Options& o, std::string& c) { return readNumber(t, 0.0, 1.0e9, o.softGain, c); }},
    {"--free-base", "", "the base floats: its motion takes part in that of the joints",
     [](std::string_view, Options& o, std::string&) { return o.isBaseFree = true; }},
    {"--base-metric", "WEIGHTS",
     "the same, with weights of its motion along x, y, z and about them (default 1)", readBaseMetric},
    {"--profile", "WORD", "trapezoidal, proportional or threehalves, for all end-effectors", readProfile},
    {"--rate", "HZ", "control steps per second (default 1000)",
     [](std::string_view t, Options& o, std::string& c) { return readNumber(t, 1.0, 100000.0, o.rate, c); }},
    {"--time", "S", "give up after this time (default 30)",
     [](std::string_view t, Options& o, std::string& c) { return readNumber(t, 0.0, 86400.0, o.time, c); }},
    {"--wall", "S", "give up when the run itself takes longer than this (default 600)",
     [](std::string_view t, Options& o, std::string& c) { return readNumber(t, 0.0, 86400.0, o.wall, c); }},
    {"--tolerance", "M", "m or rad within which a target counts as reached (default 0.0001)",
     [](std::string_view t, Options& o, std::string& c) { return readNumber(t, 0.0, 1.0, o.tolerance, c); }},
    {"--output", "DIR", "folder for trajectory.csv and report.html (default nqDrive-out)",
     [](std::string_view t, Options& o, std::string& c) { return readName(t, o.output, c); }},
    {"--svg", "FILE", "also write one picture of the run",
     [](std::string_view t, Options& o, std::string& c) { return readName(t, o.svg, c); }},
    {"--no-detour", "", "where limits block the way or leave one too slow, don't go through another posture",
     [](std::string_view, Options& o, std::string&) {
         o.mayDetour = false;
         return true;
     }},
    {"--every-step", "", "a row in trajectory.csv for every step, however many there are",
     [](std::string_view, Options& o, std::string&) { return o.keepsEveryStep = true; }},
    {"--quiet", "", "no progress and no tables",
     [](std::string_view, Options& o, std::string&) { return o.isQuiet = true; }},
};

/// The forms of targets, each with the types that take it; wrapped to the width of the help.
std::string forms() {
    constexpr std::size_t indent = 18;
    constexpr std::size_t width = 116;
    std::string text;
    for (const NqTargetForm& form : NqTargetForm::all()) {
        std::string line = "  " + NqDriveText::padded(form.syntax, indent - 2);
        const std::string words = std::string(form.meaning) + " (" + NqTargetType::names(form.content) + ")";
        for (const std::string_view word : NqDriveText::split(words, ' ')) {
            if (line.size() + 1 + word.size() > width) {
                text += line + "\n";
                line.assign(indent, ' ');
            }
            line.append(line.back() == ' ' ? "" : " ").append(word);
        }
        text += line + "\n";
    }
    return text + "  " + NqDriveText::padded("hold", indent - 2) + "any: where it was last sent\n";
}

} // namespace

NqDriveOptions::Request NqDriveOptions::parse(int argc, const char* const* argv, NqDriveOptions& options,
                                              std::string& complaint) {
    std::vector<std::string_view> files;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--help" || argument == "-h") {
            return Request::Help;
        }
        if (argument == "--version") {
            return Request::Version;
        }
        if (!argument.starts_with("-") || argument == "-") {
            files.push_back(argument);
            continue;
        }
        const std::size_t equals = argument.find('=');
        const std::string_view name = argument.substr(0, equals);
        const auto option = std::find_if(std::begin(kOptions), std::end(kOptions),
                                         [&](const Option& candidate) { return candidate.name == name; });
        if (option == std::end(kOptions)) {
            complaint = "unknown option '" + std::string(name) + "' (nqDrive --help lists them)";
            return Request::Refused;
        }
        std::string_view value;
        if (equals != std::string_view::npos) {
            value = argument.substr(equals + 1);
        } else if (!option->value.empty()) {
            if (i + 1 == argc || std::string_view(argv[i + 1]).starts_with("--")) {
                complaint = std::string(name) + " needs a value: " + std::string(name) + " " +
                            std::string(option->value);
                return Request::Refused;
            }
            value = argv[++i];
        }
        if (option->value.empty() && !value.empty()) {
            complaint = std::string(name) + " takes no value";
            return Request::Refused;
        }
        if (!option->apply(value, options, complaint)) {
            complaint = std::string(name) + " " + complaint;
            return Request::Refused;
        }
    }
    if (files.size() != 2) {
        complaint =
            files.size() < 2
                ? "needs two files: nqDrive MODEL.urdf ENDEFFECTORS.xml [options] (see nqDrive --help)"
                : "one file too many: '" + std::string(files[2]) + "' (see nqDrive --help)";
        return Request::Refused;
    }
    options.model = files[0];
    options.endEffectors = files[1];
    if (options.wayPoints.empty()) {
        complaint = "no target: give at least one --target, --relative or --targets (see nqDrive --help)";
        return Request::Refused;
    }
    return Request::Run;
}

std::string NqDriveOptions::help() {
    std::string text = R"(usage: nqDrive MODEL.urdf ENDEFFECTORS.xml --target TARGETS [options]

Drives the end-effectors of a robot to targets: reads the robot and the end-effectors, runs the control loop, and
writes trajectory.csv and report.html.

)";
    for (const Option& option : kOptions) {
        text += "  " + NqDriveText::padded(std::string(option.name) + " " + std::string(option.value), 22) +
                std::string(option.help) + "\n";
    }
    text += "  " + NqDriveText::padded("--help, --version", 22) + "this text; the version\n";
    return text + R"(
Targets are given for the end-effectors in the order of their file, separated by "/". By the type of the
end-effector a target is
)" + forms() +
           R"(Where an end-effector has a relative link, its target is in the frame of that link. With --relative, offsets are
along and rotations about the axes of that frame or of the system. The target options may be given several times;
the way points are driven to one after the other. In a file "relative" stands before offsets, and "#" before
comments.
Soft end-effectors (isHardConstraint false) come as near to their targets as the hard ones leave them room; their
way points count as reached when they come no nearer or, with hard ones at theirs, when the time is over.
Positions and rates are in rad and rad/s, of linear joints in m and m/s.

An exclamation mark in a table stands for a value over its limit.
Exit status: 0 when all targets were reached, 1 when they were not, 2 for bad usage or input.

Examples:
  nqDrive models/arm7.urdf models/arm7.endeffectors.xml --relative 0.1,0.2,-0.1
  nqDrive models/arm7.urdf models/arm7.endeffectors.xml --target 0.5,0.2,0.4 --target 0.5,-0.2,0.4 --posture start
  nqDrive models/arm7.urdf models/arm7.frame.endeffectors.xml --relative 0.1,0.2,-0.1@0,0,45/hold
  nqDrive models/arm6.urdf models/arm6.endeffectors.xml --relative 0,0.1,0 --relative 0,0,0 --output out --svg run.svg
)";
}

std::string NqDriveOptions::postureText() const {
    switch (posture) {
    case Posture::Middle:
        return "middle of the joint ranges";
    case Posture::Start:
        return "start posture";
    case Posture::None:
        return "none";
    case Posture::Given:
        break;
    }
    return "given";
}

std::string NqDriveOptions::profileText() const {
    return profile ? std::string(kProfiles[*profile]) : "as in the file";
}
