#include "NqStickFigure.h"

#include "NqDriveText.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using NqSvg::Point;

/// Box around points, grown point by point.
struct Bounds {
    double low[3] = {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity(),
                     std::numeric_limits<double>::infinity()};
    double high[3] = {-low[0], -low[0], -low[0]};

    void include(const NqVector& point) {
        for (unsigned i = 0; i < 3; ++i) {
            low[i] = std::min(low[i], point[i]);
            high[i] = std::max(high[i], point[i]);
        }
    }
    double extent() const { return std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2], 1.0e-3}); }
};

double roundedUp(double step) {
    const double power = std::pow(10.0, std::floor(std::log10(step)));
    const double lead = step / power;
    return power * (lead <= 1.0 ? 1.0 : lead <= 2.0 ? 2.0 : lead <= 5.0 ? 5.0 : 10.0);
}

std::string lengthLabel(double length) {
    return NqDriveText::significant(std::abs(length) < 1.0e-9 ? 0.0 : length, 3);
}

/// One drawing: the projection, and the figure's parts drawn through it.
class Canvas {
public:
    Canvas(const NqArmSketch& sketch, NqStickFigure::View view, Point corner, double width, double height)
        : m_Sketch(sketch), m_View(view), m_Corner(corner), m_Width(width), m_Height(height) {
        setDirections();
        measure();
        fit();
    }

    std::string drawn() {
        std::string out = "<g>\n";
        out += m_View == NqStickFigure::View::Oblique ? ground() : ruler();
        for (const auto& posture : m_Sketch.between) {
            out += arm(posture, "ghost");
        }
        out += arm(m_Sketch.start, "outer") + arm(m_Sketch.start, "inner");
        out += hinges(m_Sketch.start, "hinge", 3.2);
        for (const auto& posture : m_Sketch.wayPoints) {
            out += arm(posture, "between") + spans(posture) + hinges(posture, "hinge", 3.2);
        }
        out += spans(m_Sketch.start) + spans(m_Sketch.last);
        out += arm(m_Sketch.last, "final") + hinges(m_Sketch.last, "finalHinge", 4.2);
        const Point base = project(m_Sketch.last.base);
        out += NqSvg::rectangle({base.x - 9.0, base.y - 3.0}, 18.0, 6.0, "base");
        for (std::size_t e = 0; e < m_Sketch.paths.size(); ++e) {
            std::vector<Point> points;
            for (const NqVector& point : m_Sketch.paths[e]) {
                points.push_back(project(point));
            }
            out += NqSvg::polyline(NqSvg::simplified(points, 0.2), NqSvg::curveClass(e));
        }
        for (const NqVector& target : m_Sketch.softTargets) {
            out += NqSvg::circle(project(target), 6.0, "soft");
        }
        for (const NqVector& target : m_Sketch.targets) {
            const Point p = project(target);
            out += NqSvg::circle(p, 6.0, "target") +
                   NqSvg::line({p.x - 9.0, p.y}, {p.x + 9.0, p.y}, "target") +
                   NqSvg::line({p.x, p.y - 9.0}, {p.x, p.y + 9.0}, "target");
        }
        out += frames(m_Sketch.start) + frames(m_Sketch.last);
        for (const auto& posture : m_Sketch.wayPoints) {
            out += frames(posture);
        }
        if (m_View == NqStickFigure::View::Oblique) {
            out += labels();
        }
        return out + "</g>\n";
    }

private:
    void setDirections() {
        switch (m_View) {
        case NqStickFigure::View::Side:
            m_Right = NqVector(1.0, 0.0, 0.0);
            m_Up = NqVector(0.0, 0.0, 1.0);
            break;
        case NqStickFigure::View::Top:
            m_Right = NqVector(1.0, 0.0, 0.0);
            m_Up = NqVector(0.0, 1.0, 0.0);
            break;
        case NqStickFigure::View::Oblique:
            const double azimuth = -0.95;
            const double elevation = 0.36;
            m_Right = NqVector(-std::sin(azimuth), std::cos(azimuth), 0.0);
            m_Up = NqVector(-std::sin(elevation) * std::cos(azimuth),
                            -std::sin(elevation) * std::sin(azimuth), std::cos(elevation));
            break;
        }
    }

