#pragma once

#include "base/geometry.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace lumetry {

/// @{ Geometry in whole units: pixels of a screen or a picture, or the units in which an
/// application reports places. Y grows downwards.
struct IntPoint {
    std::int32_t x = 0;
    std::int32_t y = 0;

    friend bool operator==(const IntPoint&, const IntPoint&) = default;
};

struct IntSize {
    std::int32_t width = 0;
    std::int32_t height = 0;

    [[nodiscard]] constexpr bool isEmpty() const { return width <= 0 || height <= 0; }
    friend bool operator==(const IntSize&, const IntSize&) = default;
};

struct IntRect {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;

    [[nodiscard]] constexpr IntPoint origin() const { return {x, y}; }
    [[nodiscard]] constexpr IntSize size() const { return {width, height}; }
    [[nodiscard]] constexpr bool isEmpty() const { return size().isEmpty(); }
    /// @{ Just behind its last column and row; wide enough for every rectangle.
    [[nodiscard]] constexpr std::int64_t endX() const { return std::int64_t{x} + width; }
    [[nodiscard]] constexpr std::int64_t endY() const { return std::int64_t{y} + height; }
    /// @}
    [[nodiscard]] constexpr bool contains(IntPoint point) const {
        return point.x >= x && point.x < endX() && point.y >= y && point.y < endY();
    }

    /// From one place to just before another one; what is longer than numbers go is cut off there.
    [[nodiscard]] static constexpr IntRect between(IntPoint start, std::int64_t endX,
                                                   std::int64_t endY) {
        constexpr std::int64_t longest = std::numeric_limits<std::int32_t>::max();
        return {start.x, start.y, static_cast<std::int32_t>(std::min(endX - start.x, longest)),
                static_cast<std::int32_t>(std::min(endY - start.y, longest))};
    }

    friend bool operator==(const IntRect&, const IntRect&) = default;
};
/// @}

[[nodiscard]] constexpr Rect toRect(const IntRect& rect) {
    return {static_cast<double>(rect.x), static_cast<double>(rect.y),
            static_cast<double>(rect.width), static_cast<double>(rect.height)};
}

/// Counted from the other end of that height (the same either way).
[[nodiscard]] constexpr IntRect flipped(const IntRect& rect, std::int32_t height) {
    return {rect.x, height - rect.y - rect.height, rect.width, rect.height};
}

/// What both cover; empty, with no size, where they do not meet.
[[nodiscard]] constexpr IntRect intersect(const IntRect& a, const IntRect& b) {
    const IntPoint start{std::max(a.x, b.x), std::max(a.y, b.y)};
    const std::int64_t endX = std::min(a.endX(), b.endX());
    const std::int64_t endY = std::min(a.endY(), b.endY());
    return endX > start.x && endY > start.y ? IntRect::between(start, endX, endY)
                                            : IntRect{start.x, start.y, 0, 0};
}

/// The smallest rectangle around both.
[[nodiscard]] constexpr IntRect unite(const IntRect& a, const IntRect& b) {
    return IntRect::between({std::min(a.x, b.x), std::min(a.y, b.y)}, std::max(a.endX(), b.endX()),
                            std::max(a.endY(), b.endY()));
}

} // namespace lumetry
