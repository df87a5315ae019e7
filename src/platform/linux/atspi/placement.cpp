#include "platform/linux/atspi/placement.h"

#include <cmath>

namespace lumetry::atspi {

Rect placeOf(const Extents& extents, double scale) {
    return {extents.x * scale, extents.y * scale, extents.width * scale, extents.height * scale};
}

double likeness(const Rect& a, const Rect& b) {
    const auto area = [](const Rect& rect) {
        return rect.isEmpty() ? 0.0 : rect.width * rect.height;
    };
    const double common = area(intersect(a, b));
    const double total = area(a) + area(b) - common;
    return total > 0 ? common / total : 0;
}

double scaleBetween(const Extents& reported, const Rect& bounds) {
    constexpr double stepsPerUnit = 4; // desktops scale by quarters
    constexpr double largestScale = 4;
    constexpr double leastLikeness = 0.75;
    constexpr double leastGain = 0.2;
    if (reported.width <= 0) {
        return 1;
    }
    const double scale = std::round(bounds.width / reported.width * stepsPerUnit) / stepsPerUnit;
    if (!(scale > 1 && scale <= largestScale)) {
        return 1;
    }
    const double scaled = likeness(placeOf(reported, scale), bounds);
    return scaled >= leastLikeness && scaled - likeness(placeOf(reported, 1), bounds) >= leastGain
               ? scale
               : 1;
}

} // namespace lumetry::atspi
