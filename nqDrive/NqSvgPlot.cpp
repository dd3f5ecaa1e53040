#include "NqSvgPlot.h"

#include "NqDriveText.h"

#include <algorithm>
#include <cmath>
#include <limits>

using NqDriveText::fixed;
using NqDriveText::significant;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLeft = 54.0;
constexpr double kRight = 14.0;
constexpr double kTop = 34.0;
/// Diagrams this narrow stand in a row, so their legends are to stand alike.
constexpr double kNarrow = 400.0;
constexpr double kLegendHeight = 16.0;
constexpr double kLegendLine = 26.0; ///< length of the piece of curve beside a name
constexpr double kCharacter = 5.8;   ///< width, about
constexpr double kBottom = 34.0;
/// Limits are drawn while the curve takes up at least this share of the way to them.
constexpr double kShareShown = 0.15;
/// A curve next to nothing is drawn on a scale of this share of the limits.
constexpr double kLeastShare = 0.01;
/// Tolerance of the drawn curves, in pixels.
constexpr double kTolerance = 0.15;
/// Share by which a value may pass a limit and not count as over it.
constexpr double kSlack = 1.0e-6;

/// The nearest of 1, 2, 5, 10 times a power of ten.
double niceStep(double step) {
    const double power = std::pow(10.0, std::floor(std::log10(step)));
    const double lead = step / power;
    return power * (lead < 1.5 ? 1.0 : lead < 3.5 ? 2.0 : lead < 7.5 ? 5.0 : 10.0);
}

} // namespace

NqSvgPlot::NqSvgPlot(double width, double height, std::string title, std::string unit)
    : m_Width(width), m_Height(height), m_Title(std::move(title)), m_Unit(std::move(unit)),
      m_ShadedBelow(-kInfinity), m_ShadedAbove(kInfinity) {}

void NqSvgPlot::setLogarithmic(double floor) {
    m_IsLogarithmic = true;
    m_Floor = floor;
}

void NqSvgPlot::addCurve(const std::vector<double>& times, const std::vector<double>& values,
                         std::size_t style, std::string label) {
    m_Curves.push_back({times, values, style, std::move(label)});
}

void NqSvgPlot::addLevel(double value, std::string label) {
    m_Levels.push_back({value, std::move(label)});
}

void NqSvgPlot::addLimits(double lower, double upper, const std::string& unit, bool isAlwaysShown) {
    double least = 0.0;
    double greatest = 0.0;
    for (const Curve& curve : m_Curves) {
        for (const double value : curve.values) {
            if (std::isfinite(value)) {
                least = std::min(least, value);
                greatest = std::max(greatest, value);
            }
        }
    }
    const bool isShown = isAlwaysShown || greatest > kShareShown * upper || least < kShareShown * lower;
    const auto named = [&](double limit) { return "limit " + significant(limit, 4) + " " + unit; };
    if (!isShown) {
        for (const double limit : {lower, upper}) {
            m_Included.push_back(kLeastShare * limit);
        }
        if (std::isfinite(upper)) {
            m_Unit += std::string(lower == -upper ? ", limits ±" : ", limit ") + significant(upper, 4) +
                      " off scale";
        }
        return;
    }
    if (std::isfinite(lower)) {
        m_ShadedBelow = lower;
        addLevel(lower, named(lower));
    }
    if (std::isfinite(upper)) {
        m_ShadedAbove = upper;
        addLevel(upper, named(upper));
    }
}

void NqSvgPlot::addMark(double time, std::string label) {
    m_Marks.push_back({time, std::move(label)});
}

void NqSvgPlot::setTimeRange(double start, double end) {
    m_Start = start;
    m_End = end > start ? end : start + 1.0e-3;
}

double NqSvgPlot::shown(double value) const {
    return m_IsLogarithmic ? std::log10(std::max(value, m_Floor)) : value;
}

