#include "platform/linux/atspi/tree/placement.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace lumetry::atspi {

namespace {

std::int32_t unit(double coordinate) {
    constexpr double farthest = 1 << 30;
    // Not a number comes out as a place where nothing is.
    return static_cast<std::int32_t>(
        coordinate > -farthest ? std::min(std::floor(coordinate), farthest) : -farthest);
}

} // namespace

Rect placeOf(const IntRect& extents, const Placement& placement) {
    const double scale = placement.scale;
    return {placement.origin.x + extents.x * scale, placement.origin.y + extents.y * scale,
            extents.width * scale, extents.height * scale};
}

IntPoint unitAt(Point point, const Placement& placement) {
    return {unit((point.x - placement.origin.x) / placement.scale),
            unit((point.y - placement.origin.y) / placement.scale)};
}

double intersectionOverUnion(const Rect& a, const Rect& b) {
    const auto area = [](const Rect& rect) {
        return rect.isEmpty() ? 0.0 : rect.width * rect.height;
    };
    const double common = area(intersect(a, b));
    const double total = area(a) + area(b) - common;
    return total > 0 ? common / total : 0;
}

double scaleBetween(const IntRect& reported, const Rect& bounds) {
    constexpr double stepsPerUnit = 4; // desktops scale by quarters
    constexpr double largestScale = 4;
    constexpr double leastOverlap = 0.75;
    constexpr double leastGain = 0.2;
    if (reported.width <= 0) {
        return 1;
    }
    const double scale = std::round(bounds.width / reported.width * stepsPerUnit) / stepsPerUnit;
    if (!(scale > 1 && scale <= largestScale)) {
        return 1;
    }
    const double scaled = intersectionOverUnion(placeOf(reported, {scale, {}}), bounds);
    return scaled >= leastOverlap &&
                   scaled - intersectionOverUnion(placeOf(reported, {}), bounds) >= leastGain
               ? scale
               : 1;
}

Placement placementInside(const IntRect& reported, const Rect& client) {
    const double scale =
        scaleBetween({0, 0, reported.width, reported.height}, {0, 0, client.width, client.height});
    return {scale,
            {client.x + (client.width - reported.width * scale) / 2,
             client.y + (client.height - reported.height * scale) / 2}};
}

Placement placementOnSurface(const IntRect& reported, const Rect& client, const Rect& frame,
                             const Rect& surface) {
    const auto difference = [&](const Rect& rect) {
        return std::abs(rect.width - reported.width) + std::abs(rect.height - reported.height);
    };
    Rect drawn = client;
    for (const Rect& other : {frame, surface}) {
        if (difference(other) < difference(drawn)) {
            drawn = other;
        }
    }
    return {1, {drawn.x - reported.x, drawn.y - reported.y}};
}

Placement placementFilling(const IntRect& reported, const Rect& client) {
    const double scale =
        scaleBetween({0, 0, reported.width, reported.height}, {0, 0, client.width, client.height});
    return {scale, {client.x - reported.x * scale, client.y - reported.y * scale}};
}

bool lieAlike(const Rect& a, const Rect& b) {
    constexpr double widestShadow = 64;
    return std::abs(a.minX() - b.minX()) <= widestShadow &&
           std::abs(a.minY() - b.minY()) <= widestShadow &&
           std::abs(a.maxX() - b.maxX()) <= widestShadow &&
           std::abs(a.maxY() - b.maxY()) <= widestShadow;
}

} // namespace lumetry::atspi
