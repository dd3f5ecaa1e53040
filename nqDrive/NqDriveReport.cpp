#include "NqDriveReport.h"

#include "NqDriveText.h"
#include "NqStickFigure.h"

#include <algorithm>
#include <cmath>

using NqDriveText::escaped;
using NqDriveText::fixed;
using NqDriveText::significant;

namespace {

constexpr std::size_t kVerdictLine = 82; ///< characters of the verdict in a line of the picture
constexpr double kHalfWidth = 490.0;
constexpr double kThirdWidth = 326.0;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr std::string_view kPageStyle = R"(
*{box-sizing:border-box}
body{margin:0;background:var(--paper);color:var(--ink);line-height:1.5;font-size:15px;
font-family:system-ui,-apple-system,"Segoe UI",Roboto,"Liberation Sans",Arial,sans-serif}
main{max-width:1080px;margin:0 auto;padding:44px 40px 60px}
h1{font-size:27px;font-weight:600;letter-spacing:-.01em;margin:0}
h1 span{color:var(--muted);font-weight:400}
h2{font-size:17px;font-weight:600;margin:40px 0 10px;padding-top:14px;border-top:1px solid var(--faint);
break-after:avoid}
p{margin:6px 0}
.verdict{font-size:16px;margin:12px 0 20px;padding:10px 14px;border-left:4px solid var(--c2);background:var(--shade)}
.verdict.bad{border-left-color:var(--c4)}
.verdict b{margin-right:6px}
figure{margin:12px 0 0;break-inside:avoid}
figure svg{display:block;width:100%;height:auto}
figcaption,.small{color:var(--muted);font-size:13px}
.arm{display:grid;grid-template-columns:minmax(0,8fr) minmax(0,5fr);column-gap:20px;align-items:center}
.arm figure:first-child{grid-row:span 2}
.two{display:grid;grid-template-columns:repeat(2,minmax(0,1fr));column-gap:20px}
.three{display:grid;grid-template-columns:repeat(3,minmax(0,1fr));column-gap:11px}
table{border-collapse:collapse;width:100%;font-size:13.5px;font-variant-numeric:tabular-nums;break-inside:auto}
.scroll{overflow-x:auto}
tr{break-inside:avoid}
th{font-weight:600;text-align:left;color:var(--muted);border-bottom:1px solid var(--mark);padding:5px 14px 5px 0;
vertical-align:bottom}
td{border-bottom:1px solid var(--faint);padding:5px 14px 5px 0;vertical-align:top}
td.n,th.n{text-align:right}
td.n,td:first-child{white-space:nowrap}
tbody tr:last-child td{border-bottom:0}
td:last-child,th:last-child{padding-right:0}
.facts td:first-child{color:var(--muted);white-space:nowrap;width:1%}
.facts td{overflow-wrap:anywhere}
footer{margin-top:44px;padding-top:12px;border-top:1px solid var(--faint);color:var(--muted);font-size:13px}
@media (max-width:640px){main{padding:24px 16px}.arm,.two,.three{grid-template-columns:minmax(0,1fr)}}
@page{size:A4;margin:14mm 13mm}
@media print{main{max-width:none;padding:0}body{font-size:10pt}h1{font-size:20pt}h2{margin-top:20px}
.verdict{font-size:11pt}table{font-size:8.5pt}td,th{padding-right:8px}.small{font-size:8.5pt}.scroll{overflow:visible}}
)";

std::string figure(double width, double height, const std::string& elements, const std::string& label) {
    return "<figure><svg viewBox=\"0 0 " + NqSvg::number(width) + " " + NqSvg::number(height) +
           "\" role=\"img\" aria-label=\"" + escaped(label) + "\">\n" + elements + "</svg></figure>\n";
}

std::string figure(const NqSvgPlot& plot, const std::string& label) {
    return figure(plot.width(), plot.height(), plot.drawn({}), label);
}

struct Cell {
    std::string text;
    bool isNumber = true;
};

std::string tableRow(const std::vector<Cell>& cells, const char* tag) {
    std::string out = "<tr>";
    for (const Cell& cell : cells) {
        out += std::string("<") + tag + (cell.isNumber ? " class=\"n\">" : ">") + escaped(cell.text) + "</" +
               tag + ">";
    }
    return out + "</tr>\n";
}

std::string limitText(double limit, int decimals) {
    return std::isfinite(limit) ? fixed(limit, decimals) : "–";
}

std::string listText(const std::vector<double>& values) {
    std::string out;
    for (const double value : values) {
        out += (out.empty() ? "" : ", ") + significant(value, 4);
    }
    return out;
}