NqSvgPlot::Scale NqSvgPlot::linearScale(double low, double high, int wantedTicks) {
    if (!(high - low > 1.0e-12 * std::max(std::abs(low), std::abs(high)))) {
        const double room = std::max(0.5 * std::abs(high), 1.0e-6);
        low -= room;
        high += room;
    }
    Scale scale;
    scale.low = low;
    scale.high = high;
    const double step = niceStep((high - low) / wantedTicks);
    scale.decimals = std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1.0e-9)));
    for (double index = std::ceil(low / step - 1.0e-9); index * step <= high + 1.0e-9 * step; index += 1.0) {
        scale.ticks.push_back(index * step);
    }
    return scale;
}

NqSvgPlot::Scale NqSvgPlot::valueScale() const {
    double low = kInfinity;
    double high = -kInfinity;
    const auto include = [&](double value) {
        if (std::isfinite(value)) {
            low = std::min(low, shown(value));
            high = std::max(high, shown(value));
        }
    };
    for (const Curve& curve : m_Curves) {
        std::for_each(curve.values.begin(), curve.values.end(), include);
    }
    for (const Level& level : m_Levels) {
        include(level.value);
    }
    std::for_each(m_Included.begin(), m_Included.end(), include);
    if (!(low <= high)) {
        low = 0.0;
        high = 1.0;
    }
    if (m_IsLogarithmic) {
        Scale scale;
        scale.low = std::floor(low + 1.0e-9);
        scale.high = std::max(std::ceil(high - 1.0e-9), scale.low + 1.0);
        const double step = std::max(1.0, std::ceil((scale.high - scale.low) / 6.0));
        for (double tick = scale.low; tick <= scale.high; tick += step) {
            scale.ticks.push_back(tick);
        }
        return scale;
    }
    if (low > 0.0 && low < 0.5 * high) {
        low = 0.0;
    } else if (high < 0.0 && high > 0.5 * low) {
        high = 0.0;
    }
    const double room = 0.08 * (high - low);
    return linearScale(low == 0.0 ? low : low - room, high == 0.0 ? high : high + room,
                       std::max(3, static_cast<int>((m_Height - kTop - kBottom) / 32.0)));
}

std::string NqSvgPlot::tickLabel(double tick, const Scale& scale) const {
    if (m_IsLogarithmic) {
        return tick < -3.5 || tick > 3.5 ? "1e" + fixed(tick, 0) : significant(std::pow(10.0, tick), 6);
    }
    const double largest = std::max(std::abs(scale.low), std::abs(scale.high));
    return scale.decimals > 4 || largest >= 1.0e5 ? significant(tick, 3) : fixed(tick, scale.decimals);
}

/// On the line of the title where that has room; else on lines of its own under it.
NqSvgPlot::Legend NqSvgPlot::legendFrom(NqSvg::Point titleLine, double right) const {
    const auto width = [](const Curve& curve) {
        return kLegendLine + kCharacter * static_cast<double>(curve.label.size()) + 20.0;
    };
    double whole = 0.0;
    for (const Curve& curve : m_Curves) {
        whole += curve.label.empty() ? 0.0 : width(curve);
    }
    Legend legend;
    const double title = 8.0 * static_cast<double>(m_Title.size()) + 7.0 * static_cast<double>(m_Unit.size());
    const bool isBeside = m_Width > kNarrow && titleLine.x + title + 12.0 + whole <= right;
    NqSvg::Point at{isBeside ? right - whole + 8.0 : right, titleLine.y};
    for (const Curve& curve : m_Curves) {
        if (curve.label.empty()) {
            continue;
        }
        if (!isBeside && at.x + width(curve) > right) {
            legend.height += kLegendHeight;
            at = {titleLine.x, titleLine.y + legend.height};
        }
        legend.drawn += NqSvg::line({at.x, at.y - 4.0}, {at.x + kLegendLine, at.y - 4.0},
                                    NqSvg::curveClass(curve.style)) +
                        NqSvg::text({at.x + kLegendLine + 6.0, at.y}, "start", "tick", curve.label);
        at.x += width(curve);
    }
    return legend;
}

