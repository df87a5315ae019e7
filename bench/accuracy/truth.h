#pragma once

#include "base/color.h"
#include "base/geometry.h"

#include <array>
#include <string>
#include <vector>

namespace lumetry::accuracy {

/// What the browser itself says of one element. Places are in CSS pixels of the page, whose origin
/// is the screen's; y downwards.
struct Truth {
    std::string id;
    std::string kind; ///< what is measured at the point: text, heading, control, input, list...
    std::string role; ///< the first word of the header of what is measured
    Point point;      ///< where to measure
    Rect frame;
    Rect text;               ///< around its contents
    std::vector<Rect> items; ///< of its child elements
    std::string family;      ///< the first of the list
    double fontSize = 0;     ///< CSS pixels
    int fontWeight = 0;      ///< 100 to 900
    Color color;
    Color fill;                      ///< of the nearest background
    double radius = 0;               ///< of the corners, CSS pixels
    std::array<double, 4> padding{}; ///< top, right, bottom, left; with the border
};

/// What the page posts. Throws std::runtime_error when it is no such thing, or when the page does
/// not lie on the screen as a whole, pixel for pixel.
[[nodiscard]] std::vector<Truth> parseTruth(const std::string& json);

} // namespace lumetry::accuracy