/// A text broken at spaces.
std::vector<std::string> linesOf(const std::string& text, std::size_t length) {
    std::vector<std::string> lines{""};
    for (const std::string_view word : NqDriveText::split(text, ' ')) {
        if (!lines.back().empty() && lines.back().size() + 1 + word.size() > length) {
            lines.emplace_back();
        }
        lines.back().append(lines.back().empty() ? "" : " ").append(word);
    }
    return lines;
}

} // namespace

NqDriveReport::NqDriveReport(const NqDriveRecord& record, const NqDriveRecorder& recorder)
    : m_Record(record), m_Recorder(recorder), m_Times(recorder.column(&NqDriveRecorder::time)) {}

NqSvgPlot NqDriveReport::prepared(double width, double height, const std::string& title,
                                  const std::string& unit) const {
    NqSvgPlot plot(width, height, title, unit);
    plot.setTimeRange(0.0, m_Record.time);
    for (std::size_t i = 0; i < m_Record.wayPoints.size(); ++i) {
        if (m_Record.wayPoints[i].isReached()) {
            plot.addMark(m_Record.wayPoints[i].time, std::to_string(i + 1));
        }
    }
    return plot;
}

void NqDriveReport::addCurves(NqSvgPlot& plot, const std::string* unit, Quantity quantity,
                              double NqTargetKind::Part::*fullScale) const {
    const auto isShown = [&](const NqDriveRecord::Part& part) {
        return (!unit || part.limits.unit == *unit) && (!fullScale || std::isfinite(part.limits.*fullScale));
    };
    const auto shown = std::count_if(m_Record.parts.begin(), m_Record.parts.end(), isShown);
    for (std::size_t p = 0; p < m_Record.parts.size(); ++p) {
        const NqDriveRecord::Part& part = m_Record.parts[p];
        if (isShown(part)) {
            std::vector<double> values = m_Recorder.column(quantity, p);
            if (fullScale) {
                for (double& value : values) {
                    value /= part.limits.*fullScale;
                }
            }
            plot.addCurve(m_Times, values, p, shown > 1 || fullScale ? part.name : "");
        }
    }
}

NqSvgPlot NqDriveReport::errorPlot(const std::string* unit, double width, double height) const {
    std::string units = unit ? *unit : "";
    if (!unit) {
        for (const std::string& each : m_Record.units()) {
            units += (units.empty() || each.empty() ? "" : ", ") + each;
        }
    }
    const double tolerance = m_Record.options.tolerance;
    NqSvgPlot plot = prepared(width, height, "Distance to target", units);
    plot.setLogarithmic(0.1 * tolerance);
    addCurves(plot, unit, &NqDriveRecorder::error, nullptr);
    plot.addLevel(tolerance, "tolerance " + significant(tolerance, 3) + (unit ? " " + units : ""));
    return plot;
}

NqSvgPlot NqDriveReport::limitedPlot(const std::string& unit, const std::string& title, int power,
                                     Quantity quantity, double NqTargetKind::Part::*limit, double width,
                                     double height) const {
    NqSvgPlot plot = prepared(width, height, title, nqPerSecond(unit, power));
    addCurves(plot, &unit, quantity, nullptr);
    std::vector<double> limits;
    bool isOver = false; // creeping apart
    for (const NqDriveRecord::Part& part : m_Record.parts) {
        if (part.limits.unit == unit) {
            limits.push_back(part.limits.*limit);
            const double peak = power == 1 ? part.peakSpeed : part.peakAcceleration;
            isOver = isOver || *nqOverMark(peak, part.limits.*limit) != '\0';
        }
    }
    plot.setOverMarked(isOver);
    std::sort(limits.begin(), limits.end());
    limits.erase(std::unique(limits.begin(), limits.end()), limits.end());
    for (const double each : limits) {
        plot.addLimits(-kInfinity, each, nqPerSecond(unit, power), false);
    }
    return plot;
}

NqSvgPlot NqDriveReport::speedPlot(const std::string& unit, double width, double height) const {
    return limitedPlot(unit, "Speed", 1, &NqDriveRecorder::speed, &NqTargetKind::Part::speedLimit, width,
                       height);
}

NqSvgPlot NqDriveReport::accelerationPlot(const std::string& unit, double width, double height) const {
    return limitedPlot(unit, "Acceleration", 2, &NqDriveRecorder::acceleration,
                       &NqTargetKind::Part::accelerationLimit, width, height);
}

