#pragma once

#include "base/color.h"
#include "base/geometry.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::accuracy {

/// What the program that shows an element says of it itself; absent is what it says nothing of.
/// Lengths are in points, places from the screen's top-left corner.
struct Truth {
    std::string id;
    std::string what; ///< as in the plan
    std::string kind; ///< by which rows it has: text, control, input, list, group...
    std::string role; ///< the first word of the header of what is measured
    Point point;      ///< where to measure
    std::optional<Rect> frame;
    std::optional<Rect> text;          ///< around its contents
    std::vector<Rect> items;           ///< of its child elements that are shown
    std::optional<std::string> family; ///< the first of the list
    std::optional<double> fontSize;
    std::optional<int> fontWeight; ///< 100 to 900
    std::optional<Color> color;
    std::optional<Color> fill;    ///< of the nearest background
    std::optional<double> radius; ///< of the corners
    /// Top, right, bottom, left, where that is not what is around the items or the text.
    std::optional<std::array<double, 4>> padding;
};

/// What such a program tells: an object of "elements", each with its "id" and what of the truth it
/// knows; "unit", how many pixels one of its units of length is; and "origin", where its window is,
/// in pixels, unless that is given here.
/// @param scale pixels to a point
/// Throws std::runtime_error when it is no such thing.
[[nodiscard]] std::vector<Truth> parseTruth(const std::string& json, Point origin, double scale);

} // namespace lumetry::accuracy
