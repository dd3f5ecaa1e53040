#include "NqSvg.h"

#include "NqDriveText.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace NqSvg {

namespace {

/// A colour by daylight and in the dark.
struct Colour {
    const char* name;
    const char* light;
    const char* dark;
};

constexpr Colour kColours[] = {
    {"paper", "#ffffff", "#14181f"}, {"ink", "#1c2430", "#e6eaf0"},   {"muted", "#5b6675", "#9aa5b4"},
    {"faint", "#dfe3e9", "#2b323d"}, {"shade", "#eceff3", "#1f252e"}, {"mark", "#8a94a3", "#6d7787"},
    {"c0", "#1c5c9c", "#6cb0f5"},    {"c1", "#c2571a", "#f2a15f"},    {"c2", "#1d7a6a", "#5fc9b5"},
    {"c3", "#7b3fa0", "#c79be6"},    {"c4", "#a8324a", "#f08ba0"},    {"c5", "#6b6f1d", "#c9cd6b"},
    {"tube", "#8793a3", "#7b8797"}};

constexpr const char* kRules =
    R"(svg{font-family:system-ui,-apple-system,"Segoe UI",Roboto,"Liberation Sans",Arial,sans-serif;font-size:11px;
font-variant-numeric:tabular-nums}
.paper{fill:var(--paper)}
.frame{fill:none;stroke:var(--mark);stroke-width:.8}
.grid{stroke:var(--faint);stroke-width:.8;fill:none}
.zero{stroke:var(--mark);stroke-width:.8}
.beyond{fill:var(--shade)}
.limit{stroke:var(--ink);stroke-width:1.1;stroke-dasharray:5 3;fill:none}
.mark{stroke:var(--mark);stroke-width:.9;stroke-dasharray:1.5 2.5}
.title{fill:var(--ink);font-size:13px;font-weight:600}
.heading{fill:var(--ink);font-size:17px;font-weight:600}
.sub{fill:var(--muted);font-size:12px}
.tick{fill:var(--muted)}
.note{fill:var(--ink);font-size:10.5px;stroke:var(--paper);stroke-width:3;paint-order:stroke;stroke-linejoin:round}
.halo{fill:var(--ink);font-size:12px;font-weight:600;stroke:var(--paper);stroke-width:3.5;paint-order:stroke;
stroke-linejoin:round}
.curve{fill:none;stroke-width:1.8;stroke-linejoin:round;stroke-linecap:round}
.c0{stroke:var(--c0)}.c1{stroke:var(--c1);stroke-dasharray:8 4}.c2{stroke:var(--c2);stroke-dasharray:2 4}
.c3{stroke:var(--c3);stroke-dasharray:9 4 2 4}.c4{stroke:var(--c4);stroke-dasharray:14 4}
.c5{stroke:var(--c5);stroke-dasharray:4 4}
.over{fill:none;stroke:#d0342c;stroke-width:2.6;stroke-linejoin:round;stroke-linecap:round}
.soft{fill:none;stroke:var(--c4);stroke-width:1.3;stroke-dasharray:3 2.5}
.target{fill:none;stroke:var(--c4);stroke-width:1.6}
.x{stroke:#d0342c;stroke-width:2.4}.y{stroke:#2a9d3a;stroke-width:2.4}.z{stroke:#2f6fe0;stroke-width:2.4}
.span{stroke:var(--c4);stroke-width:1.4;stroke-dasharray:5 3}
.axis{stroke:var(--ink);stroke-width:1.4}
.shadow{stroke:var(--shade);stroke-width:7;stroke-linecap:round;stroke-linejoin:round;fill:none}
.ghost{stroke:var(--faint);stroke-width:1.6;stroke-linecap:round;fill:none}
.outer{stroke:var(--tube);stroke-linecap:round;fill:none;stroke-width:6}
.inner{stroke:var(--paper);stroke-linecap:round;fill:none;stroke-width:3.4}
.between{stroke:var(--tube);stroke-linecap:round;fill:none;stroke-width:4}
.final{stroke:var(--ink);stroke-linecap:round;fill:none;stroke-width:6}
.hinge{fill:var(--paper);stroke:var(--tube);stroke-width:1.6}
.finalHinge{fill:var(--paper);stroke:var(--ink);stroke-width:2}
.base{fill:var(--mark);stroke:none}
)";

std::string palette(const char* Colour::*shade) {
    std::string text = ":root{";
    for (const Colour& colour : kColours) {
        text += std::string("--") + colour.name + ":" + colour.*shade + ";";
    }
    return text + "}\n";
}

/// The rules with each colour given plainly before it is given by name, for viewers that don't know names.
std::string withPlainColours(std::string rules) {
    for (const Colour& colour : kColours) {
        const std::string byName = std::string("var(--") + colour.name + ")";
        for (std::size_t at = 0; (at = rules.find(byName, at)) != std::string::npos;) {
            const std::size_t begin = rules.find_last_of("{;", at) + 1;
            const std::string property = rules.substr(begin, at - begin);
            const std::string plain = property + colour.light + ";";
            rules.insert(begin, plain);
            at += plain.size() + byName.size();
        }
    }
    return rules;
}

constexpr std::size_t kCurveClasses = 6;

std::string attribute(std::string_view name, std::string_view value) {
    return std::string(1, ' ').append(name).append("=\"").append(value).append(1, '"');
}

double distanceToChord(Point p, Point a, Point b) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double squared = dx * dx + dy * dy;
    const double along =
        squared > 0.0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / squared, 0.0, 1.0) : 0.0;
    return std::hypot(p.x - a.x - along * dx, p.y - a.y - along * dy);
}

} // namespace