NqSvgPlot NqDriveReport::speedSharePlot(double width, double height) const {
    NqSvgPlot plot = prepared(width, height, "Speed", "as a share of its limit");
    addCurves(plot, nullptr, &NqDriveRecorder::speed, &NqTargetKind::Part::speedLimit);
    plot.addLevel(1.0, "limit");
    return plot;
}

NqSvgPlot NqDriveReport::positionPlot(std::size_t joint, double width, double height) const {
    const NqJointDescription& description = m_Record.joints[joint].description;
    NqSvgPlot plot =
        prepared(width, height, description.name(), std::string("position / ") + nqPositionUnit(description));
    plot.addCurve(m_Times, m_Recorder.column(&NqDriveRecorder::position, joint), 0);
    plot.addLimits(description.lowerPositionLimit(), description.upperPositionLimit(),
                   nqPositionUnit(description), true);
    return plot;
}

NqSvgPlot NqDriveReport::ratePlot(std::size_t joint, double width, double height) const {
    const NqJointDescription& description = m_Record.joints[joint].description;
    NqSvgPlot plot =
        prepared(width, height, description.name(), std::string("rate / ") + nqRateUnit(description));
    plot.addCurve(m_Times, m_Recorder.column(&NqDriveRecorder::rate, joint), 0);
    plot.addLimits(-description.rateLimit(), description.rateLimit(), nqRateUnit(description), false);
    return plot;
}

NqSvgPlot NqDriveReport::loadPlot(double width, double height) const {
    std::vector<double> load(m_Recorder.rows(), 0.0);
    for (std::size_t joint = 0; joint < m_Record.joints.size(); ++joint) {
        for (std::size_t row = 0; row < load.size(); ++row) {
            load[row] = std::max(load[row], std::abs(m_Recorder.rate(row, joint)) /
                                                m_Record.joints[joint].description.rateLimit());
        }
    }
    NqSvgPlot plot = prepared(width, height, "Busiest joint", "rate as a share of its limit");
    plot.addCurve(m_Times, load, 0);
    plot.addLevel(1.0, "limit");
    return plot;
}

NqSvgPlot NqDriveReport::determinantPlot(double width, double height) const {
    NqSvgPlot plot = prepared(width, height, "Determinant", "of the square system; near 0 is singular");
    plot.addCurve(m_Times, m_Recorder.column(&NqDriveRecorder::determinant), 0);
    plot.addLevel(0.0, "");
    return plot;
}

NqSvgPlot NqDriveReport::slowingPlot(double width, double height) const {
    NqSvgPlot plot = prepared(width, height, "Slowing", "share of the commanded step that was made");
    plot.addCurve(m_Times, m_Recorder.column(&NqDriveRecorder::slowing), 0);
    plot.addLevel(0.0, "");
    plot.addLevel(1.0, "");
    return plot;
}

/// Drawn small, so that letters are large enough on a narrow page.
std::string NqDriveReport::armFigures() const {
    const NqStickFigure arm(m_Record.sketch);
    return "<div class=\"arm\">" +
           figure(480.0, 430.0, arm.drawn(NqStickFigure::View::Oblique, {0.0, 0.0}, 480.0, 430.0),
                  "The arm at the start, at the way points and at the end") +
           figure(320.0, 225.0, arm.drawn(NqStickFigure::View::Side, {0.0, 0.0}, 320.0, 225.0),
                  "The arm from the side") +
           figure(320.0, 225.0, arm.drawn(NqStickFigure::View::Top, {0.0, 0.0}, 320.0, 225.0),
                  "The arm from above") +
           "</div>\n";
}

std::string NqDriveReport::runTable() const {
    const NqDriveOptions& options = m_Record.options;
    std::string out = "<table class=\"facts\"><tbody>\n";
    const auto fact = [&](const char* name, const std::string& value) {
        out += tableRow({{name, false}, {value, false}}, "td");
    };
    fact("Robot",
         m_Record.robot + ", " + std::to_string(m_Record.joints.size()) + " joints (" + options.model + ")");
    fact("End-effectors", std::to_string(m_Record.endEffectors.size()) + " (" + options.endEffectors + ")");
    if (m_Record.hasSoftEndEffectors()) {
        fact("Soft gain", significant(options.softGain, 4) + " times the error weights");
    }
    fact("Profile", options.profileText());
    fact("Control rate", significant(options.rate, 6) + " Hz, " + std::to_string(m_Record.steps) + " steps");
    fact("Time", fixed(m_Record.time, 3) + " s of at most " + significant(options.time, 6) +
                     " s; computed in " + fixed(m_Record.wallTime, 3) + " s");
    fact("Tolerance", significant(options.tolerance, 4) + " m or rad");
    fact("Posture", options.postureText() + (options.posture == NqDriveOptions::Posture::None
                                                 ? ""
                                                 : ": " + listText(m_Record.posture) + "; gain " +
                                                       significant(options.gain, 4) + " 1/s"));
    fact("Metric", "diagonal: " + listText(m_Record.metric));
    fact("Slowed", m_Record.slowedTime == 0.0 ? "at no time" : "for " + fixed(m_Record.slowedTime, 3) + " s");
    fact("Determinant", "from " + significant(m_Record.leastDeterminant, 3) + " at " +
                            fixed(m_Record.leastDeterminantTime, 3) + " s to " +
                            significant(m_Record.greatestDeterminant, 3) + " in magnitude" +
                            (m_Record.isNearlySingular() ? "; the arm was close to a singular posture" : ""));
    for (const std::string& note : m_Record.notes) {
        fact("Note", note);
    }
    return out + "</tbody></table>\n";
}