    /// All points of the figure, the room that they take up, and the spacing of the grid.
    void measure() {
        const auto include = [&](const std::vector<NqVector>& points) {
            m_Points.insert(m_Points.end(), points.begin(), points.end());
        };
        const auto includePosture = [&](const NqArmSketch::Posture& posture) {
            m_Points.push_back(posture.base);
            include(posture.joints);
            include(posture.endEffectors);
        };
        includePosture(m_Sketch.start);
        includePosture(m_Sketch.last);
        std::for_each(m_Sketch.wayPoints.begin(), m_Sketch.wayPoints.end(), includePosture);
        std::for_each(m_Sketch.paths.begin(), m_Sketch.paths.end(), include);
        include(m_Sketch.targets);
        include(m_Sketch.softTargets);

        Bounds bounds;
        for (const NqVector& point : m_Points) {
            bounds.include(point);
        }
        m_Cell = roundedUp(bounds.extent() / 7.0);
        for (unsigned i = 0; i < 3; ++i) {
            m_GridLow[i] = m_Cell * std::floor(bounds.low[i] / m_Cell - 0.25);
            m_GridHigh[i] = m_Cell * std::ceil(bounds.high[i] / m_Cell + 0.25);
        }
        m_Ground = m_Sketch.start.base.z();
    }

    NqVector gridCorner(bool isHighX, bool isHighY, double z) const {
        return {isHighX ? m_GridHigh[0] : m_GridLow[0], isHighY ? m_GridHigh[1] : m_GridLow[1], z};
    }

