#include "platform/linux/atspi/tree/whole_points.h"

#include <cmath>
#include <optional>

namespace lumetry::atspi {
namespace {

/// The only whole point from low on and below high, which are less than a point apart; in pixels.
std::optional<double> wholePointIn(double low, double high, double scale) {
    constexpr double largestError = 1e-9;
    const double point = std::ceil(low / scale - largestError) * scale;
    return point < high ? std::optional(point) : std::nullopt;
}

/// @param reported in pixels from the window's origin
Span onWholePoints(const Span& reported, Rounding rounding, double scale) {
    constexpr double half = 0.5;
    const bool outward = rounding == Rounding::outward;
    const double start = outward ? reported.low : reported.low - half;
    const auto low = wholePointIn(start, start + 1, scale);
    // Of an outward end the pixel before counts, and its own edge: from the other side it is a
    // start.
    const auto high = outward ? wholePointIn(-reported.high, -reported.high + 1, scale)
                              : wholePointIn(reported.high - half, reported.high + half, scale);
    if (!low || !high) {
        return reported;
    }
    const Span whole = {*low, outward ? -*high : *high};
    return whole.length() > 0 ? whole : reported;
}

} // namespace

Rect onWholePoints(const Rect& reported, Rounding rounding, Point origin, double scale) {
    if (rounding == Rounding::none || scale < 1 || scale == std::floor(scale)) {
        return reported;
    }
    const auto whole = [&](Span span, double start) {
        const Span inWindow = onWholePoints({span.low - start, span.high - start}, rounding, scale);
        return Span{inWindow.low + start, inWindow.high + start};
    };
    const Span across = whole(horizontalSpan(reported), origin.x);
    const Span down = whole(verticalSpan(reported), origin.y);
    return {across.low, down.low, across.length(), down.length()};
}

} // namespace lumetry::atspi