std::string NqDriveReport::wayPointTable() const {
    std::string out =
        "<div class=\"scroll\"><table><thead>\n" +
        tableRow({{"Way point", false}, {"End-effector", false}, {"Target"}, {"Reached at / s"}}, "th") +
        "</thead><tbody>\n";
    for (std::size_t i = 0; i < m_Record.wayPoints.size(); ++i) {
        const auto& wayPoint = m_Record.wayPoints[i];
        for (std::size_t e = 0; e < wayPoint.targets.size(); ++e) {
            out += tableRow(
                {{std::to_string(i + 1), false},
                 {m_Record.endEffectors[e].name + (m_Record.endEffectors[e].isHard ? "" : " (soft)"), false},
                 {wayPoint.targets[e]},
                 {wayPoint.isReached() ? (m_Record.endEffectors[e].isHard ? "" : "as near as it could at ") +
                                             fixed(wayPoint.time, 3)
                                       : "not reached"}},
                "td");
        }
    }
    return out + "</tbody></table></div>\n";
}

std::string NqDriveReport::endEffectorTable() const {
    std::string out = "<div class=\"scroll\"><table><thead>\n" +
                      tableRow({{"End-effector", false},
                                {"Unit", false},
                                {"Distance left"},
                                {"Path"},
                                {"Fastest"},
                                {"Limit"},
                                {"Acceleration"},
                                {"Limit"}},
                               "th") +
                      "</thead><tbody>\n";
    for (const auto& part : m_Record.parts) {
        out +=
            tableRow({{part.name + (m_Record.endEffectors[part.endEffector].isHard ? "" : " (soft)"), false},
                      {part.limits.unit, false},
                      {significant(part.error, 3)},
                      {fixed(part.pathLength, 3)},
                      {fixed(part.peakSpeed, 3) + nqOverMark(part.peakSpeed, part.limits.speedLimit)},
                      {limitText(part.limits.speedLimit, 3)},
                      {fixed(part.peakAcceleration, 3) +
                       nqOverMark(part.peakAcceleration, part.limits.accelerationLimit)},
                      {limitText(part.limits.accelerationLimit, 3)}},
                     "td");
    }
    return out + "</tbody></table></div>\n";
}

std::string NqDriveReport::endEffectorFigures() const {
    std::string out;
    for (const std::string& unit : m_Record.units()) {
        out += "<div class=\"three\">" +
               figure(errorPlot(&unit, kThirdWidth, 250.0), "Distance to target over time") +
               figure(speedPlot(unit, kThirdWidth, 250.0), "Speed over time") +
               figure(accelerationPlot(unit, kThirdWidth, 250.0), "Acceleration over time") + "</div>\n";
    }
    return out +
           "<p class=\"small\">Dotted upright lines: a way point was reached, with its number. In the table "
           "accelerations count above creeping speed: the motion filters end a move in a step or two, "
           "whatever that takes. An exclamation mark: over its limit." +
           (m_Record.hasSoftEndEffectors()
                ? " Soft end-effectors follow their filters as far as the hard ones "
                  "leave them room."
                : "") +
           "</p>\n";
}

