#pragma once

#include "NqSvg.h"

#include <string>
#include <vector>

/// A diagram of curves over time: built up by the add operations, then drawn at a place of a larger drawing.
class NqSvgPlot {
public:
    /// `unit` stands behind the title; the x axis is time in seconds.
    NqSvgPlot(double width, double height, std::string title, std::string unit);

    /// Values on a logarithmic scale, not below `floor`.
    void setLogarithmic(double floor);

    /// A curve over the times given; values that are no numbers leave a gap. `style` picks the looks; with
    /// `label` it appears in the legend.
    void addCurve(const std::vector<double>& times, const std::vector<double>& values, std::size_t style,
                  std::string label = {});

    /// A dashed level with its name, taken into the range of the axis.
    void addLevel(double value, std::string label);

    /// Lower and upper limit, dashed, with what lies beyond them shaded; infinite ones are left out. Limits
    /// so far off that the curve would lie flat are named instead of drawn.
    void addLimits(double lower, double upper, const std::string& unit, bool isAlwaysShown);

    /// Whether stretches of curves beyond the limits stand out in red; they do at first.
    void setOverMarked(bool isMarked) { m_IsOverMarked = isMarked; }

    /// A dotted upright line with a short name at its top.
    void addMark(double time, std::string label);

    /// The range of the time axis.
    void setTimeRange(double start, double end);

    double width() const { return m_Width; }
    double height() const { return m_Height; }

    /// The elements of the diagram with its upper left corner at `corner`.
    std::string drawn(NqSvg::Point corner) const;

private:
    struct Curve {
        std::vector<double> times;
        std::vector<double> values;
        std::size_t style;
        std::string label;
    };
    struct Level {
        double value;
        std::string label;
    };
    struct Scale {
        double low = 0.0;
        double high = 1.0;
        std::vector<double> ticks;
        int decimals = 0;
    };

    struct Legend {
        std::string drawn;
        double height = 0.0; ///< of the lines that it takes up under the title
    };

    Legend legendFrom(NqSvg::Point titleLine, double right) const;
    static Scale linearScale(double low, double high, int wantedTicks);
    Scale valueScale() const;
    std::string tickLabel(double tick, const Scale& scale) const;
    double shown(double value) const;

    double m_Width;
    double m_Height;
    std::string m_Title;
    std::string m_Unit;
    bool m_IsLogarithmic = false;
    double m_Floor = 0.0;
    double m_Start = 0.0;
    double m_End = 1.0;
    double m_ShadedBelow;
    double m_ShadedAbove;
    bool m_IsOverMarked = true;
    std::vector<Curve> m_Curves;
    std::vector<Level> m_Levels;
    std::vector<Level> m_Marks;
    std::vector<double> m_Included; ///< values that the axis reaches to, undrawn
};
