#pragma once

#include "base/geometry.h"

#include <optional>

namespace lumetry {

/// Where accessibility space, in points, lies on the root window, which counts in device pixels; y
/// grows downwards in both.
struct RootSpace {
    Point origin;     ///< of accessibility space, the primary display's top-left corner, in pixels
    double scale = 1; ///< pixels for each point

    [[nodiscard]] Point toAccessibility(Point onRoot) const;
    [[nodiscard]] Rect toAccessibility(const Rect& onRoot) const;
    /// Whole pixels come back whole.
    [[nodiscard]] Point toRoot(Point point) const;
    [[nodiscard]] Rect toRoot(const Rect& rect) const;

    friend bool operator==(const RootSpace&, const RootSpace&) = default;
};

/// A scale that somebody asks for, kept between 0.5 and 8; absent when it is no number above 0.
[[nodiscard]] std::optional<double> usableScale(double scale);

} // namespace lumetry