std::string NqDriveReport::jointTable() const {
    std::string out = "<div class=\"scroll\"><table><thead>\n" +
                      tableRow({{"Joint", false},
                                {"Start"},
                                {"End"},
                                {"Least"},
                                {"Greatest"},
                                {"Range"},
                                {"Fastest"},
                                {"Limit"},
                                {"Slowed by its rate / s"},
                                {"by its range / s"}},
                               "th") +
                      "</thead><tbody>\n";
    for (const auto& joint : m_Record.joints) {
        const NqJointDescription& description = joint.description;
        out += tableRow(
            {{description.name() + " (" + nqPositionUnit(description) + ")", false},
             {fixed(joint.start, 3)},
             {fixed(joint.end, 3)},
             {fixed(joint.least, 3)},
             {fixed(joint.greatest, 3)},
             {description.hasPositionLimits() ? limitText(description.lowerPositionLimit(), 3) + " to " +
                                                    limitText(description.upperPositionLimit(), 3)
                                              : "endless"},
             {fixed(joint.peakRate, 3) + nqOverMark(joint.peakRate, description.rateLimit())},
             {limitText(description.rateLimit(), 3)},
             {fixed(joint.slowedByRate, 3)},
             {fixed(joint.slowedByRange, 3)}},
            "td");
    }
    return out + "</tbody></table></div>\n";
}

std::string NqDriveReport::html() const {
    const std::string title = escaped(m_Record.robot);
    std::string out = "<!DOCTYPE html>\n<html lang=\"en\" xmlns=\"http://www.w3.org/1999/xhtml\">\n<head>\n"
                      "<meta charset=\"utf-8\"/>\n"
                      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
                      "<meta name=\"color-scheme\" content=\"light dark\"/>\n<title>" +
                      title + " – drive report</title>\n<style>\n" + NqSvg::styleSheet() +
                      std::string(kPageStyle) + "</style>\n</head>\n<body>\n<main>\n<h1>" + title +
                      " <span>drive report</span></h1>\n<p class=\"verdict" +
                      (m_Record.isReached() ? "" : " bad") + "\"><b>" +
                      (m_Record.isReached() ? "Reached" : "Not reached") + "</b> " +
                      escaped(m_Record.verdict) + "</p>\n";
    out += runTable();

    out += "<h2>The arm</h2>\n" + armFigures() +
           "<p class=\"small\">Hollow: start. Thin: at the way points. Thick: end. Faint: in between, at "
           "equal times. "
           "Crosses: targets. Dashed circles: targets of soft end-effectors, to come near to. Lines: paths "
           "of the end-effectors. Squares are linear joints. Dashed: a distance "
           "that is constrained. Red, green, blue: x, y and z axes where an orientation is.</p>\n";

    out += "<h2>End-effectors</h2>\n" + endEffectorTable() + endEffectorFigures();
    out += "<h2>Way points</h2>\n" + wayPointTable();

    out += "<h2>Joints</h2>\n" + jointTable() + "<div class=\"two\">";
    for (std::size_t joint = 0; joint < m_Record.joints.size(); ++joint) {
        out += figure(positionPlot(joint, kHalfWidth, 178.0), "Joint position over time") +
               figure(ratePlot(joint, kHalfWidth, 178.0), "Joint rate over time");
    }
    out += "</div>\n<p class=\"small\">Dashed: limits. Shaded: beyond them. Red: over a limit.</p>\n";

    out += "<h2>Solver</h2>\n<div class=\"two\">" +
           figure(determinantPlot(kHalfWidth, 240.0), "Determinant over time") +
           figure(slowingPlot(kHalfWidth, 240.0), "Slowing over time") + "</div>\n";
    out += "<footer>nqDrive, nqControlCore " NQ_VERSION_STRING
           ". The numbers behind the diagrams are in trajectory.csv, ";
    out +=
        m_Recorder.stride() == 1 ? "every step." : "every " + std::to_string(m_Recorder.stride()) + " steps.";
    return out + "</footer>\n</main>\n</body>\n</html>\n";
}

std::string NqDriveReport::svg() const {
    const NqStickFigure arm(m_Record.sketch);
    std::string elements = NqSvg::text({28.0, 38.0}, "start", "heading", m_Record.robot);
    double top = 58.0;
    for (const std::string& line : linesOf(m_Record.verdict, kVerdictLine)) {
        elements += NqSvg::text({28.0, top}, "start", "sub", line);
        top += 16.0;
    }
    elements += arm.drawn(NqStickFigure::View::Oblique, {10.0, top - 12.0}, 600.0, 574.0 - top);
    const std::vector<std::string> units = m_Record.units();
    elements += errorPlot(units.size() == 1 ? &units[0] : nullptr, 440.0, 175.0).drawn({620.0, 24.0});
    elements += (units.size() == 1 ? speedPlot(units[0], 440.0, 175.0) : speedSharePlot(440.0, 175.0))
                    .drawn({620.0, 206.0});
    elements += loadPlot(440.0, 175.0).drawn({620.0, 388.0});
    return NqSvg::document(1080.0, 580.0, m_Record.robot + ": " + m_Record.verdict, elements);
}
