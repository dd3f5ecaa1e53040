#pragma once

#include "NqArmSketch.h"
#include "NqSvg.h"

/// Draws an arm and the paths of its end-effectors, in parallel projection.
class NqStickFigure {
public:
    enum class View {
        Oblique, ///< from the front right, somewhat above, with the ground as a grid
        Side,    ///< along y: x to the right, z up
        Top      ///< against z: x to the right, y up
    };

    explicit NqStickFigure(const NqArmSketch& sketch) : m_Sketch(sketch) {}

    /// The elements of the drawing, filling a box with its upper left corner at `corner`.
    std::string drawn(View view, NqSvg::Point corner, double width, double height) const;

private:
    const NqArmSketch& m_Sketch;
};