std::string NqSvgPlot::drawn(NqSvg::Point corner) const {
    const double left = corner.x + kLeft;
    const double right = corner.x + m_Width - kRight;
    const Legend legend = legendFrom({left, corner.y + 14.0}, right);
    const double top = corner.y + kTop + legend.height;
    const double bottom = corner.y + m_Height - kBottom;
    const Scale values = valueScale();
    const Scale times = linearScale(m_Start, m_End, std::max(2, static_cast<int>((right - left) / 70.0)));
    const auto x = [&](double time) { return left + (time - m_Start) / (m_End - m_Start) * (right - left); };
    const auto y = [&](double value) {
        const double share = (shown(value) - values.low) / (values.high - values.low);
        return bottom - std::clamp(share, 0.0, 1.0) * (bottom - top);
    };

    std::string out = "<g>\n";
    const double lowEdge = y(m_ShadedBelow);
    const double highEdge = y(m_ShadedAbove);
    if (std::isfinite(m_ShadedBelow) && lowEdge < bottom) {
        out += NqSvg::rectangle({left, lowEdge}, right - left, bottom - lowEdge, "beyond");
    }
    if (std::isfinite(m_ShadedAbove) && highEdge > top) {
        out += NqSvg::rectangle({left, top}, right - left, highEdge - top, "beyond");
    }
    for (const double tick : values.ticks) {
        const double height = bottom - (tick - values.low) / (values.high - values.low) * (bottom - top);
        out +=
            NqSvg::line({left, height}, {right, height}, tick == 0.0 && !m_IsLogarithmic ? "zero" : "grid");
        out += NqSvg::text({left - 6.0, height + 3.8}, "end", "tick", tickLabel(tick, values));
    }
    for (const double tick : times.ticks) {
        out += NqSvg::line({x(tick), bottom}, {x(tick), bottom + 4.0}, "zero");
        out += NqSvg::text({x(tick), bottom + 15.0}, "middle", "tick", fixed(tick, times.decimals));
    }
    out += NqSvg::text({right, bottom + 28.0}, "end", "tick", "time / s");

    for (const Level& mark : m_Marks) {
        out += NqSvg::line({x(mark.value), top}, {x(mark.value), bottom}, "mark");
        out += NqSvg::text({x(mark.value), top - 4.0}, "middle", "tick", mark.label);
    }
    for (const Curve& curve : m_Curves) {
        std::vector<NqSvg::Point> run;
        std::vector<NqSvg::Point> over; // the stretch of it that is beyond a limit
        const auto flush = [&](std::vector<NqSvg::Point>& points, const std::string& cssClass) {
            if (points.size() > 1) {
                out += NqSvg::polyline(NqSvg::simplified(points, kTolerance), cssClass);
            }
            points.clear();
        };
        for (std::size_t i = 0; i < std::min(curve.times.size(), curve.values.size()); ++i) {
            const double value = curve.values[i];
            if (std::isfinite(value)) {
                run.push_back({x(curve.times[i]), y(value)});
            } else {
                flush(run, NqSvg::curveClass(curve.style));
            }
            if (!m_IsOverMarked) {
                continue;
            }
            if (value > m_ShadedAbove + kSlack * std::abs(m_ShadedAbove) ||
                value < m_ShadedBelow - kSlack * std::abs(m_ShadedBelow)) {
                const double limit = value > m_ShadedAbove ? m_ShadedAbove : m_ShadedBelow;
                over.push_back({run.back().x, over.empty() ? y(limit) : run.back().y});
                over.push_back(run.back());
            } else {
                flush(over, "over");
            }
        }
        flush(run, NqSvg::curveClass(curve.style));
        flush(over, "over");
    }
    for (const Level& level : m_Levels) {
        const double height = y(level.value);
        out += NqSvg::line({left, height}, {right, height}, "limit");
        out += NqSvg::text({left + 5.0, height - top > 16.0 ? height - 4.0 : height + 12.0}, "start", "note",
                           level.label);
    }
    out += NqSvg::rectangle({left, top}, right - left, bottom - top, "frame");

    out += "<text class=\"title\" x=\"" + NqSvg::number(left) + "\" y=\"" + NqSvg::number(corner.y + 14.0) +
           "\">" + NqDriveText::escaped(m_Title) + "<tspan class=\"sub\" dx=\"7\" font-weight=\"400\">" +
           NqDriveText::escaped(m_Unit) + "</tspan></text>\n";
    out += legend.drawn;
    return out + "</g>\n";
}