std::string number(double value) {
    std::string digits = NqDriveText::fixed(value, 2);
    if (digits.find('.') != std::string::npos) {
        digits.erase(digits.find_last_not_of('0') + 1);
        if (digits.back() == '.') {
            digits.pop_back();
        }
    }
    return digits;
}

std::string line(Point a, Point b, std::string_view cssClass) {
    return "<line" + attribute("class", cssClass) + attribute("x1", number(a.x)) +
           attribute("y1", number(a.y)) + attribute("x2", number(b.x)) + attribute("y2", number(b.y)) +
           "/>\n";
}

std::string rectangle(Point corner, double width, double height, std::string_view cssClass) {
    return "<rect" + attribute("class", cssClass) + attribute("x", number(corner.x)) +
           attribute("y", number(corner.y)) + attribute("width", number(width)) +
           attribute("height", number(height)) + "/>\n";
}

std::string circle(Point centre, double radius, std::string_view cssClass) {
    return "<circle" + attribute("class", cssClass) + attribute("cx", number(centre.x)) +
           attribute("cy", number(centre.y)) + attribute("r", number(radius)) + "/>\n";
}

std::string polyline(const std::vector<Point>& points, std::string_view cssClass) {
    std::string coordinates;
    for (const Point& point : points) {
        coordinates.append(coordinates.empty() ? "" : " ")
            .append(number(point.x))
            .append(1, ',')
            .append(number(point.y));
    }
    return "<polyline" + attribute("class", cssClass) + attribute("points", coordinates) + "/>\n";
}

std::string text(Point at, std::string_view anchor, std::string_view cssClass, std::string_view content) {
    return "<text" + attribute("class", cssClass) + attribute("x", number(at.x)) +
           attribute("y", number(at.y)) + attribute("text-anchor", anchor) + ">" +
           NqDriveText::escaped(content) + "</text>\n";
}

std::vector<Point> simplified(const std::vector<Point>& points, double tolerance) {
    if (points.size() < 3) {
        return points;
    }
    std::vector<bool> isKept(points.size(), false);
    isKept.front() = isKept.back() = true;
    std::vector<std::pair<std::size_t, std::size_t>> open{{0, points.size() - 1}};
    while (!open.empty()) {
        const auto [first, last] = open.back();
        open.pop_back();
        double worst = tolerance;
        std::size_t split = first;
        for (std::size_t i = first + 1; i < last; ++i) {
            const double distance = distanceToChord(points[i], points[first], points[last]);
            if (distance > worst) {
                worst = distance;
                split = i;
            }
        }
        if (split != first) {
            isKept[split] = true;
            open.emplace_back(first, split);
            open.emplace_back(split, last);
        }
    }
    std::vector<Point> kept;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (isKept[i]) {
            kept.push_back(points[i]);
        }
    }
    return kept;
}

std::string curveClass(std::size_t index) {
    return "curve c" + std::to_string(index % kCurveClasses);
}

const std::string& styleSheet() {
    static const std::string theSheet = [] {
        const std::string light = palette(&Colour::light);
        return light + "@media (prefers-color-scheme:dark){" + palette(&Colour::dark) + "}\n@media print{" +
               light + "}\n" + withPlainColours(kRules);
    }();
    return theSheet;
}

std::string document(double width, double height, std::string_view title, std::string_view elements) {
    const std::string size = number(width) + " " + number(height);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\"" +
           attribute("width", number(width)) + attribute("height", number(height)) +
           attribute("viewBox", "0 0 " + size) + " role=\"img\">\n<title>" + NqDriveText::escaped(title) +
           "</title>\n<style>" + styleSheet() + "</style>\n" + rectangle({}, width, height, "paper") +
           std::string(elements) + "</svg>\n";
}

} // namespace NqSvg
