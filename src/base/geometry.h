#pragma once

#include <limits>
#include <optional>

namespace lumetry {

/// A position in points. Which space it lies in is said where it is used: accessibility space
/// (origin at the top-left of the primary display, y downwards), screen space (origin at its
/// bottom-left, y upwards) or the view space of the overlay (y upwards).
struct Point {
    double x = 0;
    double y = 0;

    friend bool operator==(const Point&, const Point&) = default;
};

/// A width and a height in points.
struct Size {
    double width = 0;
    double height = 0;

    friend bool operator==(const Size&, const Size&) = default;
};

/// A rectangle in points: its corner of smallest coordinates, and its size.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] static constexpr Rect null() {
        return {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity(), 0,
                0};
    }

    [[nodiscard]] constexpr double minX() const { return x; }
    [[nodiscard]] constexpr double minY() const { return y; }
    [[nodiscard]] constexpr double maxX() const { return x + width; }
    [[nodiscard]] constexpr double maxY() const { return y + height; }
    [[nodiscard]] constexpr double midX() const { return x + width / 2; }
    [[nodiscard]] constexpr double midY() const { return y + height / 2; }
    [[nodiscard]] constexpr Point origin() const { return {x, y}; }
    [[nodiscard]] constexpr Size size() const { return {width, height}; }

    /// True for the null rectangle, the one that covers nothing and lies nowhere.
    [[nodiscard]] bool isNull() const;
    /// True when it covers no area: null, or a width or height that is not positive.
    [[nodiscard]] bool isEmpty() const;
    /// The edges of smallest coordinates belong to the rectangle, those of largest do not.
    [[nodiscard]] bool contains(Point point) const;

    friend bool operator==(const Rect&, const Rect&) = default;
};

/// A stretch along one axis.
struct Span {
    double low = 0;
    double high = 0;

    [[nodiscard]] constexpr double length() const { return high - low; }
    [[nodiscard]] constexpr double middle() const { return low + length() / 2; }

    friend bool operator==(const Span&, const Span&) = default;
};

[[nodiscard]] constexpr Span horizontalSpan(const Rect& rect) {
    return {rect.minX(), rect.maxX()};
}
[[nodiscard]] constexpr Span verticalSpan(const Rect& rect) {
    return {rect.minY(), rect.maxY()};
}
/// The stretch between two that do not overlap; absent when they do.
[[nodiscard]] std::optional<Span> gapBetween(const Span& a, const Span& b);

/// The smallest rectangle around both; the null rectangle adds nothing.
[[nodiscard]] Rect unite(const Rect& a, const Rect& b);
/// What both cover; null when they share nothing.
[[nodiscard]] Rect intersect(const Rect& a, const Rect& b);
/// Moved inwards by dx on the left and right and by dy at the top and bottom (outwards when
/// negative); null when nothing is left.
[[nodiscard]] Rect inset(const Rect& rect, double dx, double dy);

/// A point between screen space and accessibility space (the same either way).
/// @param height of the primary display, in points
[[nodiscard]] Point flipped(Point point, double height);
/// A rectangle between screen space and accessibility space (the same either way).
/// @param height of the primary display, in points
[[nodiscard]] Rect flipped(const Rect& rect, double height);

} // namespace lumetry