    /// Scale and place so that all of it lies inside the box.
    void fit() {
        double low[2] = {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
        double high[2] = {-low[0], -low[1]};
        const auto include = [&](const NqVector& point) {
            const double across[2] = {m_Right.dot(point), m_Up.dot(point)};
            for (int i = 0; i < 2; ++i) {
                low[i] = std::min(low[i], across[i]);
                high[i] = std::max(high[i], across[i]);
            }
        };
        for (const bool isHighX : {false, true}) {
            for (const bool isHighY : {false, true}) {
                include(gridCorner(isHighX, isHighY,
                                   m_View == NqStickFigure::View::Side ? m_GridLow[2] : m_Ground));
            }
        }
        if (m_View == NqStickFigure::View::Side) {
            include({m_GridHigh[0], m_GridHigh[1], m_GridHigh[2]});
        }
        std::for_each(m_Points.begin(), m_Points.end(), include);
        const bool isOblique = m_View == NqStickFigure::View::Oblique;
        if (isOblique) {
            include(beyondAxis(2)); // the others point into the grid
        }
        const double leftRoom = isOblique ? 14.0 : 40.0;
        const double rightRoom = isOblique ? 14.0 : 8.0;
        const double topRoom = isOblique ? 30.0 : 26.0;
        const double bottomRoom = isOblique ? 26.0 : 30.0;
        const double width = m_Width - leftRoom - rightRoom;
        const double height = m_Height - topRoom - bottomRoom;
        m_Scale =
            std::min(width / std::max(high[0] - low[0], 1.0e-6), height / std::max(high[1] - low[1], 1.0e-6));
        m_Origin.x = m_Corner.x + leftRoom + 0.5 * (width - m_Scale * (high[0] - low[0])) - m_Scale * low[0];
        m_Origin.y = m_Corner.y + topRoom + 0.5 * (height - m_Scale * (high[1] - low[1])) + m_Scale * high[1];
    }

    /// Where the name of an axis stands; the axes are at a corner of the ground.
    NqVector beyondAxis(unsigned axis) const {
        NqVector point = gridCorner(false, false, m_Ground);
        point[axis] += 1.25 * m_Cell;
        return point;
    }

    Point project(const NqVector& point) const {
        return {m_Origin.x + m_Scale * m_Right.dot(point), m_Origin.y - m_Scale * m_Up.dot(point)};
    }

    std::string segment(const NqVector& a, const NqVector& b, std::string_view cssClass) const {
        return NqSvg::line(project(a), project(b), cssClass);
    }

    /// The ground as a grid, the shadow of the last posture on it and the axes at a corner.
    std::string ground() const {
        std::string out;
        const auto lines = [&](unsigned across) {
            const double last = m_GridHigh[across] + 0.5 * m_Cell;
            for (double at = m_GridLow[across]; at < last; at += m_Cell) {
                NqVector a = gridCorner(false, false, m_Ground);
                NqVector b = gridCorner(true, true, m_Ground);
                a[across] = b[across] = at;
                out += segment(a, b, "grid");
            }
        };
        lines(0);
        lines(1);
        NqArmSketch::Posture shadow = m_Sketch.last;
        for (NqVector& p : shadow.joints) {
            p.setZ(m_Ground);
        }
        for (NqVector& p : shadow.endEffectors) {
            p.setZ(m_Ground);
        }
        out += arm(shadow, "shadow");

        const NqVector corner = gridCorner(false, false, m_Ground);
        const char* names[3] = {"x", "y", "z"};
        for (unsigned i = 0; i < 3; ++i) {
            NqVector tip = corner;
            tip[i] += m_Cell;
            out += segment(corner, tip, "axis");
            const Point p = project(beyondAxis(i));
            out += NqSvg::text({p.x, p.y + 4.0}, "middle", "halo", names[i]);
        }
        out += NqSvg::text({m_Corner.x + m_Width - 6.0, m_Corner.y + m_Height - 8.0}, "end", "tick",
                           "grid " + lengthLabel(m_Cell) + " m");
        return out;
    }

    /// A frame with a grid in metres, for the views along an axis.
    std::string ruler() const {
        const unsigned up = m_View == NqStickFigure::View::Side ? 2 : 1;
        const NqVector low(m_GridLow[0], m_GridLow[1], m_GridLow[2]);
        const NqVector high(m_GridHigh[0], m_GridHigh[1], m_GridHigh[2]);
        const Point bottomLeft = project(low);
        const Point topRight = project(high);
        std::string out;
        const double step = m_Cell * std::max(1.0, std::ceil(28.0 / (m_Scale * m_Cell)));
        for (double x = step * std::ceil(low.x() / step - 1.0e-9); x <= high.x() + 1.0e-9; x += step) {
            const double at = m_Origin.x + m_Scale * x;
            out += NqSvg::line({at, bottomLeft.y}, {at, topRight.y}, "grid");
            out += NqSvg::text({at, bottomLeft.y + 14.0}, "middle", "tick", lengthLabel(x));
        }
        for (double y = step * std::ceil(low[up] / step - 1.0e-9); y <= high[up] + 1.0e-9; y += step) {
            const double at = m_Origin.y - m_Scale * y;
            const bool isGround = up == 2 && std::abs(y - m_Ground) < 1.0e-9;
            out += NqSvg::line({bottomLeft.x, at}, {topRight.x, at}, isGround ? "zero" : "grid");
            out += NqSvg::text({bottomLeft.x - 6.0, at + 4.0}, "end", "tick", lengthLabel(y));
        }
        out += NqSvg::rectangle({bottomLeft.x, topRight.y}, topRight.x - bottomLeft.x,
                                bottomLeft.y - topRight.y, "frame");
        out += NqSvg::text({topRight.x, bottomLeft.y + 27.0}, "end", "tick", "x / m");
        out += NqSvg::text({bottomLeft.x - 34.0, topRight.y - 7.0}, "start", "tick",
                           up == 2 ? "z / m" : "y / m");
        return out;
    }

    const NqVector& jointOrBase(const NqArmSketch::Posture& posture, int joint) const {
        return joint == NqArmSketch::kBase ? posture.base : posture.joints[static_cast<std::size_t>(joint)];
    }

    std::string arm(const NqArmSketch::Posture& posture, std::string_view cssClass) const {
        std::string out;
        for (std::size_t i = 0; i < posture.joints.size(); ++i) {
            out += segment(jointOrBase(posture, m_Sketch.inboard[i]), posture.joints[i], cssClass);
        }
        for (std::size_t e = 0; e < posture.endEffectors.size(); ++e) {
            out += segment(jointOrBase(posture, m_Sketch.carrier[e]), posture.endEffectors[e], cssClass);
        }
        return out;
    }

    /// The axes of the frames that an end-effector orients: x, y and z in red, green and blue.
    std::string frames(const NqArmSketch::Posture& posture) const {
        std::string out;
        for (const NqCoordinateSystemTransformation& frame : posture.frames) {
            for (unsigned i = 0; i < 3; ++i) {
                NqVector tip;
                tip[i] = 0.4 * m_Cell;
                out += segment(frame.translation(), frame * tip, i == 0 ? "x" : i == 1 ? "y" : "z");
            }
        }
        return out;
    }

    /// Between the two points that an end-effector ties together.
    std::string spans(const NqArmSketch::Posture& posture) const {
        std::string out;
        for (const std::size_t first : m_Sketch.spans) {
            out += segment(posture.endEffectors[first], posture.endEffectors[first + 1], "span");
        }
        return out;
    }

    /// Joints as circles, linear joints as squares.
    std::string hinges(const NqArmSketch::Posture& posture, std::string_view cssClass, double radius) const {
        std::string out;
        for (std::size_t i = 0; i < posture.joints.size(); ++i) {
            const Point p = project(posture.joints[i]);
            out += m_Sketch.isLinear[i]
                       ? NqSvg::rectangle({p.x - radius, p.y - radius}, 2.0 * radius, 2.0 * radius, cssClass)
                       : NqSvg::circle(p, radius, cssClass);
        }
        return out;
    }

    /// The postures' names beside their end-effectors; names at one place stand together.
    std::string labels() const {
        std::vector<std::pair<Point, std::string>> placed;
        const auto place = [&](const NqArmSketch::Posture& posture) {
            if (posture.label.empty() || posture.endEffectors.empty()) {
                return;
            }
            const Point p = project(posture.endEffectors.front());
            for (auto& [at, text] : placed) {
                if (std::hypot(p.x - at.x, p.y - at.y) < 26.0) {
                    text += ", " + posture.label;
                    return;
                }
            }
            placed.emplace_back(p, posture.label);
        };
        place(m_Sketch.start);
        std::for_each(m_Sketch.wayPoints.begin(), m_Sketch.wayPoints.end(), place);
        place(m_Sketch.last);
        std::string out;
        for (const auto& [at, text] : placed) {
            out += NqSvg::text({at.x + 11.0, at.y - 9.0}, "start", "halo", text);
        }
        return out;
    }

    const NqArmSketch& m_Sketch;
    NqStickFigure::View m_View;
    Point m_Corner;
    double m_Width;
    double m_Height;
    NqVector m_Right;
    NqVector m_Up;
    std::vector<NqVector> m_Points;
    double m_Cell = 0.1;
    double m_GridLow[3] = {};
    double m_GridHigh[3] = {};
    double m_Ground = 0.0;
    double m_Scale = 1.0;
    Point m_Origin;
};

} // namespace

std::string NqStickFigure::drawn(View view, NqSvg::Point corner, double width, double height) const {
    return Canvas(m_Sketch, view, corner, width, height).drawn();
}
