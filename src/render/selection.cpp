#include "base/number_text.h"
#include "render/overlay_view.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace lumetry {
namespace {

constexpr Color pink = OverlayView::pink;
constexpr double outlineRadius = 4;
constexpr double lineWidth = 1.5;
constexpr Font gapFont = {FontFamily::monospacedSystem, 11, FontWeight::semibold};

/// A stretch along one axis.
struct Span {
    double low = 0;
    double high = 0;

    [[nodiscard]] double middle() const { return low + (high - low) / 2; }
};

Span horizontal(const Rect& rect) {
    return {rect.minX(), rect.maxX()};
}

Span vertical(const Rect& rect) {
    return {rect.minY(), rect.maxY()};
}

/// The stretch between two that do not overlap; absent when they do.
std::optional<Span> between(const Span& a, const Span& b) {
    if (a.high <= b.low) {
        return Span{a.high, b.low};
    }
    if (b.high <= a.low) {
        return Span{b.high, a.low};
    }
    return std::nullopt;
}

/// Where a distance across two stretches is drawn: at the middle of what they share, else halfway
/// between their middles.
double crossing(const Span& a, const Span& b) {
    const Span shared = {std::max(a.low, b.low), std::min(a.high, b.high)};
    return shared.high > shared.low ? shared.middle() : (a.middle() + b.middle()) / 2;
}

} // namespace

void drawSelection(Canvas& canvas, const Rect& rect) {
    constexpr double handleRadius = 3;
    canvas.fillRoundedRect(rect, outlineRadius, pink.withAlpha(0.07));
    canvas.strokeRoundedRect(rect, outlineRadius, pink, lineWidth);
    for (const double x : {rect.minX(), rect.maxX()}) {
        for (const double y : {rect.minY(), rect.maxY()}) {
            const Rect handle = {x - handleRadius, y - handleRadius, 2 * handleRadius,
                                 2 * handleRadius};
            canvas.fillEllipse(handle, white);
            canvas.strokeEllipse(handle, pink, lineWidth);
        }
    }
}

void drawGap(Canvas& canvas, Point a, Point b, std::span<const double> dash) {
    constexpr double paddingX = 6;
    constexpr double paddingY = 3;
    constexpr double pillRadius = 5;

    const double length = std::hypot(b.x - a.x, b.y - a.y);
    if (!(length >= 1)) {
        return;
    }
    canvas.strokeLine(a, b, pink, lineWidth, dash);
    const std::string label = wholeNumber(length) + "px";
    const Size text = canvas.measure(label, gapFont);
    const Point middle = {(a.x + b.x) / 2, (a.y + b.y) / 2};
    const Rect pill = {middle.x - text.width / 2 - paddingX, middle.y - text.height / 2 - paddingY,
                       text.width + 2 * paddingX, text.height + 2 * paddingY};
    canvas.fillRoundedRect(pill, pillRadius, pink);
    canvas.drawText(label, {pill.minX() + paddingX, pill.minY() + paddingY}, gapFont, white);
}

void drawMeasure(Canvas& canvas, const Rect& a, const std::optional<Rect>& b) {
    constexpr std::array<double, 2> dash = {5, 3};
    drawSelection(canvas, a);
    if (!b || b->isEmpty()) {
        return;
    }
    canvas.strokeRoundedRect(*b, outlineRadius, pink, lineWidth);
    if (const auto gap = between(horizontal(a), horizontal(*b))) {
        const double y = crossing(vertical(a), vertical(*b));
        drawGap(canvas, {gap->low, y}, {gap->high, y}, dash);
    }
    if (const auto gap = between(vertical(a), vertical(*b))) {
        const double x = crossing(horizontal(a), horizontal(*b));
        drawGap(canvas, {x, gap->low}, {x, gap->high}, dash);
    }
}

} // namespace lumetry
