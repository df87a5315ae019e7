#include "platform/linux/windows/root_space.h"

#include <algorithm>
#include <cmath>

namespace lumetry {
namespace {

/// What has been divided by the scale and multiplied by it again may be off by the last bits.
double withoutRoundingError(double pixels) {
    constexpr double largestError = 1e-6;
    const double whole = std::round(pixels);
    return std::abs(pixels - whole) < largestError ? whole : pixels;
}

} // namespace

Point RootSpace::toAccessibility(Point onRoot) const {
    return {(onRoot.x - origin.x) / scale, (onRoot.y - origin.y) / scale};
}

Rect RootSpace::toAccessibility(const Rect& onRoot) const {
    const Point corner = toAccessibility(onRoot.origin());
    return {corner.x, corner.y, onRoot.width / scale, onRoot.height / scale};
}

Point RootSpace::toRoot(Point point) const {
    return {withoutRoundingError(point.x * scale + origin.x),
            withoutRoundingError(point.y * scale + origin.y)};
}

Rect RootSpace::toRoot(const Rect& rect) const {
    const Point corner = toRoot(rect.origin());
    return {corner.x, corner.y, withoutRoundingError(rect.width * scale),
            withoutRoundingError(rect.height * scale)};
}

std::optional<double> usableScale(double scale) {
    constexpr double smallest = 0.5;
    constexpr double largest = 8;
    return std::isfinite(scale) && scale > 0 ? std::optional(std::clamp(scale, smallest, largest))
                                             : std::nullopt;
}

} // namespace lumetry
