#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Elements of a drawing as text; lengths in pixels, y downwards. Looks come from the classes of
/// styleSheet().
namespace NqSvg {

struct Point {
    double x = 0.0;
    double y = 0.0;
};

/// A coordinate with at most two decimals.
std::string number(double value);

std::string line(Point a, Point b, std::string_view cssClass);
std::string rectangle(Point corner, double width, double height, std::string_view cssClass);
std::string circle(Point centre, double radius, std::string_view cssClass);
std::string polyline(const std::vector<Point>& points, std::string_view cssClass);

/// A text; `anchor` is "start", "middle" or "end". The text is escaped here.
std::string text(Point at, std::string_view anchor, std::string_view cssClass, std::string_view content);

/// The points of a curve that are needed to draw it to a tolerance (Douglas and Peucker, "Algorithms for the
/// reduction of the number of points required to represent a digitized line", Cartographica 10(2), 1973).
std::vector<Point> simplified(const std::vector<Point>& points, double tolerance);

/// The class that tells curve number `index` from the others, by colour and by dashes.
std::string curveClass(std::size_t index);

/// Colours, lines and type of all drawings, on white and on dark ground, and always on white in print.
const std::string& styleSheet();

/// A whole file around the elements of a drawing.
std::string document(double width, double height, std::string_view title, std::string_view elements);

} // namespace NqSvg
