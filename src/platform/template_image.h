#pragma once

#include "base/geometry.h"

#include <functional>
#include <vector>

namespace lumetry {

/// Lines of one width, drawn with round caps and joins. Coordinates are points with the origin at
/// the top-left, y downwards.
struct StrokedPath {
    std::vector<std::vector<Point>> lines; ///< each at least two points, joined in order
    double lineWidth = 1;

    friend bool operator==(const StrokedPath&, const StrokedPath&) = default;
};

/// An image in one colour, which the place where it is shown chooses (NSImage.isTemplate).
struct TemplateImage {
    Size size; ///< in points, as it is meant to be shown
    /// What to draw so that it fills the destination, asked anew for every rendering.
    std::function<StrokedPath(const Rect& destination)> drawingHandler;
};

} // namespace lumetry
